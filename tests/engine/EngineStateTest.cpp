#include "engine/ClusterSize.h"
#include "support/EngineFixture.h"

namespace thntfs::test {

namespace {

class EngineStateTest : public EngineFixture {};

/// Offset and value of each byte that isn't 0.
using Marks = std::vector<std::pair<std::size_t, int>>;

Marks MarksOf(ConstBytes stored) {
    Marks marks;
    for (std::size_t i = 0; i < stored.size(); ++i) {
        if (stored[i] != 0) {
            marks.emplace_back(i, stored[i]);
        }
    }
    return marks;
}

} // namespace

TEST_F(EngineStateTest, LoadVolumeParamsFillsWhatACandidateLeavesOpen) {
    const VolumeParams& volume = Engine.VolumeParams;
    Engine.SourceDisk.BytesPerSector = 4096;
    SetTableRuns({{3, 7}});
    Engine.VolumeParams.MftRecordCount = 77;
    LoadVolumeParams({});
    VolumeParams expected = {0, 0, 0, 0, 0, 0, {{3, 7}}, 77, 8192, 32768, 32768, 0, 4096, 2, 8};
    EXPECT_EQ(EncodeVolume(volume), EncodeVolume(expected)) << "8 sectors a cluster are a guess";

    PartitionCandidate candidate = {128, 16383, 160, 4, 1024, 12, 0, 0, 0, 4, 1024, 1, 16};
    LoadVolumeParams(candidate);
    expected = {16383, 160, 4, 1024, 12, 128, {{3, 7}}, 77, 1024, 16384, 4096, 4, 1024, 1, 16};
    EXPECT_EQ(EncodeVolume(volume), EncodeVolume(expected));
    candidate.ClusterBytes = expected.ClusterBytes = 9;
    candidate.FileRecordBytes = 10;
    expected.FileRecordBytes = 10;
    candidate.IndexBlockBytes = expected.IndexBlockBytes = 11;
    LoadVolumeParams(candidate);
    EXPECT_EQ(EncodeVolume(volume), EncodeVolume(expected)) << "what is stated counts";
}

TEST_F(EngineStateTest, ResetClosesAndClears) {
    OpenVolume(VolumeBuilder());
    Engine.SourceDisk.Partitions.emplace_back();
    Engine.TableVolumes.emplace_back();
    Engine.Losses.Unread = Engine.TableBytes = Engine.Lists.OfScan = Engine.SearchLimits = 1;
    Engine.TableCut = true;
    Engine.ScanRunFlag = 1;
    Engine.NamesEnd = 12;
    ClaimCatalogue();
    EXPECT_TRUE(CatalogueIsOfVolumeInWork());
    LoadVolumeParams({});
    EXPECT_FALSE(CatalogueIsOfVolumeInWork());
    ClaimCatalogue();
    ResetEngineState();
    EXPECT_EQ(EncodeDisk(Engine.SourceDisk), StoredDisk{});
    EXPECT_EQ(EncodeVolume(Engine.VolumeParams), StoredVolume{});
    EXPECT_EQ(Engine.SourceDisk.MediaHandle, nullptr);
    EXPECT_TRUE(Engine.TableVolumes.empty());
    EXPECT_EQ(Engine.Losses.Unread + Engine.TableBytes + Engine.Lists.OfScan + Engine.SearchLimits, 0U);
    EXPECT_FALSE(Engine.TableCut);
    EXPECT_FALSE(CatalogueIsOfVolumeInWork());
    EXPECT_EQ(Engine.ScanRunFlag, 1U);
    EXPECT_EQ(std::exchange(Engine.NamesEnd, 0), 12U) << "the catalogue has its own closing";
}

TEST_F(EngineStateTest, LossesInWords) {
    EXPECT_EQ(LossText({.Unread = 1, .Sectors = 2, .NoTable = true}),
              "No record stands where the Master File Table should be; at least 1 record could not be read "
              "(1 in unreadable sectors); 2 sectors could not be read");
    EXPECT_EQ(LossText({.BehindEnd = 2, .Missing = 1}), "At least 3 records could not be read (2 behind the "
                                                        "end of the medium, 1 in lost pieces of the table)");
    EXPECT_EQ(LossText({}), "");
}

TEST_F(EngineStateTest, StoredBytes) {
    const Marks candidateMarks = {{8, 1},  {16, 2},  {24, 3},  {32, 4},  {40, 5},  {48, 6},  {56, 7}, {60, 8},
                                  {64, 9}, {66, 10}, {68, 11}, {69, 12}, {70, 13}, {71, 14}, {72, 1}};
    const StoredCandidate candidate = EncodeCandidate({1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 10, 12, 13, 14}, true);
    EXPECT_EQ(MarksOf(candidate), candidateMarks);
    bool linked = false;
    const PartitionCandidate decodedCandidate = DecodeCandidate(candidate, linked);
    EXPECT_EQ(EncodeCandidate(decodedCandidate, linked), candidate);

    const VolumeParams volume = {1, 2, 3, 4, 5, 6, {{1, 1}}, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    const Marks volumeMarks = {{0, 1},  {8, 2},  {16, 3},  {24, 4},  {32, 5},  {40, 6},  {48, 1},  {52, 7},
                               {56, 8}, {60, 9}, {64, 10}, {68, 12}, {70, 13}, {71, 14}, {72, 11}, {73, 15}};
    EXPECT_EQ(MarksOf(EncodeVolume(volume)), volumeMarks);
    linked = false;
    const StoredVolume again = EncodeVolume(DecodeVolume(EncodeVolume(volume), linked));
    EXPECT_TRUE(linked);
    EXPECT_EQ(MarksOf(again).size(), volumeMarks.size() - 1) << "decoding brings no extents along";

    const StoredMftExtent extent = {4, 3, 2, 1, 14, 13, 12, 11, 10, 0, 0, 0, 1, 0, 0, 0};
    EXPECT_EQ(EncodeMftExtent({0x01020304, 0x0A0B0C0D0E}, true), extent);
    EXPECT_EQ(EncodeMftExtent(DecodeMftExtent(extent, linked), true), extent);

    DiskRecord disk;
    disk.Description.assign(300, u'\u0100');
    disk.BytesPerSector = 2;
    disk.TotalSectors = 3;
    disk.Partitions.resize(2);
    const StoredDisk stored = EncodeDisk(disk);
    EXPECT_EQ(MarksOf(ConstBytes(stored).subspan(508)),
              (Marks{{1, 1}, {516 - 508, 2}, {518 - 508, 3}, {534 - 508, 1}, {538 - 508, 1}}));
    const DiskRecord decoded = DecodeDisk(stored, linked);
    EXPECT_TRUE(linked);
    EXPECT_EQ(decoded.Description, std::u16string(255, u'\u0100')) << "cut and closed";
    EXPECT_EQ(decoded.TotalSectors, 3U);
    EXPECT_EQ(decoded.BytesPerSector, 2U);
}

TEST_F(EngineStateTest, ClustersOfAnySize) {
    struct Case {
        std::uint32_t Sectors;
        std::uint8_t Stored;
        std::uint32_t Loaded;
        bool Possible; ///< as loaded
    };
    for (const Case& test : {Case{128, 128, 128, true}, Case{243, 243, 243, false}, Case{256, 0, 256, true},
                             Case{6, 6, 6, false}, Case{8192, 0, 8192, false}, Case{0, 0, 0, true},
                             Case{244, 244, 4096, true}}) { // saved before powers were known
        SCOPED_TRACE(test.Sectors);
        const PartitionCandidate candidate = {
            .ClusterBytes = 512 * test.Sectors, .SectorsPerCluster = test.Sectors, .BytesPerSector = 512};
        const StoredCandidate stored = EncodeCandidate(candidate, false);
        EXPECT_EQ(stored[68], test.Stored);
        bool linked = false;
        LoadVolumeParams(DecodeCandidate(stored, linked));
        const VolumeParams volume = DecodeVolume(EncodeVolume(Engine.VolumeParams), linked);
        EXPECT_EQ(volume.SectorsPerCluster, test.Loaded);
        EXPECT_EQ(volume.ClusterBytes, test.Loaded == 0 ? 4096 : 512 * test.Loaded);
        EXPECT_EQ(ClusterFault().empty(), test.Possible);
    }
}

} // namespace thntfs::test
