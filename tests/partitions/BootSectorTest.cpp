#include "partitions/BootSector.h"

#include "support/EngineFixture.h"

namespace thntfs::test {

namespace {

class BootSectorTest : public EngineFixture {};

/// Sectors of a record, sectors of an index block, its bytes, bytes of a record.
using Sizes = std::vector<std::uint32_t>;

Sizes SizesOf(const PartitionCandidate& candidate) {
    return {candidate.SectorsPerFileRecord, candidate.SectorsPerIndexBlock, candidate.IndexBlockBytes,
            candidate.FileRecordBytes};
}

} // namespace

TEST_F(BootSectorTest, Recognition) {
    struct Case {
        const char* Name;
        std::size_t Offset;
        std::size_t Width;
        std::uint64_t Value;
        bool Expected;
    };
    std::vector<Case> cases = {
        {"no jump", 0, 1, 0, false},
        {"half a jump", 1, 1, 0, false},
        {"another jump", 0, 2, 0x01E9, true},
        {"no NOP", 2, 1, 0x91, false},
        {"label", 3, 1, 'M', true},
        {"sectors of a FAT volume", 32, 4, 1, false},
        {"drive word", 36, 2, 0x29, false},
        {"no total", 40, 8, 0, false},
        {"total all ones", 40, 8, ~0ULL, false},
        {"total nearly all ones", 40, 8, ~1ULL, true},
        {"no table", 48, 8, 0, false},
        {"no mirror", 56, 8, 0, false},
        {"mirror half ones", 56, 8, 0xFFFFFFFF, true},
        {"no record size", 64, 1, 0, false},
        {"any record size", 64, 1, 0x80, true},
        {"no block size", 68, 1, 0, false},
        {"any block size", 68, 1, 0x80, true},
        {"signature", 510, 2, 0, true},
    };
    for (const std::uint64_t bytes : {0U, 512U, 1024U, 4096U, 8192U, 1536U, 513U, 256U}) {
        cases.push_back({"sector size", 11, 2, bytes, bytes != 1536 && bytes != 513 && bytes != 256});
    }
    for (const std::uint64_t sectors : {1U, 2U, 6U, 128U, 254U, 0xF5U, 0U, 3U, 255U}) {
        cases.push_back({"cluster", 13, 1, sectors, sectors != 0 && sectors != 3 && sectors != 255});
    }
    for (const Case& test : cases) {
        ByteVector sector = EncodeBootSector(BootFieldsOf({}));
        EXPECT_TRUE(IsNtfsBootSector(sector));
        ApplyPokes(sector, {{test.Offset, test.Width, test.Value}});
        EXPECT_EQ(IsNtfsBootSector(sector), test.Expected) << test.Name << " " << test.Value;
    }
    EXPECT_FALSE(IsNtfsBootSector(ByteVector(512)));
}

TEST_F(BootSectorTest, SizesInBothForms) {
    struct Case {
        std::uint16_t SectorBytes;
        std::uint8_t Cluster;
        std::uint8_t Code;
        std::uint8_t Sectors;      ///< by either form
        std::uint32_t TableBytes;  ///< index block, by the table form
        std::uint16_t TableRecord; ///< file record, by the table form
        std::uint16_t FoundRecord; ///< file record, by the search form
    };
    const Case cases[] = {
        {512, 8, 0xF6, 2, 1024, 1024, 1024},
        {512, 8, 1, 8, 4096, 4096, 4096},
        {512, 128, 1, 128, 65536, 0, 0}, // 65536 does not fit into 16 bits
        {512, 128, 2, 0, 0, 0, 0},       // nor 256 sectors into 8
        {512, 128, 3, 128, 65536, 0, 0},
        {512, 1, 0x7F, 127, 65024, 65024, 65024},
        {4096, 1, 0xF6, 0, 1024, 1024, 0}, // a record shorter than a sector
        {4096, 1, 0xF4, 1, 4096, 4096, 4096},
        {512, 8, 0xF8, 0, 256, 256, 0},
        {512, 8, 0xE1, 0, 0x80000000, 0, 0},
        {512, 8, 0x80, 0, 0, 0, 0},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(testing::Message()
                     << test.SectorBytes << " " << int{test.Cluster} << " " << int{test.Code});
        BootSectorFields fields = BootFieldsOf({});
        fields.SectorBytes = test.SectorBytes;
        fields.SectorsPerCluster = test.Cluster;
        fields.RecordSizeCode = fields.IndexBlockSizeCode = test.Code;
        const ByteVector sector = EncodeBootSector(fields);
        PartitionCandidate table;
        DecodeTableBootSector(sector, 63, 1000, table);
        EXPECT_EQ(SizesOf(table), (Sizes{test.Sectors, test.Sectors, test.TableBytes, test.TableRecord}));
        PartitionCandidate found;
        DecodeFoundBootSector(sector, 63, found);
        EXPECT_EQ(SizesOf(found), (Sizes{test.Sectors, test.Sectors, 0, test.FoundRecord}));
    }
}

TEST_F(BootSectorTest, OtherFieldsInBothForms) {
    Engine.SourceDisk.BytesPerSector = 4096;
    BootSectorFields fields = BootFieldsOf({});
    fields.TotalSectors = 0x1234567890;
    fields.MftCluster = 0x100000000;
    const ByteVector sector = EncodeBootSector(fields);
    PartitionCandidate table;
    DecodeTableBootSector(sector, 0x200000000, 777, table);
    PartitionCandidate found;
    DecodeFoundBootSector(sector, 0x200000000, found);
    PartitionCandidate expected = {
        0x200000000, 777, 0xA00000000, 0x100000000, 1024, 0x1122334455667788, 4096, 4096, 1024, 8, 512, 2, 8};
    EXPECT_EQ(EncodeCandidate(table, false), EncodeCandidate(expected, false));
    expected.TotalSectors = 0x1234567890;
    expected.EvidenceFlags = kEvidenceBootSector;
    expected.IndexBlockBytes = 0; // the table's form alone has it
    EXPECT_EQ(EncodeCandidate(found, false), EncodeCandidate(expected, false));

    fields.SectorsPerCluster = 0xF5; // 2 to the power of 11
    DecodeFoundBootSector(EncodeBootSector(fields), 63, found);
    EXPECT_EQ(found.SectorsPerCluster, 2048U);
    EXPECT_EQ(found.ClusterBytes, 1U << 20U);
    EXPECT_EQ(found.MftSector, 63 + (0x800ULL << 32U));
    fields.SectorsPerCluster = 8;

    fields.SectorBytes = 0;
    DecodeTableBootSector(EncodeBootSector(fields), 0, 1, table);
    EXPECT_EQ(table.BytesPerSector, 4096) << "the medium's";
    EXPECT_EQ(table.ClusterBytes, 32768U);
    DecodeFoundBootSector(EncodeBootSector(fields), 0, found);
    EXPECT_EQ(found.BytesPerSector, 0);
    EXPECT_EQ(found.ClusterBytes, 0U);
}

} // namespace thntfs::test
