#include "DataMap.h"
#include "VolumeListing.h"
#include "content/TargetName.h"
#include "platform/system/Text.h"
#include "support/BuildPaths.h"
#include "support/RunProgram.h"
#include "support/Sha256.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <set>

namespace thntfs::test {

namespace {

using nlohmann::json;
namespace fs = std::filesystem;

constexpr std::size_t kMaxSample = 24;
constexpr unsigned kMaxTwins = 4; ///< files of one path

std::string CaseName(const testing::TestParamInfo<VolumeCase>& info) {
    return info.param.Image.Name + "_p" + std::to_string(info.param.Layout.Number);
}

// ------------------------------------------------------------------ partitions

json TruthOf(const LayoutRow& row) {
    return {{"number", row.Number},
            {"startSector", row.StartSector},
            {"totalSectors", row.EntrySectors},
            {"bytesPerSector", row.BytesPerSector},
            {"sectorsPerCluster", row.SectorsPerCluster},
            {"clusterBytes", row.ClusterBytes()},
            {"fileRecordBytes", row.RecordBytes},
            {"indexBlockBytes", row.IndexBytes},
            {"mftSector", row.StartSector + row.MftCluster * row.SectorsPerCluster},
            {"mftCluster", row.MftCluster},
            {"mftMirrCluster", row.MirrorCluster},
            {"serial", row.Serial},
            {"evidence", 0}};
}

TEST(ImagesTest, PartitionsAreThoseOfTheTable) {
    for (const PackedImage& image : PackedImages()) {
        SCOPED_TRACE(image.Name);
        json truth = json::array();
        for (const LayoutRow& row : image.Partitions) {
            truth.push_back(TruthOf(row));
        }
        const RunResult run = RunProgram(CliPath(), {"partitions", image.Path, "--json"});
        EXPECT_EQ(run.Status, 0) << run.Err;
        EXPECT_EQ(json::parse(run.Out, nullptr, false), truth);
    }
}

// --------------------------------------------------------------------- volumes

class VolumeTest : public testing::TestWithParam<VolumeCase> {
protected:
    void SetUp() override {
        rows_ = GetParam().Image.Manifest(GetParam().Layout.Number);
        known_ = TableIsKnown(GetParam().Image, GetParam().Layout);
    }

    // A table that can't be known must be reported, and nothing may come out.
    void ExpectRefusal(const std::string& command) {
        const RunResult run = RunProgram(CliPath(), GetParam().Words(command));
        EXPECT_EQ(run.Status, 1);
        EXPECT_EQ(run.Out, "");
        EXPECT_NE(run.Err.find("Critical structures not found"), std::string::npos) << run.Err;
    }

    /// Whether these bytes are what must come out of a row's file. `entry` is its line of the listing.
    void ExpectBytes(const ManifestRow& row, const json& entry, const std::string& bytes) {
        if (row.Has("reused") || Sha256Of(TextBytes(bytes)) == row.Sha256) {
            return;
        }
        ASSERT_TRUE(row.Has("sparse") || row.Has("compressed"))
            << row.Path << ": " << bytes.size() << " bytes";
        const VolumeCase& volume = GetParam();
        const DataMap map = ReadDataMap(volume.Image, volume.Layout, entry["recordSector"]);
        ASSERT_TRUE(map.Complete) << row.Path;
        const std::string hash = HashWithHoles(TextBytes(bytes), map, row.Size, volume.Image, volume.Layout);
        if (row.Has("open-end")) {
            const std::uint64_t unit = map.UnitClusters * volume.Layout.ClusterBytes();
            EXPECT_EQ(bytes.size(), row.Size / unit * unit) << row.Path << ": units that a hole closes";
        } else {
            EXPECT_EQ(hash, hash == "too long" ? hash : row.Sha256) << row.Path;
        }
    }

    std::vector<ManifestRow> rows_;
    bool known_ = false;
};

/// Rows of one file with several names, by content.
using Groups = std::map<std::string, std::vector<const ManifestRow*>>;

Groups HardLinkGroups(const std::vector<ManifestRow>& rows) {
    Groups groups;
    for (const ManifestRow& row : rows) {
        if (row.Has("hardlink") && !row.Has("unlinked")) {
            groups[row.Sha256].push_back(&row);
        }
    }
    return groups;
}

// A file that bears the name of one of the volume's own files isn't catalogued, wherever it stands.
bool HasSystemName(const std::string& name) { return name == "$MFT"; }

void ExpectRow(const ManifestRow& row, const VolumeListing& listing, const std::set<std::string>& split) {
    const std::string name = row.Path.substr(row.Path.rfind('/') + 1);
    if (row.Has("gone") || row.Has("unlinked") || HasSystemName(name) || split.contains(name)) {
        EXPECT_EQ(listing.Find(row), nullptr) << row.Path << " can't be known";
    } else if (!row.Has("hardlink")) {
        EXPECT_NE(listing.Find(row), nullptr) << row.Path;
    }
}

// One name of a file counts: the last one of its own record, unless an attribute list leads to others.
void ExpectOneName(const std::vector<const ManifestRow*>& names, const VolumeListing& listing) {
    std::size_t shown = 0;
    for (const ManifestRow* row : names) {
        const bool there = listing.Find(*row) != nullptr;
        shown += there ? 1U : 0U;
        if (row->Has("lastname") && !row->Has("attrlist-nonresident")) {
            EXPECT_TRUE(there) << row->Path;
        }
    }
    EXPECT_EQ(shown, 1U) << names.front()->Path;
}

bool IsInRows(const json& entry, const std::set<std::string>& paths, const std::set<std::string>& orphans) {
    const std::string path = entry["path"];
    return paths.contains(path) || path == "/$Extend" || path.starts_with("/$Extend/") ||
           orphans.contains(entry["name"]);
}

TEST_P(VolumeTest, ListHasAllThatWasEverThere) {
    if (!known_) {
        return ExpectRefusal("list");
    }
    const VolumeListing listing(GetParam());
    std::set<std::string> paths;
    std::set<std::string> orphans;
    const std::set<std::string> split = NamesInSplitRecords(GetParam().Image, GetParam().Layout);
    for (const ManifestRow& row : rows_) {
        ExpectRow(row, listing, split);
        paths.insert(row.Path);
        if (row.Has("orphan")) {
            orphans.insert(row.Path.substr(row.Path.rfind('/') + 1));
        }
    }
    for (const auto& [hash, names] : HardLinkGroups(rows_)) {
        ExpectOneName(names, listing);
    }
    const bool nameless =
        std::any_of(rows_.begin(), rows_.end(), [](const auto& r) { return r.Has("nameless"); });
    for (const json& entry : listing.Entries) {
        const bool numbered = nameless && entry["name"].get<std::string>().starts_with('#');
        EXPECT_TRUE(numbered || IsInRows(entry, paths, orphans)) << entry["path"] << " never was there";
    }
}

/// What stands below a saved folder.
struct Saved {
    std::set<std::string> Files; ///< paths from the folder on
    std::uint64_t Folders = 0;
    std::uint64_t Bytes = 0;
};

Saved WhatWasSaved(const std::string& folder) {
    Saved saved;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_directory()) {
            ++saved.Folders;
        } else {
            saved.Files.insert(entry.path().string().substr(folder.size()));
            saved.Bytes += entry.file_size();
        }
    }
    return saved;
}

// Files of one path stand beside each other with numbers; the one that fits is taken away.
std::string TakeSavedFile(const ManifestRow& row, const std::string& target, const std::string& folder,
                          Saved& saved) {
    const std::size_t slash = target.rfind('/') + 1;
    std::string first;
    for (unsigned number = 1; number <= kMaxTwins; ++number) {
        const std::string name = target.substr(slash);
        const std::string path = target.substr(0, slash) + (number == 1 ? name : NumberedName(name, number));
        if (!saved.Files.contains(path)) {
            continue;
        }
        if (!row.Has("samepath") || Sha256Of(TextBytes(ReadWholeFile(folder + path))) == row.Sha256) {
            saved.Files.erase(path);
            return path;
        }
        first = path;
    }
    return first;
}

TEST_P(VolumeTest, SaveBringsEveryFileBack) {
    if (!known_) {
        return ExpectRefusal("scan");
    }
    const ScratchFolder scratch;
    const std::string folder = scratch / "saved";
    std::vector<std::string> words = GetParam().Words("save");
    words.insert(words.end(), {"--to", folder, "--json"});
    const RunResult run = RunProgram(CliPath(), words);
    Saved saved = WhatWasSaved(folder);
    const json totals = json::parse(run.Out);
    ASSERT_EQ(run.Status, totals["damaged"] == 0 ? 0 : 3) << run.Err;
    EXPECT_EQ(totals["failed"], 0);
    EXPECT_EQ(totals["files"], saved.Files.size());
    EXPECT_EQ(totals["folders"], saved.Folders);
    EXPECT_EQ(totals["bytes"], saved.Bytes);
    const VolumeListing listing(GetParam());
    std::size_t files = 0;
    for (const json& entry : listing.Entries) {
        files += entry["folder"] ? 0U : 1U;
    }
    EXPECT_EQ(saved.Files.size(), files);
    std::size_t misfits = 0; // with holes, or with a last unit that isn't cut
    for (const ManifestRow& row : rows_) {
        const json* entry = listing.Find(row);
        const std::string target = entry == nullptr ? "" : VolumeListing::TargetPath((*entry)["path"]);
        if (row.Folder && entry != nullptr) {
            EXPECT_TRUE(fs::is_directory(folder + target)) << row.Path;
        } else if (entry != nullptr) {
            const std::string path = TakeSavedFile(row, target, folder, saved);
            ASSERT_FALSE(path.empty()) << row.Path << " was not saved as " << target;
            const std::string bytes = ReadWholeFile(folder + path);
            ExpectBytes(row, *entry, bytes);
            misfits += bytes.size() == (*entry)["size"] ? 0U : 1U;
        }
    }
    EXPECT_EQ(totals["damaged"], misfits) << run.Err;
}

// A file of each kind that the volume holds.
std::vector<const ManifestRow*> SampleOf(const std::vector<ManifestRow>& rows) {
    std::vector<const ManifestRow*> sample;
    std::set<std::pair<bool, std::set<std::string>>> kinds;
    for (const ManifestRow& row : rows) {
        const bool fresh = !row.Folder && kinds.emplace(row.Live, row.Notes).second;
        if ((fresh || row.Has("samepath")) && sample.size() < kMaxSample) {
            sample.push_back(&row);
        }
    }
    return sample;
}

TEST_P(VolumeTest, CatWritesASampleOfThem) {
    if (!known_) {
        return ExpectRefusal("scan");
    }
    const VolumeListing listing(GetParam());
    for (const ManifestRow* row : SampleOf(rows_)) {
        const json* entry = listing.Find(*row);
        if (entry == nullptr) {
            continue;
        }
        std::vector<std::string> words = GetParam().Words("cat");
        if (row->Has("samepath") || row->Path.size() % 2 == 0) {
            words.insert(words.end(), {"--record", std::to_string((*entry)["record"].get<std::uint32_t>())});
        } else {
            words.push_back((*entry)["path"]);
        }
        const RunResult run = RunProgram(CliPath(), words);
        EXPECT_EQ(run.Status, run.Out.size() == (*entry)["size"] ? 0 : 3) << row->Path << ": " << run.Err;
        ExpectBytes(*row, *entry, run.Out);
    }
}

INSTANTIATE_TEST_SUITE_P(Volumes, VolumeTest, testing::ValuesIn(AllVolumes()), CaseName);

} // namespace

} // namespace thntfs::test
