#pragma once

#include "catalogue/CatalogueFixture.h"
#include "catalogue/EntryWalk.h"
#include "scaninfo/HandLaid.h"
#include "scaninfo/PartitionInfoFile.h"
#include "scaninfo/TreeInfoFile.h"

#include <filesystem>
#include <set>

namespace thntfs::test {

/// The engine with a catalogue folder, and a folder with an image to which the hand-laid files lead.
class ScanInfoFixture : public CatalogueFixture {
protected:
    ScanInfoFixture() {
        EXPECT_EQ(scratch_.Create(), kErrorNone);
        WriteFileBytes(ImagePath(), NumberedSectors(64));
        laid_.Description = ImagePath();
        laid_.TotalSectors = 64;
        laid_.Candidates = {{128, 16383, 8}};
        laid_.Extents = {{64, 4}};
        LaySmallCatalogue(laid_);
    }

    [[nodiscard]] std::string ImagePath() const { return At("disk.img"); }
    [[nodiscard]] std::string At(const std::string& name) const { return scratch_.Path() + "/" + name; }

    /// Writes bytes to a file and loads it.
    ScanInfoResult LoadTree(ConstBytes bytes) {
        WriteFileBytes(At("laid.tht"), bytes);
        return LoadTreeInfo(At("laid.tht"));
    }
    ScanInfoResult LoadPartitions(ConstBytes bytes, const std::function<void()>& choose = {}) {
        WriteFileBytes(At("laid.thd"), bytes);
        return LoadPartitionInfo(At("laid.thd"), choose);
    }

    /// Names of what lies in the folder.
    [[nodiscard]] std::set<std::string> Names() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(scratch_.Path())) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

    using Lines = std::vector<std::string>;

    /// What the small catalogue holds.
    const Lines kPaths = {"", "/folder", "/folder/file.txt"};

    /// What the open catalogue holds.
    static Lines Paths() {
        Lines paths;
        EntryWalk walk({}, WalkReach::Whole);
        while (walk.Next()) {
            paths.push_back(walk.Path());
        }
        return paths;
    }

    static void ExpectReset() {
        EXPECT_EQ(Engine.SourceDisk.MediaHandle, nullptr);
        EXPECT_TRUE(Engine.SourceDisk.Description.empty());
        EXPECT_TRUE(Engine.SourceDisk.Partitions.empty());
        EXPECT_EQ(Engine.SourceDisk.BytesPerSector, 0);
        EXPECT_TRUE(Engine.VolumeParams.MftExtents.empty());
        EXPECT_EQ(Engine.VolumeParams.FileRecordBytes, 0U);
    }

    /// The last two records of the log, the one that begins and the one that ends, as "name|text|status".
    [[nodiscard]] Lines LogEnd() const {
        Lines lines;
        for (std::size_t i = Reports.Log.size() - 2; i < Reports.Log.size(); ++i) {
            const ProcessLogEntry& entry = Reports.Log[i];
            lines.push_back(entry.Name + "|" + entry.Description + "|" + std::to_string(entry.Status));
        }
        return lines;
    }

    WorkFolder scratch_;
    Laid laid_;
};

} // namespace thntfs::test
