#include "partitions/BootSector.h"

#include "support/EngineFixture.h"

#include <functional>

namespace thntfs::test {

namespace {

class BootSectorTest : public EngineFixture {};

using Change = std::function<void(BootSectorFields&)>;

BootSectorFields Fields() { return BootFieldsOf({}); }

} // namespace

TEST_F(BootSectorTest, Recognition) {
    struct Case {
        const char* Name;
        Change Apply;
        int Expected;
    };
    const Case cases[] = {
        {"as it is", [](BootSectorFields&) {}, 1},
        {"no jump",
         [](BootSectorFields& f) {
             f.Jump = {0, 0x52, 0x90};
         },
         0},
        {"half a jump",
         [](BootSectorFields& f) {
             f.Jump = {0xEB, 0, 0x90};
         },
         0},
        {"another jump",
         [](BootSectorFields& f) {
             f.Jump = {0xE9, 1, 0x90};
         },
         1},
        {"no NOP",
         [](BootSectorFields& f) {
             f.Jump = {0xEB, 0x52, 0x91};
         },
         0},
        {"label", [](BootSectorFields& f) { f.Label = "MSDOS5.0"; }, 1},
        {"signature", [](BootSectorFields& f) { f.Signature = 0; }, 1},
        {"sectors of a FAT volume", [](BootSectorFields& f) { f.Zero32 = 1; }, 0},
        {"drive word", [](BootSectorFields& f) { f.DriveWord = 0x29; }, 0},
        {"no total", [](BootSectorFields& f) { f.TotalSectors = 0; }, 0},
        {"no table", [](BootSectorFields& f) { f.MftCluster = 0; }, 0},
        {"no mirror", [](BootSectorFields& f) { f.MirrorCluster = 0; }, 0},
        {"total all ones", [](BootSectorFields& f) { f.TotalSectors = ~0ULL; }, 0},
        {"total nearly all ones", [](BootSectorFields& f) { f.TotalSectors = 0xFFFFFFFFFFFFFFFE; }, 1},
        {"mirror half ones", [](BootSectorFields& f) { f.MirrorCluster = 0xFFFFFFFF; }, 1},
        {"record size", [](BootSectorFields& f) { f.RecordSizeCode = 0; }, 0},
        {"block size", [](BootSectorFields& f) { f.IndexBlockSizeCode = 0; }, 0},
        {"sizes of any kind", [](BootSectorFields& f) { f.RecordSizeCode = f.IndexBlockSizeCode = 0x80; }, 1},
    };
    for (const Case& test : cases) {
        BootSectorFields fields = Fields();
        test.Apply(fields);
        EXPECT_EQ(IsNtfsBootSector(EncodeBootSector(fields)), test.Expected) << test.Name;
    }
    EXPECT_EQ(IsNtfsBootSector(ByteVector(512)), 0);

    for (const auto& [bytes, expected] : {std::pair{0, 1},
                                          {512, 1},
                                          {1024, 1},
                                          {2048, 1},
                                          {4096, 1},
                                          {8192, 1},
                                          {1536, 0},
                                          {513, 0},
                                          {256, 0}}) {
        BootSectorFields fields = Fields();
        fields.SectorBytes = static_cast<std::uint16_t>(bytes);
        EXPECT_EQ(IsNtfsBootSector(EncodeBootSector(fields)), expected) << bytes;
    }
    for (const auto& [sectors, expected] :
         {std::pair{0, 0}, {1, 1}, {2, 1}, {6, 1}, {128, 1}, {254, 1}, {3, 0}, {255, 0}, {0xF5, 1}}) {
        BootSectorFields fields = Fields();
        fields.SectorsPerCluster = static_cast<std::uint8_t>(sectors);
        EXPECT_EQ(IsNtfsBootSector(EncodeBootSector(fields)), expected) << sectors;
    }
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
        {512, 8, 0xF4, 8, 4096, 4096, 4096},
        {512, 8, 1, 8, 4096, 4096, 4096},
        {512, 128, 1, 128, 65536, 0, 0}, // 65536 does not fit into 16 bits
        {512, 128, 2, 0, 0, 0, 0},       // nor 256 sectors into 8
        {512, 128, 3, 128, 65536, 0, 0},
        {512, 1, 0x7F, 127, 65024, 65024, 65024},
        {4096, 1, 0xF6, 0, 1024, 1024, 0}, // a record shorter than a sector
        {4096, 1, 0xF4, 1, 4096, 4096, 4096},
        {512, 8, 0xF7, 1, 512, 512, 512},
        {512, 8, 0xF8, 0, 256, 256, 0},
        {512, 8, 0xE1, 0, 0x80000000, 0, 0},
        {512, 8, 0x80, 0, 0, 0, 0},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(testing::Message()
                     << test.SectorBytes << " " << int{test.Cluster} << " " << int{test.Code});
        BootSectorFields fields = Fields();
        fields.SectorBytes = test.SectorBytes;
        fields.SectorsPerCluster = test.Cluster;
        fields.RecordSizeCode = fields.IndexBlockSizeCode = test.Code;
        const ByteVector sector = EncodeBootSector(fields);
        PartitionCandidate table;
        DecodeTableBootSector(sector, 63, 1000, table);
        EXPECT_EQ(table.SectorsPerFileRecord, test.Sectors);
        EXPECT_EQ(table.SectorsPerIndexBlock, test.Sectors);
        EXPECT_EQ(table.IndexBlockBytes, test.TableBytes);
        EXPECT_EQ(table.FileRecordBytes, test.TableRecord);
        PartitionCandidate found;
        DecodeFoundBootSector(sector, 63, found);
        EXPECT_EQ(found.SectorsPerFileRecord, test.Sectors);
        EXPECT_EQ(found.SectorsPerIndexBlock, test.Sectors);
        EXPECT_EQ(found.IndexBlockBytes, 0U);
        EXPECT_EQ(found.FileRecordBytes, test.FoundRecord);
    }
}

TEST_F(BootSectorTest, OtherFieldsInBothForms) {
    Engine.SourceDisk.BytesPerSector = 4096;
    BootSectorFields fields = Fields();
    fields.TotalSectors = 0x1234567890;
    fields.MftCluster = 0x100000000;
    const ByteVector sector = EncodeBootSector(fields);
    PartitionCandidate table;
    DecodeTableBootSector(sector, 0x200000000, 777, table);
    PartitionCandidate found;
    DecodeFoundBootSector(sector, 0x200000000, found);
    for (const PartitionCandidate* candidate : {&table, &found}) {
        EXPECT_EQ(candidate->StartSector, 0x200000000U);
        EXPECT_EQ(candidate->MftCluster, 0x100000000U);
        EXPECT_EQ(candidate->MftSector, 0x200000000U + 0x800000000U);
        EXPECT_EQ(candidate->MftMirrCluster, 1024U);
        EXPECT_EQ(candidate->VolumeSerial, 0x1122334455667788U);
        EXPECT_EQ(candidate->SectorsPerCluster, 8U);
        EXPECT_EQ(candidate->BytesPerSector, 512);
        EXPECT_EQ(candidate->ClusterBytes, 4096U);
    }
    EXPECT_EQ(table.TotalSectors, 777U);
    EXPECT_EQ(table.EvidenceFlags, 0);
    EXPECT_EQ(found.TotalSectors, 0x1234567890U);
    EXPECT_EQ(found.EvidenceFlags, kEvidenceBootSector);

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
    EXPECT_EQ(table.FileRecordBytes, 1024);
    EXPECT_EQ(table.SectorsPerFileRecord, 0);
    DecodeFoundBootSector(EncodeBootSector(fields), 0, found);
    EXPECT_EQ(found.BytesPerSector, 0);
    EXPECT_EQ(found.ClusterBytes, 0U);
    EXPECT_EQ(found.FileRecordBytes, 0);
}

} // namespace thntfs::test
