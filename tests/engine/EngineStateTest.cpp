#include "engine/ClusterSize.h"
#include "support/EngineFixture.h"

namespace thntfs::test {

namespace {

class EngineStateTest : public EngineFixture {};

} // namespace

TEST_F(EngineStateTest, LoadVolumeParamsFillsWhatACandidateLeavesOpen) {
    Engine.SourceDisk.BytesPerSector = 4096;
    SetTableRuns({{3, 7}});
    Engine.VolumeParams.MftRecordCount = 77;

    PartitionCandidate open;
    LoadVolumeParams(open);
    const VolumeParams& volume = Engine.VolumeParams;
    EXPECT_EQ(volume.BytesPerSector, 4096);
    EXPECT_EQ(volume.SectorsPerFileRecord, 2);
    EXPECT_EQ(volume.FileRecordBytes, 8192U);
    EXPECT_EQ(volume.ClusterBytes, 32768U) << "from 8 sectors a cluster";
    EXPECT_EQ(volume.SectorsPerCluster, 0U) << "which stays open itself";
    EXPECT_EQ(volume.SectorsPerIndexBlock, 8);
    EXPECT_EQ(volume.IndexBlockBytes, 32768U);
    EXPECT_EQ(volume.MftExtents.size(), 1U);
    EXPECT_EQ(volume.MftRecordCount, 77U);

    PartitionCandidate partly;
    partly.BytesPerSector = 1024;
    partly.SectorsPerCluster = 4;
    partly.SectorsPerFileRecord = 1;
    partly.SectorsPerIndexBlock = 16;
    LoadVolumeParams(partly);
    EXPECT_EQ(volume.FileRecordBytes, 1024U);
    EXPECT_EQ(volume.ClusterBytes, 4096U);
    EXPECT_EQ(volume.IndexBlockBytes, 16384U);

    PartitionCandidate full = CandidateOf({});
    full.ClusterBytes = 9;
    full.FileRecordBytes = 10;
    full.IndexBlockBytes = 11;
    full.VolumeSerial = 12;
    LoadVolumeParams(full);
    EXPECT_EQ(volume.ClusterBytes, 9U);
    EXPECT_EQ(volume.FileRecordBytes, 10U);
    EXPECT_EQ(volume.IndexBlockBytes, 11U);
    EXPECT_EQ(volume.VolumeSerial, 12U);
    EXPECT_EQ(volume.MftSector, 160U);
}

TEST_F(EngineStateTest, ResetClosesAndClears) {
    OpenVolume(VolumeBuilder());
    Engine.SourceDisk.Description.assign(1, u'x');
    Engine.SourceDisk.Partitions.emplace_back();
    Engine.ScanRunFlag = 1;
    Engine.NamesEnd = 12;
    ResetEngineState();
    bool linked = true;
    EXPECT_EQ(EncodeDisk(Engine.SourceDisk), StoredDisk{});
    EXPECT_EQ(EncodeVolume(Engine.VolumeParams), StoredVolume{});
    EXPECT_TRUE(DecodeDisk(StoredDisk{}, linked).Description.empty());
    EXPECT_FALSE(linked);
    EXPECT_EQ(Engine.SourceDisk.MediaHandle, nullptr);
    EXPECT_EQ(Engine.ScanRunFlag, 1U);
    EXPECT_EQ(Engine.NamesEnd, 12U) << "the catalogue has its own closing";
    Engine.NamesEnd = 0;
}

TEST_F(EngineStateTest, StoredVolumeAndExtentBytes) {
    VolumeParams volume;
    volume.TotalSectors = 0x0102030405060708;
    volume.StartSector = 0x80;
    volume.MftExtents.emplace_back();
    volume.MftRecordCount = 0x11223344;
    volume.FileRecordBytes = 1024;
    volume.IndexBlockBytes = 4096;
    volume.ClusterBytes = 0x8000;
    volume.BytesPerSector = 512;
    volume.SectorsPerFileRecord = 2;
    volume.SectorsPerIndexBlock = 8;
    volume.SectorsPerCluster = 64;
    volume.TurboScanRun = 1;
    const StoredVolume stored = EncodeVolume(volume);
    const ByteVector head(stored.begin(), stored.begin() + 8);
    const ByteVector tail(stored.begin() + 40, stored.end());
    EXPECT_EQ(head, (ByteVector{8, 7, 6, 5, 4, 3, 2, 1}));
    EXPECT_EQ(tail, (ByteVector{0x80, 0, 0, 0, 0,    0, 0, 0, 1,    0, 0, 0, 0x44, 0x33, 0x22, 0x11, 0,
                                4,    0, 0, 0, 0x10, 0, 0, 0, 0x80, 0, 0, 0, 2,    2,    8,    64,   1}));
    bool linked = false;
    EXPECT_EQ(EncodeVolume(DecodeVolume(stored, linked))[48], 0) << "decoding brings no extents along";
    EXPECT_TRUE(linked);

    MftExtent extent;
    extent.Clusters = 0x01020304;
    extent.StartCluster = 0x0A0B0C0D0E;
    EXPECT_EQ(EncodeMftExtent(extent, true),
              (StoredMftExtent{4, 3, 2, 1, 14, 13, 12, 11, 10, 0, 0, 0, 1, 0, 0, 0}));
}

TEST_F(EngineStateTest, StoredDiskCutsAndClosesItsText) {
    DiskRecord disk;
    disk.Description.assign(300, u'\u0394');
    disk.BytesPerSector = 0x0200;
    disk.TotalSectors = 0x0102030405060708;
    const StoredDisk stored = EncodeDisk(disk);
    EXPECT_EQ(stored[508], 0x94);
    EXPECT_EQ(stored[509], 0x03);
    EXPECT_EQ(ByteVector(stored.begin() + 510, stored.end()),
              (ByteVector{0, 0, 0, 0, 0, 0, 0, 2, 8, 7, 6, 5, 4, 3, 2, 1,
                          0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    bool linked = true;
    EXPECT_EQ(DecodeDisk(stored, linked).Description, std::u16string(255, u'\u0394'));
    EXPECT_FALSE(linked);
}

TEST_F(EngineStateTest, StoredCandidateBytes) {
    PartitionCandidate candidate;
    candidate.StartSector = 1;
    candidate.TotalSectors = 2;
    candidate.MftSector = 3;
    candidate.MftCluster = 4;
    candidate.MftMirrCluster = 5;
    candidate.VolumeSerial = 6;
    candidate.IndexBlockBytes = 7;
    candidate.ClusterBytes = 8;
    candidate.FileRecordBytes = 9;
    candidate.BytesPerSector = 10;
    candidate.SectorsPerCluster = 11;
    candidate.SectorsPerFileRecord = 12;
    candidate.SectorsPerIndexBlock = 13;
    candidate.EvidenceFlags = 14;
    const StoredCandidate stored = EncodeCandidate(candidate, true);
    ByteVector expected(76);
    for (std::uint8_t i = 1; i <= 6; ++i) {
        expected[8U * i] = i;
    }
    expected[56] = 7;
    expected[60] = 8;
    expected[64] = 9;
    expected[66] = 10;
    expected[68] = 11;
    expected[69] = 12;
    expected[70] = 13;
    expected[71] = 14;
    expected[72] = 1;
    EXPECT_EQ(ByteVector(stored.begin(), stored.end()), expected);
    bool linked = false;
    const PartitionCandidate decoded = DecodeCandidate(stored, linked);
    EXPECT_TRUE(linked);
    expected[72] = 0;
    const StoredCandidate again = EncodeCandidate(decoded, false);
    EXPECT_EQ(ByteVector(again.begin(), again.end()), expected);
}

TEST_F(EngineStateTest, ClustersOfAnySize) {
    struct Case {
        std::uint32_t Sectors;
        std::uint8_t Stored;
        std::uint32_t Loaded;
        bool Possible; ///< as loaded
    };
    for (const Case& test : {Case{128, 128, 128, true}, Case{4096, 0, 4096, true}, Case{6, 6, 6, false},
                             Case{8192, 0, 8192, false}, Case{0, 0, 0, true},
                             Case{244, 244, 4096, true}}) { // saved before powers were known
        PartitionCandidate candidate;
        candidate.BytesPerSector = 512;
        candidate.SectorsPerCluster = test.Sectors;
        candidate.ClusterBytes = 512 * test.Sectors;
        const StoredCandidate stored = EncodeCandidate(candidate, false);
        EXPECT_EQ(stored[68], test.Stored);
        bool linked = false;
        LoadVolumeParams(DecodeCandidate(stored, linked));
        const VolumeParams volume = DecodeVolume(EncodeVolume(Engine.VolumeParams), linked);
        EXPECT_EQ(volume.SectorsPerCluster, test.Loaded);
        EXPECT_EQ(volume.ClusterBytes, test.Loaded == 0 ? 4096 : 512 * test.Loaded);
        EXPECT_EQ(ClusterFault().empty(), test.Possible) << test.Sectors;
    }
}

} // namespace thntfs::test
