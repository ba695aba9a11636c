// What scans add behind the entries of their own walk.

#include "engine/LocateMft.h"
#include "scans/BasicScan.h"
#include "scans/ScanFixture.h"
#include "scans/TurboScan.h"

#include <algorithm>

namespace thntfs::test {

namespace {

constexpr ScanReach kExact{.Exact = true};
constexpr ScanReach kDeep{.Exact = true, .Deep = true};

/// Runs of clusters of one sector. Records 20 to 22 stand where a walk along the runs looks; 2 and 23 are
/// split between two runs, and all others but the first two stand at sectors between.
VolumeGeometry OddRuns() {
    VolumeGeometry geometry;
    geometry.SectorsPerCluster = 1;
    geometry.MftRuns = {{5, 101}, {35, 200}, {7, 301}, {998, 400}};
    geometry.MirrorCluster = 3000;
    return geometry;
}

class ReachTest : public ScanFixture {
protected:
    void Take(const VolumeBuilder& volume) {
        OpenVolume(volume);
        EXPECT_TRUE(LocateMft());
        Engine.ScanRunFlag = 1;
    }
    static Lines Basic(const ScanReach& reach) {
        EXPECT_EQ(RunScan([&] { return BasicScan(reach); }), 1);
        return Picture();
    }
    static Lines Turbo(const ScanReach& reach) {
        EXPECT_EQ(RunScan([&] { return TurboScan(reach); }), 1);
        return Picture();
    }

    /// The entries of the plain scan stand in front, byte for byte; `added` follow, and lost folders last.
    template <typename Scan>
    static void ExpectBehindPlain(Scan scan, const ScanReach& reach,
                                  const std::vector<std::u16string>& added) {
        Engine.ScanRunFlag = 1;
        scan(ScanReach{});
        ByteVector plain;
        for (std::uint32_t id = 2; id < CatalogueEntryCount(); ++id) {
            if (!IsLost(id)) {
                AppendBytes(plain, Part(Stored(kEntryFileName), id * kStoredEntryBytes, kStoredEntryBytes));
            }
        }
        scan(reach);
        const auto first = static_cast<std::uint32_t>(2 + plain.size() / kStoredEntryBytes);
        EXPECT_TRUE(
            std::ranges::equal(Part(Stored(kEntryFileName), 2 * kStoredEntryBytes, plain.size()), plain));
        std::vector<std::u16string> names;
        for (std::uint32_t id = first; id < CatalogueEntryCount() && !IsLost(id); ++id) {
            names.push_back(LoadEntry(id)->Name);
        }
        EXPECT_EQ(names, added);
    }
    static bool IsLost(std::uint32_t id) { return StoredEntryAt(id).RecordSector == 0; }
};

TEST_F(ReachTest, RecordsAcrossTheBordersOfRunsFollowBehindTheOthers) {
    Volume = VolumeBuilder(OddRuns());
    Take(Volume);
    Volume.AddFolder({.Number = 18, .Name = u"folder"});
    Volume.PlaceRecord(19, Record(0, 18, u"older", RecordForm::Older).Finish());
    Volume.AddFile({.Number = 20, .Parent = 18, .Name = u"met"});
    Volume.PlaceRecord(Record(23, 18, u"split").AddData(PatternBytes(600)));
    Volume.PlaceRecord(
        Volume.NewRecord(21).SetInUse(false).Poke16(16, 2).AddStandardInformation().AddAttributeList(
            std::vector<ListEntry>{
                {kFileName, FileReference(25)}, {kData, FileReference(25)}, {kFileName, FileReference(24)}}));
    Volume.PlaceRecord(Record(24, 18, u"another's").SetBase(FileReference(99)));
    Volume.PlaceRecord(Record(25, 18, u"by list")
                           .SetBase(FileReference(21)) // before it was deleted
                           .AddData(BytesOf("12345"))
                           .AddData({.Runs = {{1, 600}}, .FirstVcn = 4}));
    Volume.PlaceRecord(Record(26, 18, u"$Boot"));
    const auto scan = [](const ScanReach& reach) { return Basic(reach); };
    EXPECT_EQ(scan({}), (Lines{"-#18 18", "#18/met 20"}));
    EXPECT_GT(Engine.Losses.Records(), 0U) << "what the plain walk takes for records is none";
    ExpectBehindPlain(scan, kExact, {u"folder", u"older", u"split", u"$Boot", u"by list"});
    EXPECT_EQ(Picture(), (Lines{"/folder 18", "/folder/met 20", "/folder/older 19", "/folder/split 23",
                                "/folder/$Boot 26", "-/folder/by list 21"}));
    EXPECT_EQ(StoredEntryAt(5).RecordSector, Volume.RecordSector(23));
    EXPECT_EQ(StoredEntryAt(7).Size, 5U);
    EXPECT_FALSE(Engine.Losses.Any());

    // What lies behind the table's end isn't one of its records.
    Volume.PutSectors(Volume.Geometry().SectorOf(1397), Record(600, 18, u"stray").Finish());
    // None of them stands where Turbo Scan looks by itself.
    ExpectBehindPlain([](const ScanReach& reach) { return Turbo(reach); }, kExact,
                      {u"folder", u"older", u"met", u"by list", u"split", u"$Boot", u"stray"});
    EXPECT_EQ(Picture().size(), 7U);

    Volume.PlaceRecord(30, BytesOf("BAAD" + std::string(1020, 'x')));
    Plan->Rules = {{Volume.RecordSector(23), 1, kErrorCrc}, {Volume.RecordSector(26), 1, kErrorCrc}};
    EXPECT_EQ(Basic(kExact).size(), 4U);
    EXPECT_EQ(LossText(Engine.Losses),
              "At least 3 records could not be read (2 in unreadable sectors, 1 damaged)");
    Plan->Rules.clear();
    Volume.PlaceRecord(Volume.NewRecord(23).AddStandardInformation().AddData(PatternBytes(600)));
    EXPECT_EQ(Basic(kDeep).back(), "#23 23");
}

TEST_F(ReachTest, RunsThatThePlainDecoderLeavesAreWalkedToo) {
    VolumeGeometry geometry;
    geometry.MftRuns = {{8, 100}, {1, 99}}; // a delta of -1
    Volume = VolumeBuilder(geometry);
    Volume.AddFile({.Number = 33, .Name = u"behind"});
    Volume.AddFile({.Number = 30, .Name = u"in front"});
    Take(Volume);
    EXPECT_EQ(Basic({}), (Lines{"/in front 30"}));
    EXPECT_EQ(Engine.Losses.Missing, 4U);
    EXPECT_EQ(Basic(kExact), (Lines{"/in front 30", "/behind 33"}));
    EXPECT_EQ(StoredEntryAt(3).RecordSector, Volume.RecordSector(33));
    EXPECT_FALSE(Engine.Losses.Any());
    EXPECT_EQ(Engine.Yield.Met, 36U);
    Plan->Rules = {{Volume.RecordSector(32), 8, kErrorNotReady}};
    EXPECT_EQ(Basic(kExact), (Lines{"/in front 30"}));
    EXPECT_EQ(Engine.Losses.Unread, 4U);
    Reports.OnProgress = [] { Engine.ScanRunFlag = 0; }; // too late for the plain walk
    Plan->Rules.clear();
    EXPECT_EQ(RunScan([] { return BasicScan(kExact); }), 0);
}

TEST_F(ReachTest, TurboScanTriesEverySectorWhereClustersAreSmallerThanRecords) {
    VolumeGeometry geometry;
    geometry.SectorsPerCluster = 1;
    geometry.MftRuns = {{600, 5}};
    geometry.MirrorCluster = 3000;
    Volume = VolumeBuilder(geometry);
    Volume.PlaceRecord(40, Record(0, 5, u"folder", RecordForm::Older).SetFolder(true).Finish());
    Volume.PlaceRecord(125,
                       Record(0, 40, u"in two reads", RecordForm::Older).AddData(PatternBytes(700)).Finish());
    Volume.PlaceRecord(Volume.NewRecord(50).AddStandardInformation().AddAttributeList(
        std::vector<ListEntry>{{kFileName, FileReference(51)}}));
    Volume.PlaceRecord(Record(51, 40, u"by list").SetBase(FileReference(50)));
    OpenVolume(Volume);
    Volume.PlaceRecord(0, ByteVector(1024));
    EXPECT_FALSE(LocateMft());
    EXPECT_TRUE(Turbo({}).empty());
    EXPECT_EQ(Turbo(kExact), (Lines{"/folder 40", "/folder/by list 50", "/folder/in two reads 125"}));
    EXPECT_EQ(StoredEntryAt(4).RecordSector, Volume.RecordSector(125));
}

// Elsewhere they are copies of records within files, unless the volume's measures are a guess.
TEST_F(ReachTest, TurboScanPassesOtherSectorsOverWhereClustersAreLarger) {
    Volume.PutSectors(Volume.Geometry().SectorOf(900) + 3, Record(70, 5, u"copy").Finish());
    EXPECT_TRUE(Turbo(kExact).empty());
    Engine.VolumeParams.VolumeSerial = 0;
    EXPECT_EQ(Turbo(kExact), (Lines{"/copy 70"}));
}

TEST_F(ReachTest, AVolumeWhoseFirstSectorsTheMediumLacks) {
    Volume.AddFile({.Number = 60, .Name = u"kept"});
    ByteVector cut(Volume.Image().begin() + 512 * 133, Volume.Image().end()); // within its first span
    OpenDisk(cut);
    Engine.VolumeParams.StartSector = 0 - std::uint64_t{5};
    SetTableRuns({});
    EXPECT_EQ(Turbo({}), (Lines{"/kept 60"}));
    EXPECT_EQ(StoredEntryAt(2).RecordSector, Volume.RecordSector(60) - 133);

    // The table begins in front of the medium, at cluster 4.
    cut.assign(Volume.Image().begin() + 512 * (128 + 37), Volume.Image().end());
    OpenDisk(cut);
    Engine.VolumeParams.StartSector = 0 - std::uint64_t{37};
    SetTableRuns({{64, 4}});
    Engine.TableBytes = 256 * 1024;
    for (const ScanReach& reach : {ScanReach{}, kExact}) {
        EXPECT_EQ(Basic(reach), (Lines{"/kept 60"}));
        EXPECT_EQ(Engine.Losses.Missing, 3U);
        EXPECT_EQ(Engine.Losses.Records(), 3U);
    }
}

TEST_F(ReachTest, NamelessRecordsAreCountedOrListedBehindAllOthers) {
    Volume.PlaceRecord(Volume.NewRecord(12).AddStandardInformation().AddData(BytesOf("metafile")));
    Volume.PlaceRecord(Volume.NewRecord(30).AddStandardInformation().AddData(BytesOf("nameless")));
    Volume.PlaceRecord(Volume.NewRecord(31).SetInUse(false).SetFolder(true).AddStandardInformation());
    Volume.PlaceRecord(
        Volume.NewRecord(32).AddStandardInformation().AddFileName(NameIn(33, u"SHORT~1.TXT", kNamespaceDos)));
    Volume.AddFolder({.Number = 33, .Name = u"folder"});
    Volume.AddFile({.Number = 34, .Parent = 31, .Name = u"child"});
    Volume.PlaceRecord(Record(35, 35, u"in itself")
                           .SetFolder(true)
                           .AddIndexRoot({{.Reference = 9, .Key = NameIn(35, u"child")}}));
    Volume.PlaceRecord(Volume.NewRecord(36).AddStandardInformation().AddAttributeList(
        std::vector<ListEntry>{{kFileName, FileReference(37)}}));
    for (const bool turbo : {false, true}) {
        const auto scan = [turbo](const ScanReach& reach) { return turbo ? Turbo(reach) : Basic(reach); };
        scan(kExact);
        EXPECT_EQ(Engine.Yield.LeftOut, 5U) << turbo;
        ExpectBehindPlain(scan, kDeep, {u"#30", u"#31", u"SHORT~1.TXT", u"in itself", u"#36"});
        EXPECT_EQ(Picture(), (Lines{"/folder 33", "/folder/SHORT~1.TXT 32", "#30 30", "-#31 31",
                                    "#31/child 34", "in itself 35", "#36 36"}));
        EXPECT_EQ(Engine.Yield.LeftOut, 0U);
    }
}

} // namespace

} // namespace thntfs::test
