#include "engine/SectorReader.h"
#include "platform/system/Text.h"
#include "scaninfo/ScanInfoFixture.h"

namespace thntfs::test {

namespace {

class PartitionInfoFileTest : public ScanInfoFixture {
protected:
    void ExpectFailedLoad(ConstBytes bytes, const std::string& text) {
        EXPECT_FALSE(LoadPartitions(bytes).Done);
        EXPECT_EQ(LogEnd(),
                  (Lines{"Processing Scan Info File : laid.thd|Location : " + scratch_.Path() + "|0",
                         text + "|" + At("laid.thd") + "|1"}));
        ExpectReset();
    }
};

TEST_F(PartitionInfoFileTest, ALoadedFileIsSavedWithTheSameBytes) {
    for (const std::size_t candidates : {0U, 1U, 2U, 5U}) {
        laid_.Candidates.assign(candidates, {0x89ABCDEF01, 0x1234567890ABCDEF, 64});
        const ByteVector bytes = LayPartitionInfo(laid_);
        EXPECT_TRUE(LoadPartitions(bytes).Done);
        EXPECT_EQ(NarrowText(Engine.SourceDisk.Description), ImagePath());
        EXPECT_EQ(MediumBytes(), 64U * 512);
        EXPECT_EQ(Engine.SourceDisk.Partitions.size(), candidates);
        EXPECT_EQ(Engine.VolumeParams.FileRecordBytes, 0U);
        EXPECT_TRUE(SavePartitionInfo(At("again")).Done);
        EXPECT_EQ(LogEnd(), (Lines{"Saving Scan Info File : again|To Location : " + scratch_.Path() + "|0",
                                   "Disk scan information saved successfully.|" + At("again.thd") + "|2"}));
        EXPECT_EQ(ReadFileBytes(At("again.thd")), bytes);
    }
}

TEST_F(PartitionInfoFileTest, TheChoiceIsLoggedBeforeTheSuccessAndTheCatalogueIsLeftAlone) {
    EXPECT_TRUE(LoadTree(LayTreeInfo(laid_)).Done);
    const auto choose = [] {
        EXPECT_EQ(Engine.SourceDisk.Partitions.size(), 1U);
        EXPECT_NE(Engine.SourceDisk.MediaHandle, nullptr);
        LogLine("Selected", "", kLogInProgress);
    };
    EXPECT_TRUE(LoadPartitions(LayPartitionInfo(laid_), choose).Done);
    EXPECT_EQ(LogEnd(),
              (Lines{"Selected||0", "Disk scan information opened successfully.|" + At("laid.thd") + "|2"}));
    EXPECT_EQ(Paths(), kPaths);
}

TEST_F(PartitionInfoFileTest, FailedLoadsLeaveTheEngineReset) {
    const char* const invalid = "Not a valid Disk scan information"; // without a full stop
    ExpectFailedLoad(LayTreeInfo(laid_), invalid);
    ExpectFailedLoad(ByteVector{1, 1}, invalid);
    ByteVector promising = LayPartitionInfo(laid_);
    Lay(promising, 546 + 72, 4, 1);
    ExpectFailedLoad(promising, invalid);
    laid_.Description = "/nowhere/disk.img";
    ExpectFailedLoad(LayPartitionInfo(laid_), "Failed to open Disk scan information. Errorcode =2");

    EXPECT_FALSE(SavePartitionInfo(At("no/folder/a.thd")).Done);
    EXPECT_EQ(Reports.Log.back().Name, "Failed to save Disk scan information. Errorcode =2");
    EXPECT_EQ(Reports.Log.back().Status, kLogFailed);
}

} // namespace

} // namespace thntfs::test
