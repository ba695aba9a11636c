#pragma once

#include "catalogue/CatalogueFixture.h"
#include "catalogue/EntryWalk.h"
#include "scaninfo/HandLaid.h"
#include "scaninfo/PartitionInfoFile.h"
#include "scaninfo/TreeInfoFile.h"
#include "scans/BasicScan.h"
#include "support/RunProgram.h"

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
        for (const auto& entry : fs::directory_iterator(scratch_.Path())) {
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

    /// Scans the volume that is in use into a new catalogue, which is open then.
    static void Scan() {
        Engine.ScanRunFlag = 1;
        ASSERT_EQ(CreateCatalogue(), 1);
        ASSERT_EQ(BasicScan(), 1);
        Engine.ScanRunFlag = 0;
        CloseCatalogue();
        ASSERT_EQ(OpenCatalogue(), 1);
    }

    static void ExpectReset() {
        EXPECT_EQ(Engine.SourceDisk.MediaHandle, nullptr);
        EXPECT_TRUE(Engine.SourceDisk.Description.empty());
        EXPECT_TRUE(Engine.SourceDisk.Partitions.empty());
        EXPECT_EQ(Engine.SourceDisk.BytesPerSector, 0);
        EXPECT_TRUE(Engine.VolumeParams.MftExtents.empty());
        EXPECT_EQ(Engine.VolumeParams.FileRecordBytes, 0U);
        EXPECT_EQ(Engine.EntryFile, nullptr);
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
    void ExpectLoadLog(const std::string& file, const std::string& text, const std::string& status) const {
        EXPECT_EQ(LogEnd(),
                  (Lines{"Processing Scan Info File : " + file + "|Location : " + scratch_.Path() + "|0",
                         text + "|" + At(file) + "|" + status}));
    }
    void ExpectSaveLog(const std::string& name, const std::string& text, const char* ending) const {
        EXPECT_EQ(LogEnd(),
                  (Lines{"Saving Scan Info File : " + name + "|To Location : " + scratch_.Path() + "|0",
                         text + "|" + At(name + ending) + "|2"}));
    }

    void ExpectFailedLoad(ConstBytes bytes,
                          const std::string& text = "Not a valid Partition scan information.") {
        const ScanInfoResult result = LoadTree(bytes);
        EXPECT_FALSE(result.Done);
        EXPECT_EQ(result.Text, text);
        ExpectLoadLog("laid.tht", text, "1");
        ExpectReset();
    }

    WorkFolder scratch_;
    Laid laid_;
};

} // namespace thntfs::test
