#include "content/EntryContent.h"
#include "engine/LocateMft.h"
#include "partitions/OpenSource.h"
#include "partitions/PartitionTable.h"
#include "scaninfo/ScanInfoFixture.h"
#include "support/BuildPaths.h"
#include "support/MemoryFile.h"

namespace thntfs::test {

namespace {

/// Scans of real volumes, kept and loaded again.
class SavedVolumeTest : public ScanInfoFixture {
protected:
    void TakeVolume(const PartitionCandidate& candidate) {
        LoadVolumeParams(candidate);
        ASSERT_EQ(LocateMft(), 1);
        Scan();
    }

    /// Each entry with its content.
    static std::vector<std::string> Picture() {
        std::vector<std::string> lines;
        EntryWalk walk({}, WalkReach::Whole);
        while (walk.Next()) {
            const CatalogueItem& item = walk.Item();
            lines.push_back(walk.Path() + " " + std::to_string(item.Size) + " " + std::to_string(item.Flags));
            if (!item.IsFolder()) {
                MemoryFile content;
                MissingData missing;
                Engine.BytesWritten = 0;
                ReadEntryContent(item, content, missing);
                lines.back().append(content.Content.begin(), content.Content.end());
            }
        }
        return lines;
    }
};

TEST_F(SavedVolumeTest, LoadsAsItWasScanned) {
    for (const std::string name : {"compressed", "mftfrag"}) {
        SCOPED_TRACE(name);
        ASSERT_EQ(OpenSource(VolumeFolder() + "/" + name + ".img"), kErrorNone);
        ASSERT_EQ(ReadPartitionTable(), 1);
        TakeVolume(Engine.SourceDisk.Partitions.back());
        const std::vector<std::string> scanned = Picture();
        const auto runs = RunsIn(Engine.VolumeParams.MftExtents);
        const std::size_t candidates = Engine.SourceDisk.Partitions.size();
        EXPECT_GT(scanned.size(), 3U);
        EXPECT_TRUE(SaveTreeInfo(At("scan.tht")).Done);
        EXPECT_TRUE(SavePartitionInfo(At("found.thd")).Done);
        const ByteVector saved = ReadFileBytes(At("scan.tht"));

        EXPECT_TRUE(LoadTreeInfo(At("scan.tht")).Done);
        EXPECT_EQ(Picture(), scanned);
        EXPECT_EQ(RunsIn(Engine.VolumeParams.MftExtents), runs);
        EXPECT_EQ(Engine.SourceDisk.Partitions.size(), candidates);
        EXPECT_TRUE(SaveTreeInfo(At("again.tht")).Done);
        EXPECT_EQ(ReadFileBytes(At("again.tht")), saved);

        EXPECT_TRUE(LoadPartitionInfo(At("found.thd")).Done);
        ASSERT_EQ(Engine.SourceDisk.Partitions.size(), candidates);
        TakeVolume(Engine.SourceDisk.Partitions.back());
        EXPECT_EQ(Picture(), scanned);
    }
}

} // namespace

} // namespace thntfs::test
