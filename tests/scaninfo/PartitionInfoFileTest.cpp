#include "engine/SectorReader.h"
#include "platform/system/Text.h"
#include "scaninfo/ScanInfoFixture.h"

namespace thntfs::test {

namespace {

class PartitionInfoFileTest : public ScanInfoFixture {};

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
        ExpectSaveLog("again", "Disk scan information saved successfully.", ".thd");
        EXPECT_EQ(ReadFileBytes(At("again.thd")), bytes);
    }
}

TEST_F(PartitionInfoFileTest, TheChoiceIsLoggedBeforeTheSuccessAndTheCatalogueIsLeftAlone) {
    EXPECT_TRUE(LoadTree(LayTreeInfo(laid_)).Done);
    const auto choose = [] {
        EXPECT_EQ(Engine.SourceDisk.Partitions.size(), 1U);
        EXPECT_NE(Engine.SourceDisk.MediaHandle, nullptr);
        EXPECT_EQ(Engine.VolumeParams.FileRecordBytes, 0U) << "of what was loaded before";
        LogLine("Selected", "", kLogInProgress);
    };
    EXPECT_TRUE(LoadPartitions(LayPartitionInfo(laid_), choose).Done);
    EXPECT_EQ(LogEnd(),
              (Lines{"Selected||0", "Disk scan information opened successfully.|" + At("laid.thd") + "|2"}));
    EXPECT_EQ(Paths(), kPaths);
}

TEST_F(PartitionInfoFileTest, FailuresAreToldAndLeaveTheEngineReset) {
    EXPECT_EQ(LoadPartitions(LayTreeInfo(laid_)).Text, "Not a valid Disk scan information"); // no full stop
    ExpectReset();
    laid_.Description = "/nowhere/disk.img";
    EXPECT_FALSE(LoadPartitions(LayPartitionInfo(laid_)).Done);
    ExpectLoadLog("laid.thd", "Failed to open Disk scan information. Errorcode =2", "1");
    ExpectReset();
    EXPECT_EQ(SavePartitionInfo(At("no/folder/a.thd")).Text,
              "Failed to save Disk scan information. Errorcode =2");
}

} // namespace

} // namespace thntfs::test
