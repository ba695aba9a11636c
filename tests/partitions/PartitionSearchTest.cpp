#include "partitions/PartitionSearch.h"

#include "partitions/MftEvidence.h"
#include "support/EngineFixture.h"

namespace thntfs::test {

namespace {

constexpr std::uint64_t kAll = ~std::uint64_t{0};

class PartitionSearchTest : public EngineFixture {
protected:
    /// Puts bytes under the engine as an image and searches it; gives the search's result.
    std::uint32_t Search(SearchMethod method, ByteVector bytes, std::uint64_t first = 0,
                         std::uint64_t end = kAll) {
        OpenDisk(std::move(bytes));
        Engine.ScanRunFlag = 1;
        return RunPartitionSearch(method, first, std::min(end, Engine.SourceDisk.TotalSectors));
    }

    /// "start+sectors e flags" of each candidate in the list's order.
    static std::vector<std::string> Found() {
        std::vector<std::string> lines;
        for (const PartitionCandidate& candidate : Engine.SourceDisk.Partitions) {
            lines.push_back(std::to_string(candidate.StartSector) + "+" +
                            std::to_string(candidate.TotalSectors) + " e" +
                            std::to_string(candidate.EvidenceFlags));
        }
        return lines;
    }

    static ByteVector BootAt(ByteVector bytes, std::uint64_t sector, std::uint64_t totalSectors,
                             std::uint64_t serial) {
        BootSectorFields fields = BootFieldsOf(VolumeGeometry{});
        fields.TotalSectors = totalSectors;
        fields.MftCluster = 4;
        fields.Serial = serial;
        const ByteVector boot = EncodeBootSector(fields);
        std::copy(boot.begin(), boot.end(), bytes.begin() + static_cast<std::ptrdiff_t>(512 * sector));
        return bytes;
    }
};

using Lines = std::vector<std::string>;

TEST_F(PartitionSearchTest, QuickLooksAtTwoPlacesInACylinder) {
    ByteVector disk(512 * 48000);
    std::uint64_t serial = 1;
    for (const std::uint64_t sector : {0U, 63U, 2048U, 16064U, 16065U, 16065U + 63U, 32130U, 32194U}) {
        disk = BootAt(std::move(disk), sector, 100, serial++);
    }
    EXPECT_EQ(Search(SearchMethod::Quick, disk), 1U);
    EXPECT_EQ(Found(), (Lines{"0+100 e1", "63+100 e1", "16065+100 e1", "16128+100 e1", "32130+100 e1"}));
    EXPECT_EQ(Reports.FoundPartitions, (std::vector<std::uint64_t>{0, 63, 16065, 16128, 32130}));
    // 48000 rounds up to three cylinders; the last look is told at the end of the range.
    EXPECT_EQ(Reports.SearchPositions.back(), (TestHost::Pair{48195, 48195}));
}

TEST_F(PartitionSearchTest, QuickRoundsItsBoundsToCylinders) {
    struct Case {
        std::uint64_t First, End, FirstProbe, LastEnd;
    };
    for (const Case& c : {Case{0, 1, 0, 16065}, Case{16065, 16066, 0, 16065},
                          Case{16066 + 8031, 32131, 16065, 32130}, Case{16066 + 8032, 40163, 32130, 48195}}) {
        Reports.SearchPositions.clear();
        Search(SearchMethod::Quick, ByteVector(512 * 50000), c.First, c.End);
        EXPECT_EQ(Reports.SearchPositions.front().first, std::min(c.FirstProbe, c.LastEnd)) << c.First;
        EXPECT_EQ(Reports.SearchPositions.back().second, c.LastEnd) << c.End;
    }
}

TEST_F(PartitionSearchTest, ABootSectorMustFitOnTheDisk) {
    ByteVector disk = BootAt(ByteVector(512 * 1000), 100, 900, 1);
    disk = BootAt(std::move(disk), 200, 801, 2);  // one sector too many
    disk = BootAt(std::move(disk), 300, 1001, 3); // more than the disk
    disk = BootAt(std::move(disk), 980, 20, 4);   // its table would lie behind the end
    Search(SearchMethod::Thorough, disk);
    EXPECT_EQ(Found(), (Lines{"100+900 e1"}));
}

TEST_F(PartitionSearchTest, TheSameVolumeTwiceIsOneAndOnlyThoroughMarksIt) {
    const ByteVector disk = BootAt(BootAt(ByteVector(512 * 20000), 63, 500, 7), 16065, 600, 7);
    Search(SearchMethod::Thorough, disk);
    EXPECT_EQ(Found(), (Lines{"63+500 e9"}));
    Search(SearchMethod::Quick, disk);
    EXPECT_EQ(Found(), (Lines{"63+500 e1"}));
}

TEST_F(PartitionSearchTest, SectorNumbersAreTrueInTheLastStretchAndTheRangeIsKept) {
    ByteVector disk(512 * 1000);
    std::uint64_t serial = 1;
    for (const std::uint64_t sector : {9U, 10U, 500U, 777U, 778U}) {
        disk = BootAt(std::move(disk), sector, 100, serial++);
    }
    Search(SearchMethod::Thorough, disk, 10, 778);
    EXPECT_EQ(Found(), (Lines{"10+100 e1", "500+100 e1", "777+100 e1"}));
}

TEST_F(PartitionSearchTest, AStopLeavesWhatWasFoundAndABadSectorCostsItselfAlone) {
    const ByteVector disk = BootAt(BootAt(ByteVector(512 * 1000), 5, 100, 1), 700, 100, 2);
    Reports.OnSearchPosition = [this] {
        if (Reports.SearchPositions.back().first >= 256) {
            Engine.ScanRunFlag = 0;
        }
    };
    EXPECT_EQ(Search(SearchMethod::Thorough, disk), 0U);
    EXPECT_EQ(Found(), (Lines{"5+100 e1"}));

    Reports.OnSearchPosition = nullptr;
    Plan->Rules = {{.FirstSector = 6}, {.FirstSector = 701, .SectorCount = 299, .Code = kErrorNotReady}};
    EXPECT_EQ(Search(SearchMethod::Thorough, disk), 1U) << "a fatal error isn't a stop";
    EXPECT_EQ(Found(), (Lines{"5+100 e1"}));
    EXPECT_EQ(Reports.Boxes.size(), 1U);
    EXPECT_EQ(Engine.Losses.Sectors, 1U + (1000 - 640)) << "from the batch on that the fatal error ended";
}

// A slow medium: each read takes so long that the stop comes between two.
TEST_F(PartitionSearchTest, AStopIsSeenBeforeTheNextRead) {
    ByteVector likeRecords(512 * 300);
    for (std::size_t at = 0; at < likeRecords.size(); at += 512) {
        std::copy_n("FILE0", 6, likeRecords.begin() + static_cast<std::ptrdiff_t>(at));
        PutNumber<std::uint32_t>(likeRecords, at + 28, 1024);
    }
    struct Case {
        SearchMethod Method;
        std::uint64_t End;
        std::size_t ReadsBefore;
    };
    for (const Case& c : {Case{SearchMethod::Quick, 300, 1}, Case{SearchMethod::Thorough, 100, 4},
                          Case{SearchMethod::Thorough, 300, 3}}) {
        Plan->OnRead = [&c](std::uint64_t index, const ReadRequest&) {
            Engine.ScanRunFlag = index + 1 < c.ReadsBefore ? 1 : 0;
        };
        Plan->Log.clear();
        EXPECT_EQ(Search(c.Method, likeRecords, 0, c.End), 0U);
        EXPECT_EQ(Plan->Log.size(), c.ReadsBefore) << c.End;
    }
}

// ------------------------------------------------------------------ volumes from records alone

/// The worked case: 8 sectors a cluster, 2 a record, at sector 63, table at cluster 16, mirror at cluster 40.
class EvidenceTest : public PartitionSearchTest {
protected:
    static constexpr std::uint64_t kTable = 63 + 16 * 8;
    static constexpr std::uint64_t kMirror = 63 + 40 * 8;

    void Put(std::uint64_t sector, ConstBytes bytes) {
        std::copy(bytes.begin(), bytes.end(), Disk.begin() + static_cast<std::ptrdiff_t>(512 * sector));
    }

    RecordBuilder Record(std::uint32_t number, const char16_t* name, const FileTimes& times = EqualTimes()) {
        RecordBuilder record(Geometry, number);
        FileNameValue value;
        value.Name = name;
        record.AddStandardInformation(times).AddFileName(value);
        return record;
    }

    ByteVector Mft(const FileTimes& times = EqualTimes()) {
        return Record(0, u"$MFT", times)
            .AddData(NonResidentValue{.Runs = {{64, 16}}})
            .AddNonResident(kBitmap, NonResidentValue{.Runs = {{1, 15}}, .RealSize = 8, .InitializedSize = 8})
            .Finish();
    }

    ByteVector Mirr() {
        return Record(1, u"$MFTMirr")
            .AddData(NonResidentValue{.Runs = {{1, 40}}, .RealSize = 4096, .InitializedSize = 4096})
            .Finish();
    }

    void SearchDisk() { Search(SearchMethod::Thorough, Disk); }

    VolumeGeometry Geometry;
    ByteVector Disk = ByteVector(512 * 2000);
};

TEST_F(EvidenceTest, TwinsOfEitherRecordGiveTheVolume) {
    Put(kTable, Mft());
    Put(kMirror, Mft());
    SearchDisk();
    ASSERT_EQ(Found(), (Lines{"63+640 e2"}));
    const PartitionCandidate& byMft = Engine.SourceDisk.Partitions.front();
    EXPECT_EQ(byMft.MftSector, kMirror);
    EXPECT_EQ(byMft.MftCluster, 16U);
    EXPECT_EQ(byMft.MftMirrCluster, 40U);
    EXPECT_EQ(byMft.ClusterBytes, 4096U);
    EXPECT_EQ(byMft.BytesPerSector, 512U);
    EXPECT_EQ(byMft.FileRecordBytes, 1024U);
    EXPECT_EQ(byMft.SectorsPerFileRecord, 2U);
    EXPECT_EQ(byMft.VolumeSerial + byMft.IndexBlockBytes + byMft.SectorsPerIndexBlock, 0U);
    EXPECT_TRUE(Reports.FoundPartitions.empty())
        << "volumes worked out from records are told by the list alone";

    Disk.assign(Disk.size(), 0);
    Put(kTable + 2, Mirr());
    Put(kMirror + 2, Mirr());
    SearchDisk();
    ASSERT_EQ(Found(), (Lines{"63+640 e2"}));
    EXPECT_EQ(Engine.SourceDisk.Partitions.front().MftCluster, 16U);
    EXPECT_EQ(Engine.SourceDisk.Partitions.front().MftSector, kMirror);
}

TEST_F(EvidenceTest, AMftRecordWithAMirrRecordGivesTheVolume) {
    Put(kMirror, Mft());
    Put(kMirror + 2, Mirr());
    SearchDisk();
    EXPECT_EQ(Found(), (Lines{"63+640 e4"}));

    Disk.assign(Disk.size(), 0);
    Put(kTable, Mft());
    Put(kMirror + 2, Mirr());
    SearchDisk();
    EXPECT_EQ(Found(), (Lines{"65+640 e4"}))
        << "the mirror's copy stands one record behind the mirror's start";
}

TEST_F(EvidenceTest, RecordsMarkAVolumeThatIsListedAlready) {
    Put(kTable, Mft());
    Put(kMirror, Mft());
    Put(kTable + 2, Mirr());
    Put(kMirror + 2, Mirr());
    BootSectorFields fields = BootFieldsOf(Geometry);
    fields.TotalSectors = 640;
    fields.MftCluster = 16;
    fields.MirrorCluster = 40;
    Put(63, EncodeBootSector(fields));
    SearchDisk();
    EXPECT_EQ(Found(), (Lines{"63+640 e3"}));
}

TEST_F(EvidenceTest, RecordsThatDontAgreeGiveNothing) {
    FileTimes touched = EqualTimes();
    touched.Modified += 1;
    Put(kTable, Mft(touched)); // no evidence at all
    Put(kMirror, Mft());
    FileTimes later = EqualTimes();
    later = {later.Created + 5, later.Created + 5, later.Created + 5, later.Created + 5};
    Put(600, Mft(later)); // of another formatting
    SearchDisk();
    EXPECT_EQ(Found(), Lines{});
}

TEST_F(EvidenceTest, ThreeCopiesGiveThreePairs) {
    for (const std::uint64_t sector : {400U, 480U, 800U}) {
        Put(sector, Mft());
    }
    SearchDisk();
    EXPECT_EQ(Found().size(), 3U);
}

TEST_F(EvidenceTest, ADiskOfLookAlikesEndsInABoundedList) {
    Disk.resize(std::size_t{512} * 8 * 3000);
    const ByteVector record = Mft();
    for (std::uint64_t i = 0; i < 3000; ++i) {
        Put(8 * i, record);
    }
    SearchDisk();
    EXPECT_EQ(Found().size(), CandidateIndex::kMaxCandidates);
    EXPECT_EQ(Engine.SearchLimits, kLimitCandidates);
}

TEST_F(EvidenceTest, AStopEndsThePairing) {
    EvidenceList copies;
    for (std::uint64_t i = 0; i < 2500; ++i) { // three million pairs, most of them of one volume
        copies.push_back({.SectorNumber = 2 * i, .SectorsPerCluster = 128});
    }
    Search(SearchMethod::Thorough, {});
    Reports.OnGate = [] { Engine.ScanRunFlag = 0; };
    CandidateIndex index;
    PairMftTwins(copies, index);
    EXPECT_EQ(Reports.Gates, (1U << 20U) + 1);
    EXPECT_FALSE(Found().empty()) << "what was made of them before";
}

} // namespace

} // namespace thntfs::test
