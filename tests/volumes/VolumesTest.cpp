#include "VolumeManifest.h"
#include "content/TargetName.h"
#include "platform/system/Text.h"
#include "support/VolumeBuilderMedium.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <set>

namespace thntfs::test {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaxSample = 24;
constexpr unsigned kMaxTwins = 4; ///< files of one path

bool HasNote(const json& row, const std::string& note) {
    const json& notes = row["notes"];
    return std::find(notes.begin(), notes.end(), note) != notes.end();
}

std::string NameIn(const std::string& path) { return path.substr(path.rfind('/') + 1); }

/// Path of the file that `save` makes of an entry, the `number`th of that path.
std::string TargetPath(const std::string& path, unsigned number = 1) {
    std::string target;
    std::istringstream parts(path.substr(1));
    for (std::string part; std::getline(parts, part, '/');) {
        target += '/' + TargetName(WideText(part));
    }
    const std::size_t slash = target.rfind('/') + 1;
    return number == 1 ? target : target.substr(0, slash) + NumberedName(target.substr(slash), number);
}

/// What the program lists of one volume, and what it saves.
class Recovery {
public:
    /// `chosen`: the image, and the words that choose its partition. `asStored`: on the plain road.
    Recovery(Lines chosen, bool asStored)
        : chosen_(std::move(chosen)) {
        const Lines road = asStored ? Lines{"--as-stored"} : Lines{};
        Lines words = {"--recursive", "--json"};
        words.insert(words.end(), road.begin(), road.end());
        std::istringstream lines(Run("list", words).Out);
        for (std::string line; std::getline(lines, line);) {
            entries_.push_back(json::parse(line));
            byPath_.emplace(entries_.back()["path"], entries_.size() - 1);
            byName_.emplace(entries_.back()["name"], entries_.size() - 1);
        }
        const std::string report = scratch_ / "report";
        words = {"--to", Folder(), "--json", "--report", report};
        words.insert(words.end(), road.begin(), road.end());
        const RunResult save = Run("save", words);
        totals_ = json::parse(save.Out);
        EXPECT_EQ(save.Status, totals_["damaged"] == 0 ? 0 : 3) << save.Err;
        hashes_ = HashesBelow(Folder());
        TakeHashesOfLargeFiles(report);
    }

    RunResult Run(const std::string& command, const Lines& more) const {
        Lines words = {command};
        words.insert(words.end(), chosen_.begin(), chosen_.end());
        words.insert(words.end(), more.begin(), more.end());
        return RunProgram(CliPath(), words);
    }

    [[nodiscard]] std::string Folder() const { return scratch_ / "saved"; }
    [[nodiscard]] const std::vector<json>& Entries() const { return entries_; }

    /// The entry that a row speaks of; null where there is none.
    [[nodiscard]] const json* Find(const json& row) const {
        const std::string path = row["path"];
        const bool anywhere = HasNote(row, "orphan");
        const auto [begin, end] = anywhere ? byName_.equal_range(NameIn(path)) : byPath_.equal_range(path);
        for (auto found = begin; found != end; ++found) {
            const json& entry = entries_[found->second];
            if (entry["live"] == row["live"] && entry["folder"] == row["folder"] &&
                entry["size"] == row["size"]) {
                return &entry;
            }
        }
        return nullptr;
    }

    /// The file saved of an entry that has the hash; files of one path carry numbers. Empty where none has.
    [[nodiscard]] std::string Saved(const json& entry, const json& sha256) const {
        for (unsigned number = 1; number <= kMaxTwins; ++number) {
            const std::string path = TargetPath(entry["path"], number);
            const auto file = hashes_.find(path);
            if (file != hashes_.end() && (sha256.is_null() || sha256 == file->second)) {
                return Folder() + path;
            }
        }
        return {};
    }

    /// The totals tell of all that lies there. Files that haven't their size are damaged ones.
    void ExpectTotals(std::size_t misfits) const {
        std::uint64_t folders = 0;
        std::uint64_t bytes = 0;
        for (const auto& entry : fs::recursive_directory_iterator(Folder())) {
            folders += entry.is_directory() ? 1U : 0U;
            bytes += entry.is_directory() ? 0U : entry.file_size();
        }
        const auto files = std::count_if(entries_.begin(), entries_.end(),
                                         [](const json& entry) { return !entry["folder"].get<bool>(); });
        EXPECT_EQ(totals_["files"], files);
        const std::size_t links = totals_["links"];
        EXPECT_EQ(hashes_.size(), files + links);
        EXPECT_EQ(totals_["folders"], folders);
        EXPECT_TRUE(totals_["bytes"] == bytes || links != 0);
        EXPECT_EQ(totals_["failed"], 0);
        EXPECT_EQ(totals_["damaged"], misfits);
    }

private:
    void TakeHashesOfLargeFiles(const std::string& report) {
        std::istringstream lines(ReadWholeFile(report));
        for (std::string line; std::getline(lines, line);) {
            const json file = json::parse(line);
            if (file["bytes"] > 1U << 30U) {
                hashes_[TargetPath(file["path"])] = file["sha256"];
            }
        }
    }

    ScratchFolder scratch_;
    Lines chosen_;
    std::vector<json> entries_;
    std::multimap<std::string, std::size_t> byPath_;
    std::multimap<std::string, std::size_t> byName_;
    json totals_;
    std::map<std::string, std::string> hashes_;
};

class VolumesTest : public testing::TestWithParam<std::string> {
protected:
    /// What the file of a row comes back with: its own bytes, or on the plain road what a manifest tells of
    /// it; null: nobody knows.
    const json& BackFrom(const json& row) const {
        return row.contains("saved") && (asStored_ || HasNote(row, "reused")) ? row["saved"] : row;
    }

    void ExpectRow(const Recovery& recovery, const json& row) {
        const json* entry = recovery.Find(row);
        if (asStored_ && entry == nullptr && NameIn(row["path"]).starts_with('$')) {
            return; // the plain walk leaves out what is called like the volume's own files
        }
        ASSERT_EQ(entry != nullptr, row["listed"].get<bool>());
        if (entry == nullptr) {
            return;
        }
        if (row["folder"]) {
            EXPECT_TRUE(fs::is_directory(recovery.Folder() + TargetPath((*entry)["path"])));
            return;
        }
        const json& saved = BackFrom(row);
        const std::string path = recovery.Saved(*entry, saved.is_null() ? json() : saved["sha256"]);
        ASSERT_FALSE(path.empty()) << "not saved with its bytes";
        const bool doubtful = !asStored_ && (HasNote(row, "open-end") || HasNote(row, "reused"));
        misfits_ += doubtful || fs::file_size(path) != (*entry)["size"] ? 1U : 0U;
    }

    // The bytes that the file had. Those that were used again nobody knows.
    static void ExpectExactCat(const RunResult& run, const json& row) {
        if (HasNote(row, "reused")) {
            return;
        }
        const ScratchFolder scratch;
        WriteFileBytes(scratch / "file", ByteVector(run.Out.begin(), run.Out.end()));
        EXPECT_EQ(HashesBelow(scratch / ".")["/file"], row["sha256"]);
        EXPECT_EQ(run.Out.size(), row["size"]);
        EXPECT_EQ(run.Status, HasNote(row, "open-end") ? 3 : 0) << run.Err;
    }

    // A file of each kind that the volume holds.
    void ExpectCat(const Recovery& recovery, const json& rows) const {
        std::set<std::pair<bool, json>> kinds;
        for (const json& row : rows) {
            const json* entry = recovery.Find(row);
            if (entry == nullptr || row["folder"] || kinds.size() == kMaxSample ||
                !kinds.emplace(row["live"], row["notes"]).second) {
                continue;
            }
            SCOPED_TRACE(row["path"]);
            const bool byNumber = HasNote(row, "samepath") || kinds.size() % 2 == 0;
            Lines words = byNumber ? Lines{"--record", (*entry)["record"].dump()} : Lines{(*entry)["path"]};
            ExpectExactCat(recovery.Run("cat", words), row);
            words.emplace_back("--as-stored");
            const RunResult run = recovery.Run("cat", words);
            EXPECT_EQ(run.Status, run.Out.size() == (*entry)["size"] ? 0 : 3) << run.Err;
            const json& saved = BackFrom(row);
            if (!saved.is_null()) {
                EXPECT_TRUE(run.Out == ReadWholeFile(recovery.Saved(*entry, saved["sha256"])));
            }
        }
    }

    static void ExpectNothingElse(const Recovery& recovery, const json& rows) {
        std::set<std::string> known; // paths, and names of entries whose folder is gone
        bool nameless = false;
        for (const json& row : rows) {
            const std::string path = row["path"];
            known.insert(HasNote(row, "orphan") ? NameIn(path) : path);
            nameless = nameless || HasNote(row, "nameless");
        }
        for (const json& entry : recovery.Entries()) {
            const std::string path = entry["path"];
            const std::string name = entry["name"];
            EXPECT_TRUE(known.contains(path) || known.contains(name) || path.starts_with("/$Extend") ||
                        (nameless && name.starts_with('#')))
                << path << " never was there";
        }
    }

    void ExpectAllBack();

    std::size_t misfits_ = 0;
    bool asStored_ = false;
};

void VolumesTest::ExpectAllBack() {
    const std::string image = ImagePath(GetParam());
    const json manifest = ManifestOf(GetParam());
    const json& partitions = manifest["partitions"];
    json found = json::parse(RunProgram(CliPath(), {"partitions", image, "--json"}).Out);
    for (json& volume : found) {
        EXPECT_TRUE(volume["verified"]) << volume;
        for (const char* beside : {"table", "verified", "label", "records"}) {
            volume.erase(beside);
        }
    }
    EXPECT_EQ(found, partitions);
    for (std::size_t i = 0; i < partitions.size(); ++i) {
        SCOPED_TRACE(i + 1);
        const Recovery recovery({image, "--partition", std::to_string(i + 1)}, asStored_);
        const json& rows = manifest["volumes"][i];
        misfits_ = 0;
        for (const json& row : rows) {
            SCOPED_TRACE(row["path"]);
            ExpectRow(recovery, row);
        }
        recovery.ExpectTotals(misfits_);
        if (asStored_) {
            ExpectCat(recovery, rows);
        }
        ExpectNothingElse(recovery, rows);
    }
}

TEST_P(VolumesTest, AllThatWasEverThereComesBack) { ExpectAllBack(); }

TEST_P(VolumesTest, ThePlainRoadGivesWhatItGives) {
    asStored_ = true;
    ExpectAllBack();
}

INSTANTIATE_TEST_SUITE_P(Packed, VolumesTest, testing::ValuesIn(ImageNames()),
                         [](const auto& name) { return name.param; });

} // namespace

} // namespace thntfs::test
