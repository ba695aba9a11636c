#include "engine/RecordTable.h"

#include "engine/LocateMft.h"
#include "engine/RunMap.h"
#include "support/EngineFixture.h"

namespace thntfs::test {

namespace {

using MapRuns = std::vector<std::array<std::uint64_t, 4>>; // Vcn, Clusters, Lcn, Hole

MapRuns RunsOf(const RunMap& map) {
    MapRuns runs;
    for (const MapRun& run : map.Runs()) {
        runs.push_back({run.Vcn, run.Clusters, run.Lcn, run.Hole ? 1U : 0U});
    }
    return runs;
}

class RecordTableTest : public EngineFixture {
protected:
    void Open(const VolumeGeometry& geometry) {
        Volume = std::make_unique<VolumeBuilder>(geometry);
        OpenVolume(*Volume);
    }

    RecordBuilder TableRecord() {
        return Volume->NewRecord(0).AddStandardInformation().AddFileName(NameIn(5, u"$MFT"));
    }

    /// An extension record of the table with four clusters of it.
    RecordBuilder Piece(std::uint32_t number, std::uint64_t firstVcn, std::uint64_t cluster) {
        return Volume->NewRecord(number)
            .SetBase(FileReference(0))
            .AddData({.Runs = {{4, cluster}}, .FirstVcn = firstVcn});
    }

    [[nodiscard]] bool Reads(std::uint64_t number, const RecordTest& fits = {}) const {
        ByteVector record(Volume->Geometry().RecordBytes);
        return ReadTableRecord(number, record, fits) && U32At(record, 44) == number;
    }

    std::unique_ptr<VolumeBuilder> Volume;
};

} // namespace

TEST(RunMapTest, RunListsOfEachKind) {
    struct Case {
        const char* Name;
        ByteVector Bytes;
        bool Sound;
        MapRuns Expected;
    };
    constexpr std::uint64_t kFar = 0x0102030405;
    const Case cases[] = {
        {"empty", {0}, true, {}},
        {"a hole of a known length",
         {0x11, 1, 10, 0x01, 7, 0x11, 2, 5, 0},
         true,
         {{100, 1, 10, 0}, {101, 7, 0, 1}, {108, 2, 15, 0}}},
        {"one cluster back", {0x11, 1, 100, 0x11, 1, 0xFF, 0}, true, {{100, 1, 100, 0}, {101, 1, 99, 0}}},
        {"two bytes back", {0x21, 1, 0, 4, 0x21, 2, 0, 0xFF, 0}, true, {{100, 1, 1024, 0}, {101, 2, 768, 0}}},
        {"offset of 5 bytes", {0x51, 1, 5, 4, 3, 2, 1, 0}, true, {{100, 1, kFar, 0}}},
        {"fields of 8 bytes",
         {0x88, 2, 0, 0, 0, 0, 0, 0, 0,    5,    4,    3,    2,    1,    0,    0,    0, 0x88,
          1,    0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0},
         true,
         {{100, 2, kFar, 0}, {102, 1, kFar - 1, 0}}},
        {"runs that go on are one",
         {0x11, 2, 10, 0x11, 3, 2, 0x01, 2, 0x01, 3, 0},
         true,
         {{100, 5, 10, 0}, {105, 5, 0, 1}}},
        {"a length with its top bit set", {0x11, 0x80, 10, 0}, true, {{100, 128, 10, 0}}},
        {"no closing byte", {0x11, 1, 10}, false, {{100, 1, 10, 0}}},
        {"cut in a field", {0x11, 1, 10, 0x21, 1, 10}, false, {{100, 1, 10, 0}}},
        {"field of 9 bytes", {0x11, 1, 10, 0x19, 1, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0}, false, {{100, 1, 10, 0}}},
        {"length 0", {0x11, 1, 10, 0x11, 0, 10, 0}, false, {{100, 1, 10, 0}}},
        {"no length", {0x10, 9, 0}, false, {}},
        {"before cluster 0", {0x11, 1, 10, 0x11, 1, 0xF5, 0}, false, {{100, 1, 10, 0}}},
        {"beyond all clusters", {0x11, 1, 10, 0x71, 1, 0, 0, 0, 0, 0, 0, 1, 0}, false, {{100, 1, 10, 0}}},
        {"longer than anything", {0x18, 0, 0, 0, 0, 0, 0, 0, 0xFF, 1, 0}, false, {}},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.Name);
        RunMap map;
        EXPECT_EQ(map.Add(test.Bytes, 100), test.Sound);
        EXPECT_EQ(RunsOf(map), test.Expected);
    }
}

TEST(RunMapTest, PiecesInAnyOrder) {
    RunMap map;
    EXPECT_TRUE(map.Add(EncodeRuns({{5, 50}}), 20));
    EXPECT_TRUE(map.Add(EncodeRuns({{4, 90}, {6, {}}}), 0));
    EXPECT_FALSE(map.Add(EncodeRuns({{11, 200}}), 10)) << "into the next piece";
    EXPECT_FALSE(map.Add(EncodeRuns({{1, 200}}), 9)) << "out of the one before";
    EXPECT_FALSE(map.Add(EncodeRuns({{5, 200}}), 30, 34)) << "beyond the attribute's end";
    EXPECT_TRUE(map.Add(EncodeRuns({{10, 300}}), 10));
    EXPECT_EQ(RunsOf(map), (MapRuns{{0, 4, 90, 0}, {4, 6, 0, 1}, {10, 10, 300, 0}, {20, 5, 50, 0}}));
    EXPECT_EQ(map.Find(3), map.Runs().data());
    EXPECT_EQ(map.Find(4), map.Runs().data() + 1);
    EXPECT_EQ(map.Find(25), nullptr);
    EXPECT_EQ(map.AllocatedClusters(), 19U);
}

TEST_F(RecordTableTest, RecordsAcrossTheBordersOfRuns) {
    // Records of 2 sectors in clusters of one: behind the runs of odd length each begins where another ends.
    Open({.SectorsPerCluster = 1,
          .TotalSectors = 4095,
          .MirrorCluster = 2048,
          .MftRuns = {{33, 64}, {1, 200}, {1, 300}, {29, 400}}});
    const auto put = [&](std::uint32_t number, std::initializer_list<std::uint64_t> clusters) {
        const ByteVector record = Volume->NewRecord(number).AddStandardInformation().Finish();
        for (std::size_t i = 0; const std::uint64_t cluster : clusters) {
            Volume->PutClusters(cluster, Part(record, 512 * i++, 512));
        }
    };
    put(15, {94, 95});
    put(16, {96, 200});
    put(17, {300, 400});
    put(31, {427, 428});
    EXPECT_TRUE(Reads(15) && Reads(16) && Reads(17) && Reads(31));
    EXPECT_FALSE(Reads(32)) << "behind the table";
    Engine.ScanRunFlag = 1;
    Plan->Rules.push_back({128 + 400});
    EXPECT_TRUE(Reads(17)) << "its second sector can't be read, and none of its bytes in use lies there";
    Plan->Rules.clear();
    EXPECT_TRUE(TableIsWhole());
    EXPECT_EQ(TableRecordCount(), 32U);
    EXPECT_EQ(TableRecordSector(17), 128U + 300);

    std::vector<std::array<std::uint64_t, 4>> seen; // record, records, ranges, first sector of the volume
    const auto keep = [&](const TableStretch& stretch) {
        seen.push_back({stretch.FirstRecord, stretch.Records, stretch.Ranges.size(),
                        stretch.Ranges.front().First - 128});
        EXPECT_EQ(stretch.Ranges.front().Count, stretch.Ranges.size() == 1 ? 2 * stretch.Records : 1);
        return true;
    };
    VisitTableStretches(keep);
    EXPECT_EQ(seen, (decltype(seen){{0, 16, 1, 64}, {16, 1, 2, 96}, {17, 1, 2, 300}, {18, 14, 1, 401}}));
}

TEST_F(RecordTableTest, PiecesLeadToFurtherPieces) {
    Open({.MftRuns = {{4, 64}, {4, 200}, {4, 300}, {4, 400}}});
    const std::vector<ListEntry> list = {{kData, FileReference(0), 0, 3},
                                         {kData, FileReference(36), 12, 0}, // reached by the piece behind it
                                         {kData, FileReference(8), 4, 0},
                                         {kData, FileReference(20), 8, 0}};
    const auto place = [&](std::uint16_t sequence, std::uint64_t base) {
        Volume->PlaceRecord(TableRecord().AddAttributeList(list).AddData({.Runs = {{4, 64}}}));
        Volume->PlaceRecord(Piece(8, 4, 200));
        Volume->PlaceRecord(Piece(20, 8, 300));
        Volume->PlaceRecord(Piece(36, 12, 400).SetBase(base).Poke16(16, sequence));
        Volume->PlaceRecord(Volume->NewRecord(60).AddStandardInformation());
        LocateMft();
    };
    place(1, FileReference(0));
    EXPECT_TRUE(Reads(60));
    EXPECT_TRUE(TableIsWhole());
    place(2, FileReference(0));
    EXPECT_FALSE(Reads(60)) << "the slot has been used again";
    EXPECT_FALSE(TableIsWhole());
    EXPECT_TRUE(Reads(36, [](ConstBytes record) { return U16At(record, 16) == 2; }));
    place(1, FileReference(7));
    EXPECT_FALSE(Reads(60)) << "another file's";
}

TEST_F(RecordTableTest, WhereTheTablesOwnRecordIsLost) {
    Open({.MftRuns = {{2, 64}, {2, 200}}});
    Volume->PlaceRecord(Volume->NewRecord(9).AddStandardInformation());
    for (const std::uint64_t cluster : {64, 1024}) {
        Volume->PutClusters(cluster, ByteVector(1024));
        EXPECT_TRUE(Reads(9)) << "by the mirror, and then by the runs that are known";
        Engine.Table.reset();
    }
    EXPECT_FALSE(TableIsWhole());
    Engine.VolumeParams.MftExtents.clear();
    LocateMft();
    EXPECT_FALSE(Reads(9));
    EXPECT_EQ(TableRecordCount(), 0U);

    // Records that were met on the way over the volume, one number twice.
    const auto put = [&](std::uint32_t number, std::uint64_t sector, std::uint16_t sequence) {
        Volume->PutSectors(sector,
                           Volume->NewRecord(number).AddStandardInformation().Poke16(16, sequence).Finish());
        NoteFoundRecord(number, sector);
    };
    put(50, 4000, 1);
    put(51, 4002, 1);
    put(52, 4004, 1);
    put(51, 5000, 7);
    EXPECT_TRUE(Reads(50) && Reads(52));
    for (const std::uint32_t sequence : {1U, 7U}) {
        EXPECT_TRUE(Reads(51, [&](ConstBytes record) { return U16At(record, 16) == sequence; }));
    }
    EXPECT_FALSE(Reads(53));
    NoteFoundRecord(53, 4004);
    EXPECT_FALSE(Reads(53)) << "another number stands there";
    LoadVolumeParams(CandidateOf(Volume->Geometry()));
    EXPECT_FALSE(Reads(50)) << "those of another volume";
}

} // namespace thntfs::test
