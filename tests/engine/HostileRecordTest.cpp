#include "engine/AttributeList.h"
#include "engine/DecodeRecord.h"
#include "engine/EngineFixture.h"
#include "engine/FileRecord.h"
#include "engine/LocateMft.h"
#include "engine/RunList.h"

#include <random>

namespace thntfs::test {

namespace {

/// Records as a volume has them, changed in a few bytes and read from buffers of exactly their size. The
/// tests look for what a sanitizer sees, for walks that don't end, and for results that no record may give.
class HostileRecordTest : public EngineFixture {
protected:
    HostileRecordTest() {
        OpenVolume(Volume);
        Engine.ScanRunFlag = 1;
        Volume.AddFolder({.Number = 30, .Name = u"folder"});
        Volume.AddFile({.Number = 31, .Parent = 30, .Name = u"file", .Content = BytesOf("abc")});
        Volume.AddFile(
            {.Number = 32, .Name = u"clusters", .Content = PatternBytes(9000), .InClusters = true});
        const std::vector<ListEntry> list = {
            {kStandardInformation, 33}, {kFileName, 31}, {kData, 31}, {kData, 32, 4}, {kFileName, 33}};
        const std::uint64_t listCluster = Volume.AllocateClusters(1);
        Volume.PutClusters(listCluster, EncodeAttributeList(list));
        Volume.PlaceRecord(Volume.NewRecord(33).AddStandardInformation().AddAttributeList(list).AddFileName(
            NameIn(30, u"listed")));
        Volume.PlaceRecord(
            Volume.NewRecord(34, RecordForm::Older)
                .SetFolder(true)
                .AddStandardInformation()
                .AddAttributeList(NonResidentValue{.Runs = {{1, listCluster}, {2, 90}, {3, {}}}})
                .AddIndexRoot({{.Reference = 9, .Key = NameIn(34, u"child")}}));
    }

    ByteVector RecordBytes(std::uint32_t number) {
        const auto start =
            Volume.Image().begin() + static_cast<std::ptrdiff_t>(Volume.RecordSector(number) * 512);
        return ByteVector(start, start + 1024);
    }

    std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(Random()) % limit; }

    std::uint8_t HostileByte() {
        constexpr std::uint8_t kBytes[] = {0,    1,    2,    7,    8,    0x10, 0x20,
                                           0x30, 0x44, 0x7F, 0x80, 0x90, 0xF8, 0xFF};
        return Below(3) == 0 ? static_cast<std::uint8_t>(Below(256)) : kBytes[Below(std::size(kBytes))];
    }

    /// Changes up to six bytes in front of the protection's saved words and in the attributes.
    void Mutate(ByteVector& record) {
        for (std::uint32_t i = 1 + Below(6); i > 0; --i) {
            record[Below(3) == 0 ? 16 + Below(32) : 48 + Below(460)] = HostileByte();
        }
        if (Below(4) == 0) {
            PutNumber(record, 24, 8 * Below(129)); // bytes in use
        }
    }

    VolumeBuilder Volume;
    std::mt19937 Random{20240229};
};

constexpr std::uint32_t kSeedRecords[] = {0, 5, 30, 31, 32, 33, 34};

} // namespace

TEST_F(HostileRecordTest, MutatedRecords) {
    std::uint32_t passed = 0;
    for (int round = 0; round < 40000; ++round) {
        ByteVector record = RecordBytes(kSeedRecords[Below(std::size(kSeedRecords))]);
        Mutate(record);
        if (CheckFileRecord(record, 1024, 512) == 0) {
            continue;
        }
        ++passed;
        DecodedEntry entry;
        const int kept = DecodeFileRecord(record, entry);
        ASSERT_LE(entry.NameLength, 255);
        ASSERT_TRUE(kept == 1 ? entry.RecordNumber != entry.ParentNumber : entry.NameLength == 0);
        HasAttributeList(record);
        for (AttributeWalk walk(record); walk.Valid(); walk.Next()) {
            ListHead<MftExtent> runs;
            DecodeRunList(record, walk.Current().RunListStart(), runs);
            ASSERT_LE(runs.Count(), 1024U);
        }
    }
    EXPECT_GT(passed, 5000U) << "most mutations must get through the first tests to be worth anything";
}

TEST_F(HostileRecordTest, CutRecordsAndUncheckedOnes) {
    for (std::size_t bytes = 0; bytes <= 1024; bytes += bytes < 320 ? 1 : 8) {
        for (const std::uint32_t number : kSeedRecords) {
            const ByteVector whole = RecordBytes(number);
            ByteVector cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(bytes));
            CheckFileRecord(cut, 1024, 512);
            CheckIndexBlock(cut, 512);
            DecodedEntry entry;
            DecodeFileRecord(cut, entry);
            IsMftMirrRecord(cut, 1024);
        }
    }
}

TEST_F(HostileRecordTest, MutatedTableRecord) {
    const ByteVector good = RecordBytes(0);
    const std::vector<ListEntry> list = {
        {kData, 0, 0, 3}, {kData, 32, 4, 2}, {kFileName, 0}, {kData, 200000, 9, 1}};
    const ByteVector listed = Volume.NewRecord(0)
                                  .AddStandardInformation()
                                  .AddAttributeList(list)
                                  .AddFileName(NameIn(5, u"$MFT"))
                                  .AddData({.Runs = {{2, 64}, {2, 66}}})
                                  .Finish();
    std::uint32_t located = 0;
    for (int round = 0; round < 4000; ++round) {
        ByteVector record = round % 2 == 0 ? good : listed;
        if (round > 1) {
            Mutate(record);
        }
        Volume.PlaceRecord(0, record);
        located += static_cast<std::uint32_t>(LocateMft());
    }
    EXPECT_GT(located, 500U);
}

TEST_F(HostileRecordTest, RandomRunsAndLists) {
    for (int round = 0; round < 20000; ++round) {
        ByteVector bytes(Below(120));
        for (std::uint8_t& byte : bytes) {
            byte = HostileByte();
        }
        ListHead<MftExtent> runs;
        DecodeRunList(bytes, Below(4), runs);
        EXPECT_LE(runs.Count(), bytes.size());
        std::size_t entries = 0;
        WalkListEntries(bytes, [&entries](const AttributeListEntry& entry) {
            entries += entry.Named() || MakeListNode(entry)->Next == nullptr ? 1 : 0;
            return ListStep::GoOn;
        });
        EXPECT_LE(entries, bytes.size());
    }
}

} // namespace thntfs::test
