#include "partitions/PartitionSearch.h"

#include "partitions/MftEvidence.h"
#include "support/EngineFixture.h"

namespace thntfs::test {

namespace {

using Lines = std::vector<std::string>;

class PartitionSearchTest : public EngineFixture {
protected:
    /// Puts Disk under the engine and searches it; gives the search's result.
    std::uint32_t Search(SearchMethod method = SearchMethod::Thorough, std::uint64_t first = 0,
                         std::uint64_t end = ~std::uint64_t{0}) {
        OpenDisk(Disk, static_cast<std::uint16_t>(Geometry.SectorBytes));
        Engine.ScanRunFlag = 1;
        return RunPartitionSearch(method, first, std::min(end, Engine.SourceDisk.TotalSectors));
    }

    /// "start+sectors e flags" of each candidate in the list's order.
    static Lines Found() {
        Lines lines;
        for (const PartitionCandidate& candidate : Engine.SourceDisk.Partitions) {
            lines.push_back(std::to_string(candidate.StartSector) + "+" +
                            std::to_string(candidate.TotalSectors) + " e" +
                            std::to_string(candidate.EvidenceFlags));
        }
        return lines;
    }

    void Put(std::uint64_t sector, ConstBytes bytes) {
        std::copy(bytes.begin(), bytes.end(),
                  Disk.begin() + static_cast<std::ptrdiff_t>(Geometry.SectorBytes * sector));
    }
    void PutBoot(std::uint64_t sector, std::uint64_t totalSectors, std::uint64_t serial) {
        BootSectorFields fields = BootFieldsOf(Geometry);
        fields.TotalSectors = totalSectors;
        fields.MftCluster = 16;
        fields.MirrorCluster = 40;
        fields.Serial = serial;
        Put(sector, EncodeBootSector(fields));
    }
    /// Boot sectors of different volumes of 100 sectors.
    void PutBoots(std::initializer_list<std::uint64_t> sectors) {
        for (const std::uint64_t sector : sectors) {
            PutBoot(sector, 100, sector + 1);
        }
    }

    VolumeGeometry Geometry;
    ByteVector Disk = ByteVector(512 * 2000);
};

TEST_F(PartitionSearchTest, QuickLooksAtTwoPlacesInACylinder) {
    Disk.resize(512 * 48000);
    PutBoots({0, 63, 2048, 16064, 16065, 16065 + 63, 32130, 32194});
    EXPECT_EQ(Search(SearchMethod::Quick), 1U);
    EXPECT_EQ(Found(), (Lines{"0+100 e1", "63+100 e1", "16065+100 e1", "16128+100 e1", "32130+100 e1"}));
    EXPECT_EQ(Reports.FoundPartitions, (std::vector<std::uint64_t>{0, 63, 16065, 16128, 32130}));
    // 48000 rounds up to three cylinders; the last look is told at the end of the range.
    EXPECT_EQ(Reports.SearchPositions.back(), (TestHost::Pair{48195, 48195}));
}

TEST_F(PartitionSearchTest, QuickRoundsItsBoundsToCylinders) {
    struct Case {
        std::uint64_t First, End, FirstProbe, LastEnd;
    };
    Disk.resize(512 * 50000);
    for (const Case& c : {Case{0, 1, 0, 16065}, Case{16065, 16066, 0, 16065},
                          Case{16066 + 8031, 32131, 16065, 32130}, Case{16066 + 8032, 40163, 32130, 48195}}) {
        Reports.SearchPositions.clear();
        Search(SearchMethod::Quick, c.First, c.End);
        EXPECT_EQ(Reports.SearchPositions.front().first, std::min(c.FirstProbe, c.LastEnd)) << c.First;
        EXPECT_EQ(Reports.SearchPositions.back().second, c.LastEnd) << c.End;
    }
    Plan->Rules = {{.FirstSector = 0, .SectorCount = 100}};
    Disk.resize(512 * 40);
    Search(SearchMethod::Quick);
    EXPECT_EQ(Engine.Losses.Sectors, 1U) << "nothing is lost behind the end of the disk";
}

TEST_F(PartitionSearchTest, ABootSectorMustFitOnTheDisk) {
    PutBoot(100, 1900, 1);
    PutBoot(200, 1801, 2); // one sector too many
    PutBoot(300, 2001, 3); // more than the disk
    PutBoot(1873, 20, 4);  // its table would lie behind the end
    PutBoot(400, ~300ULL, 5);
    Search();
    EXPECT_EQ(Found(), (Lines{"100+1900 e1"}));
}

TEST_F(PartitionSearchTest, TheSameVolumeTwiceIsOneAndOnlyThoroughMarksIt) {
    Disk.resize(512 * 20000);
    PutBoot(63, 500, 7);
    PutBoot(16065, 600, 7);
    Search();
    EXPECT_EQ(Found(), (Lines{"63+500 e9"}));
    Search(SearchMethod::Quick);
    EXPECT_EQ(Found(), (Lines{"63+500 e1"}));
}

TEST_F(PartitionSearchTest, SectorNumbersAreTrueInTheLastStretchAndTheRangeIsKept) {
    PutBoots({7, 8, 500, 777, 778});
    Search(SearchMethod::Thorough, 8, 778); // six batches and two sectors
    EXPECT_EQ(Found(), (Lines{"8+100 e1", "500+100 e1", "777+100 e1"}));
}

TEST_F(PartitionSearchTest, AStopLeavesWhatWasFoundAndABadSectorCostsItselfAlone) {
    Disk.resize(512 * 1000);
    PutBoots({5, 700});
    Reports.OnSearchPosition = [this] {
        if (Reports.SearchPositions.back().first >= 256) {
            Engine.ScanRunFlag = 0;
        }
    };
    EXPECT_EQ(Search(), 0U);
    EXPECT_EQ(Found(), (Lines{"5+100 e1"}));

    Reports.OnSearchPosition = nullptr;
    Plan->Rules = {{.FirstSector = 6}, {.FirstSector = 701, .SectorCount = 299, .Code = kErrorNotReady}};
    EXPECT_EQ(Search(), 1U) << "a fatal error isn't a stop";
    EXPECT_EQ(Found(), (Lines{"5+100 e1"}));
    EXPECT_EQ(Reports.Boxes.size(), 1U);
    EXPECT_EQ(Engine.Losses.Sectors, 1U + (1000 - 640)) << "from the batch on that the fatal error ended";
    Plan->Rules.clear();
    Search();
    EXPECT_FALSE(Engine.Losses.Any());
}

// A slow medium: each read takes so long that the stop comes between two.
TEST_F(PartitionSearchTest, AStopIsSeenBeforeTheNextRead) {
    Disk.resize(512 * 300);
    for (std::uint64_t sector = 0; sector < 300; ++sector) { // like records
        Put(sector, BytesOf(std::string("FILE0", 6)));
        PutNumber<std::uint32_t>(Disk, sector * 512 + 28, 1024);
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
        EXPECT_EQ(Search(c.Method, 0, c.End), 0U);
        EXPECT_EQ(Plan->Log.size(), c.ReadsBefore) << c.End;
    }
}

// ------------------------------------------------------------------ volumes from records alone

/// The worked case: 8 sectors a cluster, 2 a record, at sector 63, table at cluster 16, mirror at cluster 40.
class EvidenceTest : public PartitionSearchTest {
protected:
    static constexpr std::uint64_t kTable = 63 + 16 * 8;
    static constexpr std::uint64_t kMirror = 63 + 40 * 8;

    using PartitionSearchTest::Put;
    void Put(std::uint64_t sector, const RecordBuilder& record) { Put(sector, record.Finish()); }

    RecordBuilder Record(std::uint32_t number, const char16_t* name, const FileTimes& times) {
        RecordBuilder record(Geometry, number);
        return record.AddStandardInformation(times).AddFileName(NameIn(5, name));
    }

    RecordBuilder Mft(const FileTimes& times = EqualTimes()) {
        return Record(0, u"$MFT", times)
            .AddData(NonResidentValue{.Runs = {{64, 16}}})
            .AddNonResident(kBitmap, NonResidentValue{.Runs = {{1, 15}}, .RealSize = 8});
    }

    RecordBuilder Mirr(const FileTimes& times = EqualTimes()) {
        return Record(1, u"$MFTMirr", times).AddData(NonResidentValue{.Runs = {{1, 40}}, .RealSize = 4096});
    }

    Lines SearchDisk() {
        Search();
        return Found();
    }
    void Wipe() { Disk.assign(Disk.size(), 0); }
};

TEST_F(EvidenceTest, TwinsOfEitherRecordGiveTheVolume) {
    Put(kTable, Mft());
    Put(kMirror, Mft());
    Put(kMirror + 2, Mirr()); // makes no other pair with what twins have used
    ASSERT_EQ(SearchDisk(), (Lines{"63+640 e2"}));
    // Without a boot sector there is neither a serial number nor an index block's size.
    const PartitionCandidate byMft = {63,   640,  kMirror, 16,  40, 0, 0,
                                      4096, 1024, 8,       512, 2,  0, kEvidenceTwins};
    EXPECT_EQ(EncodeCandidate(Engine.SourceDisk.Partitions.front(), false), EncodeCandidate(byMft, false));
    EXPECT_TRUE(Reports.FoundPartitions.empty())
        << "volumes worked out from records are told by the list alone";
    Reports.OnSearchPosition = [this] {
        Engine.ScanRunFlag = Reports.SearchPositions.back().first < kMirror ? 1 : 0;
    };
    EXPECT_EQ(SearchDisk(), (Lines{"63+640 e2"})) << "what was met before a stop is paired";
    EXPECT_EQ(Reports.SearchPositions.back().first, 384U);
    Reports.OnSearchPosition = nullptr;

    Wipe();
    Put(kTable + 2, Mirr());
    Put(kMirror + 2, Mirr());
    Put(1000, Mft());
    ASSERT_EQ(SearchDisk(), (Lines{"63+640 e2"}));
    EXPECT_EQ(Engine.SourceDisk.Partitions.front().MftCluster, 16U);
    EXPECT_EQ(Engine.SourceDisk.Partitions.front().MftSector, kMirror);
    Put(kMirror + 82, Mirr());
    EXPECT_EQ(SearchDisk().size(), 3U) << "three copies make three pairs";
}

TEST_F(EvidenceTest, AMftRecordWithAMirrRecordGivesTheVolume) {
    Put(kMirror, Mft());
    Put(kMirror + 2, Mirr());
    EXPECT_EQ(SearchDisk(), (Lines{"63+640 e4"}));
    Put(kMirror, ByteVector(1024));
    Put(kTable, Mft());
    EXPECT_EQ(SearchDisk(), (Lines{"65+640 e4"})) << "its copy stands one record behind the mirror's start";
    Put(kMirror + 2, ByteVector(1024));
    Put(kTable + 2, Mirr());
    EXPECT_EQ(SearchDisk(), Lines{}) << "the mirror of a volume that would begin before the disk";
}

TEST_F(EvidenceTest, RecordsMarkAVolumeThatIsListedAlready) {
    PutBoot(63, 640, 1);
    Put(kTable, Mft());
    Put(kMirror + 8, Mirr());
    EXPECT_EQ(SearchDisk(), (Lines{"63+640 e5"})) << "up to a cluster away";
    Put(kMirror + 8, ByteVector(1024));
    Put(kMirror + 9, Mirr());
    EXPECT_EQ(SearchDisk(), (Lines{"63+640 e1", "72+640 e4"}));
}

TEST_F(EvidenceTest, RecordsThatDontAgreeGiveNothing) {
    FileTimes touched = EqualTimes();
    touched.Modified += 1;
    Put(kTable, Mft(touched)); // no evidence at all
    Put(kMirror, Mft());
    Put(600, Mft(EqualTimes(5))); // of another formatting
    Put(602, Mirr(EqualTimes(9)));
    Put(800, Mft().Poke(16, 2, 9)); // no copy
    EXPECT_EQ(SearchDisk(), Lines{});
    for (const std::size_t bytesField : {40U, 56U}) { // allocated, initialised
        for (RecordBuilder record : {Mft(), Mirr()}) {
            Wipe();
            record.Poke(record.LastAttributeOffset() + bytesField, 8, 4097);
            Put(kTable, record);
            Put(kMirror, record);
            EXPECT_EQ(SearchDisk(), Lines{}) << bytesField;
        }
    }
    for (const std::uint32_t bytes : {4096U, 8192U}) {
        Geometry.RecordBytes = bytes;
        Put(kTable, Mft());
        Put(kMirror, Mft());
        EXPECT_EQ(SearchDisk(), bytes == 4096 ? Lines{"63+640 e2"} : Lines{}) << "too large";
    }
}

TEST_F(EvidenceTest, RecordsOfOneLargeSector) {
    Geometry.SectorBytes = Geometry.RecordBytes = 4096;
    Geometry.SectorsPerCluster = 1;
    Disk.resize(4096 * 256);
    for (const std::uint64_t cluster : {16U, 40U}) {
        RecordBuilder noData = Record(0, u"$MFT", EqualTimes());
        Put(63 + cluster, noData.AddNonResident(kBitmap, NonResidentValue{.Runs = {{1, 15}}, .RealSize = 8}));
    }
    EXPECT_EQ(SearchDisk(), (Lines{"63+80 e2"})) << "the table is taken to follow its bitmap";
}

TEST_F(EvidenceTest, ADiskOfLookAlikesEndsInABoundedList) {
    Disk.resize(std::size_t{512} * 8 * 3000);
    const ByteVector record = Mft().Finish();
    for (std::uint64_t i = 0; i < 3000; ++i) {
        Put(8 * i, record);
    }
    // A volume that is listed before is marked all the same.
    PutBoot(4, 640, 1);
    Put(14, Mft(EqualTimes(5)));
    Put(4 + 40 * 8 + 2, Mirr(EqualTimes(5)));
    Engine.SearchLimits = kLimitEvidence; // of the search before
    const Lines found = SearchDisk();
    EXPECT_EQ(found.size(), CandidateIndex::kMaxCandidates);
    EXPECT_EQ(found.front(), "4+640 e7");
    EXPECT_EQ(Engine.SearchLimits, kLimitCandidates);

    EvidenceCollector collector;
    for (std::size_t i = 0; i <= EvidenceCollector::kMaxEvidence; ++i) {
        collector.Examine(record, i);
    }
    EXPECT_EQ(collector.MftList.size(), EvidenceCollector::kMaxEvidence);
    EXPECT_EQ(Engine.SearchLimits, kLimitCandidates | kLimitEvidence);
}

TEST_F(EvidenceTest, AStopEndsThePairing) {
    EvidenceList copies;
    for (std::uint64_t i = 0; i < 2500; ++i) { // three million pairs, most of them of one volume
        copies.push_back({.SectorNumber = 2 * i, .SectorsPerCluster = 128});
    }
    Disk.clear();
    Search();
    Reports.OnGate = [] { Engine.ScanRunFlag = 0; };
    CandidateIndex index;
    PairMftTwins(copies, index);
    EXPECT_EQ(Reports.Gates, (1U << 20U) + 1);
    EXPECT_FALSE(Found().empty()) << "what was made of them before";
}

} // namespace

} // namespace thntfs::test
