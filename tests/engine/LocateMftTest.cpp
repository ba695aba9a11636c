#include "engine/LocateMft.h"

#include "engine/FileRecord.h"
#include "support/EngineFixture.h"

namespace thntfs::test {

namespace {

using Runs = std::vector<std::pair<std::uint32_t, std::uint64_t>>;

class LocateMftTest : public EngineFixture {
protected:
    LocateMftTest() { Open({}); }

    void Open(const VolumeGeometry& geometry) {
        Volume = std::make_unique<VolumeBuilder>(geometry);
        OpenVolume(*Volume);
    }

    [[nodiscard]] RecordBuilder Table() const {
        return Volume->NewRecord(0).AddStandardInformation().AddFileName(NameIn(5, u"$MFT"));
    }

    /// Puts a record of the table in place of the one there, in the table and in its mirror, and locates.
    int LocateWith(const RecordBuilder& record) {
        Volume->PlaceRecord(record);
        return LocateMft();
    }

    [[nodiscard]] static Runs Extents() { return RunsIn(Engine.VolumeParams.MftExtents); }

    std::unique_ptr<VolumeBuilder> Volume;
};

} // namespace

TEST_F(LocateMftTest, FindsTheRecordAtEachOfItsPlaces) {
    constexpr std::uint64_t kNone = 99;
    struct Case {
        const char* Name;
        std::uint64_t Table;  ///< where the table's record stands, counted from where it should
        std::uint64_t Mirror; ///< the same of the mirror's
        std::int64_t Stated;  ///< MftSector, counted likewise; -1 for 0
        char Found;           ///< in the table, in the mirror or nowhere
    };
    const Case cases[] = {
        {"where it is stated", 0, 0, 0, 't'},
        {"nothing stated", 0, 0, -1, 't'},
        {"wrongly stated", 0, 0, 5, 't'},
        {"at the last sector of the cluster", 7, kNone, 0, 't'},
        {"behind the cluster", 8, kNone, 0, 'n'},
        {"in the mirror", kNone, 0, 0, 'm'},
        {"late in the mirror", kNone, 7, -1, 'm'},
        {"behind the mirror's cluster", kNone, 8, 0, 'n'},
        {"the table's before the mirror's at one step", 4, 4, 0, 't'},
        {"the mirror's at an earlier step", 4, 3, 0, 'm'},
        {"stated far away", 400, kNone, 400, 't'},
    };
    const ByteVector record = Table().AddData({.Runs = {{4, 64}}}).Finish();
    for (const Case& test : cases) {
        SCOPED_TRACE(test.Name);
        Open({});
        const std::uint64_t table = Volume->RecordSector(0);
        const std::uint64_t mirror = Volume->Geometry().SectorOf(Volume->Geometry().MirrorCluster);
        for (const auto& [place, offset] : {std::pair{table, test.Table}, {mirror, test.Mirror}}) {
            Volume->PutSectors(place, ByteVector(1024));
            if (offset != kNone) {
                Volume->PutSectors(place + offset, record);
            }
        }
        const std::uint64_t stated = test.Stated < 0 ? 0 : table + static_cast<std::uint64_t>(test.Stated);
        Engine.VolumeParams.MftSector = stated;
        EXPECT_EQ(LocateMft(), test.Found != 'n');
        EXPECT_EQ(Engine.VolumeParams.MftSector, test.Found == 't'   ? table + test.Table
                                                 : test.Found == 'm' ? mirror + test.Mirror
                                                                     : stated);
        EXPECT_EQ(Extents(), test.Found != 'n' ? (Runs{{4, 64}}) : Runs{});
    }
}

TEST_F(LocateMftTest, RefusesAVolumeWithoutItsMeasures) {
    for (int field = 0; field < 3; ++field) {
        Open({});
        VolumeParams& volume = Engine.VolumeParams;
        volume.MftRecordCount = 9;
        volume.MftCluster = field == 0 ? 0 : volume.MftCluster;
        volume.FileRecordBytes = field == 1 ? 0 : volume.FileRecordBytes;
        volume.SectorsPerCluster = field == 2 ? 0 : volume.SectorsPerCluster;
        EXPECT_EQ(LocateMft(), 0);
        EXPECT_TRUE(volume.MftExtents.empty());
        EXPECT_EQ(volume.MftRecordCount, 0U);
        EXPECT_TRUE(Plan->Log.empty());
    }
}

TEST_F(LocateMftTest, CountsRecordsFromClusters) {
    struct Case {
        std::uint32_t SectorsPerCluster;
        std::uint32_t RecordBytes;
        std::uint32_t Count; ///< for 100 clusters
    };
    for (const Case& test :
         {Case{8, 1024, 400}, {1, 1024, 100}, {2, 1024, 100}, {4, 4096, 0}, {8, 2048, 200}}) {
        SCOPED_TRACE(testing::Message() << test.SectorsPerCluster << " " << test.RecordBytes);
        Open({.SectorsPerCluster = test.SectorsPerCluster,
              .RecordBytes = test.RecordBytes,
              .MftRuns = {{60, 64}, {40, 200}}});
        EXPECT_EQ(LocateMft(), 1);
        EXPECT_EQ(Engine.VolumeParams.MftRecordCount, test.Count);
        EXPECT_EQ(Extents(), (Runs{{60, 64}, {40, 200}}));
        EXPECT_EQ(LocateMft(), 1) << "again";
        EXPECT_EQ(Extents().size(), 2U);
    }
}

TEST_F(LocateMftTest, TheFirstDataFromTheThirdAttributeOnCounts) {
    const NonResidentValue data = {.Runs = {{4, 64}}};
    EXPECT_EQ(LocateWith(Table().AddData(data).AddData({.Runs = {{9, 9}}})), 1);
    EXPECT_EQ(Extents(), (Runs{{4, 64}}));
    EXPECT_EQ(LocateWith(Table().AddResident(0x50, ByteVector(8)).AddData({.Runs = {{4, 70}}, .Name = u"s"})),
              1);
    EXPECT_EQ(Extents(), (Runs{{4, 70}})) << "named or not";
    LocateWith(Table().AddData({.Runs = {{4, 64}}, .RealSize = 9000, .InitializedSize = 8192}));
    EXPECT_EQ(Engine.TableBytes, 8192U);
    LocateWith(Table().AddData({.Runs = {{4, 64}}, .RealSize = 1ULL << 40U}));
    EXPECT_EQ(Engine.TableBytes, 0U) << "more than the volume can hold";
    EXPECT_EQ(LocateWith(Table().AddResident(kBitmap, ByteVector(8)).AddData(data)), 0) << "above data";
    EXPECT_EQ(LocateWith(Table()), 0) << "no data";
    EXPECT_EQ(LocateWith(Table().AddData({.Runs = {}})), 0) << "no runs";
    RecordBuilder second = Volume->NewRecord(0).AddFileName(NameIn(5, u"$MFT")).AddData(data);
    EXPECT_EQ(LocateWith(second), 0) << "the second attribute is passed over";
}

TEST_F(LocateMftTest, AnAttributeListLeadsThroughItsPieces) {
    const auto piece = [this](std::uint32_t number, std::uint64_t vcn, std::uint64_t clusters,
                              std::uint64_t start) {
        Volume->PlaceRecord(Volume->NewRecord(number)
                                .SetBase(FileReference(0))
                                .AddResident(0x40, ByteVector(8)) // takes id 0
                                .AddData({.Runs = {{clusters, start}}, .FirstVcn = vcn}));
    };
    piece(10, 4, 3, 300);
    piece(11, 7, 2, 400);
    Volume->PlaceRecord(12, ByteVector(1024));
    const std::vector<ListEntry> list = {{kStandardInformation, 0}, {kData, 0, 0, 3},    {kData, 11, 7, 1},
                                         {kData, 12, 9, 1},         {kData, 10, 4, 1},   {kData, 10, 4, 9},
                                         {kData, 0x300000, 9, 1},   {kBitmap, 10, 0, 0}, {kData, 11, 7, 1}};
    const auto locate = [&](const auto& its) {
        RecordBuilder record = Volume->NewRecord(0).AddStandardInformation().AddAttributeList(its);
        return LocateWith(record.AddFileName(NameIn(5, u"$MFT")).AddData({.Runs = {{4, 64}}}));
    };
    EXPECT_EQ(locate(list), 1);
    const Runs expected = {{4, 64}, {2, 400}, {3, 300}};
    EXPECT_EQ(Extents(), expected) << "in the order of the list, as far as a piece can be had";
    EXPECT_EQ(Engine.VolumeParams.MftRecordCount, 4U * 9);
    EXPECT_TRUE(Engine.TableCut);
    EXPECT_EQ(Engine.TableBytes, 4U * 4096);

    const std::uint64_t clusters = Volume->AllocateClusters(2);
    Volume->PutClusters(clusters, EncodeAttributeList({list.begin(), list.begin() + 3}));
    Volume->PutClusters(clusters + 1, EncodeAttributeList({list.begin() + 3, list.end()}));
    EXPECT_EQ(locate(NonResidentValue{.Runs = {{2, clusters}}}), 1);
    EXPECT_EQ(Extents(), expected);
    EXPECT_EQ(locate(NonResidentValue{.Runs = {{0xFFFFFF, clusters}}}), 1)
        << "a list that claims to be endless";
    EXPECT_EQ(locate(std::vector<ListEntry>{}), 0);
    EXPECT_FALSE(Engine.TableCut);

    piece(11, 7, 0xFFFFFF, 400); // the table would be larger than its volume
    EXPECT_EQ(locate(list), 1);
    EXPECT_EQ(Extents(), (Runs{{4, 64}, {0xFFFFFF, 400}}));
    Plan->Rules = {{Volume->Geometry().SectorOf(clusters), 1, kErrorCrc}};
    locate(NonResidentValue{.Runs = {{1, clusters}}});
    EXPECT_TRUE(Engine.TableCut) << "its list can't be read";
}

TEST_F(LocateMftTest, FailuresGiveNothingAndThrowNothing) {
    Plan->Rules = {{0, 100000, kErrorNotReady}};
    EXPECT_EQ(LocateMft(), 0);
    EXPECT_EQ(Reports.Log.size(), 17U) << "MftSector, then two places for each sector of a cluster";
    EXPECT_TRUE(Reports.Boxes.empty());
    Engine.ScanRunFlag = 1;
    EXPECT_EQ(LocateMft(), 0);
    EXPECT_EQ(Reports.Boxes.size(), 1U);
    Engine.ScanRunFlag = 0;
    Engine.VolumeParams.SectorsPerCluster = 256;
    Plan->Log.clear();
    EXPECT_EQ(LocateMft(), 0);
    EXPECT_EQ(Plan->Log.size(), 1U + 2 * 128) << "no more sectors of a large cluster";
}

} // namespace thntfs::test
