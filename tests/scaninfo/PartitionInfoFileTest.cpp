#include "engine/SectorReader.h"
#include "platform/system/Text.h"
#include "scaninfo/ScanInfoFixture.h"

namespace thntfs::test {

namespace {

constexpr const char* kInvalidSearch = "Not a valid Disk scan information"; // without a full stop
constexpr const char* kSearchOpened = "Disk scan information opened successfully.";

class PartitionInfoFileTest : public ScanInfoFixture {
protected:
    void ExpectFailedLoad(ConstBytes bytes, const std::string& text) {
        const ScanInfoResult result = LoadPartitions(bytes);
        EXPECT_FALSE(result.Done);
        ExpectLog(
            {"Processing Scan Info File : laid.thd", "Location : " + scratch_.Path(), "", kLogInProgress},
            {text, At("laid.thd"), "", kLogFailed});
        ExpectReset();
    }
};

TEST_F(PartitionInfoFileTest, ALoadedFileIsSavedWithTheSameBytes) {
    for (const std::size_t candidates : {1U, 2U, 5U}) {
        laid_.Candidates.assign(candidates, {0x89ABCDEF01, 0x1234567890ABCDEF, 64});
        const ByteVector bytes = LayPartitionInfo(laid_);
        EXPECT_EQ(bytes.size(), 546 + 76 * candidates);
        EXPECT_TRUE(LoadPartitions(bytes).Done);
        EXPECT_TRUE(SavePartitionInfo(At("again")).Done);
        ExpectLog({"Saving Scan Info File : again", "To Location : " + scratch_.Path(), "", kLogInProgress},
                  {"Disk scan information saved successfully.", At("again.thd"), "", kLogDone});
        EXPECT_EQ(ReadFileBytes(At("again.thd")), bytes);
    }
}

TEST_F(PartitionInfoFileTest, LoadRestoresMediumAndList) {
    laid_.Candidates = {{63, 100, 1}, {4096, 200, 8}};
    EXPECT_TRUE(LoadPartitions(LayPartitionInfo(laid_)).Done);
    EXPECT_EQ(NarrowText(Engine.SourceDisk.Description), ImagePath());
    EXPECT_EQ(MediumBytes(), 64U * 512);
    ASSERT_EQ(Engine.SourceDisk.Partitions.size(), 2U);
    EXPECT_EQ(Engine.SourceDisk.Partitions.front().StartSector, 63U);
    EXPECT_EQ(Engine.SourceDisk.Partitions.back().TotalSectors, 200U);
    EXPECT_EQ(Engine.VolumeParams.FileRecordBytes, 0U);

    laid_.Candidates.clear();
    EXPECT_TRUE(LoadPartitions(LayPartitionInfo(laid_)).Done);
    EXPECT_TRUE(Engine.SourceDisk.Partitions.empty());
}

TEST_F(PartitionInfoFileTest, TheChoiceIsLoggedBeforeTheSuccess) {
    const auto choose = [] {
        EXPECT_EQ(Engine.SourceDisk.Partitions.size(), 1U);
        EXPECT_NE(Engine.SourceDisk.MediaHandle, nullptr);
        ProcessLogEntry entry;
        entry.Name = "Selected";
        Host().LogEvent(entry);
    };
    EXPECT_TRUE(LoadPartitions(LayPartitionInfo(laid_), choose).Done);
    ExpectLog({"Selected", "", "", kLogInProgress}, {kSearchOpened, At("laid.thd"), "", kLogDone});
}

TEST_F(PartitionInfoFileTest, TheCatalogueIsLeftAlone) {
    EXPECT_TRUE(LoadTree(LayTreeInfo(laid_)).Done);
    EXPECT_TRUE(LoadPartitions(LayPartitionInfo(laid_)).Done);
    EXPECT_EQ(Paths().size(), 3U);
}

TEST_F(PartitionInfoFileTest, FailedLoadsLeaveTheEngineReset) {
    ExpectFailedLoad(LayTreeInfo(laid_), kInvalidSearch);
    ExpectFailedLoad(ByteVector{1, 1}, kInvalidSearch);
    ByteVector promising = LayPartitionInfo(laid_);
    Lay(promising, 546 + 72, 4, 1);
    ExpectFailedLoad(promising, kInvalidSearch);
    laid_.Description = "/nowhere/disk.img";
    ExpectFailedLoad(LayPartitionInfo(laid_), "Failed to open Disk scan information. Errorcode =2");

    EXPECT_FALSE(LoadPartitionInfo(At("missing.thd")).Done);
    EXPECT_EQ(Reports.Log.back().Name, "Failed to open Disk scan information. Errorcode =2");
    EXPECT_FALSE(SavePartitionInfo(At("no/folder/a.thd")).Done);
    EXPECT_EQ(Reports.Log.back().Name, "Failed to save Disk scan information. Errorcode =2");
    EXPECT_EQ(Reports.Log.back().Status, kLogFailed);
}

} // namespace

} // namespace thntfs::test
