#include "scans/TurboScan.h"

#include "scans/ScanFixture.h"

namespace thntfs::test {

namespace {

class TurboScanTest : public ScanFixture {
protected:
    TurboScanTest() { SetTableRuns({}); }

    static int Scan() {
        return RunScan([] { return TurboScan(); });
    }

    static FileNameValue FolderKey(const char16_t* name, std::uint32_t bits = kFolderBit,
                                   std::uint8_t nameSpace = kNamespaceWin32) {
        FileNameValue key = NameIn(5, name, nameSpace);
        key.AttributeBits = bits;
        return key;
    }

    void PutAt(std::uint64_t cluster, const RecordBuilder& record, std::uint64_t sector = 0) {
        Volume.PutSectors(Volume.Geometry().SectorOf(cluster) + sector, record.Finish());
    }
};

TEST_F(TurboScanTest, FindsRecordsAndFoldersWhereverTheyLie) {
    Volume.AddFolder({.Number = 40, .Name = u"docs"}); // the table begins at cluster 64
    Volume.AddFile({.Number = 41, .Parent = 40, .Name = u"letter.txt", .Live = false});
    Volume.AddFolder({.Number = 50, .Name = u"by record", .Live = false});
    FileNameValue inItself = FolderKey(u"in itself");
    inItself.Parent = FileReference(81);
    Volume.PutClusters(800, Volume.NewIndexBlock()
                                .Add({FileReference(77), FolderKey(u"gone folder")})
                                .Add({FileReference(78), FolderKey(u"GONEFO~1")})
                                .Add({FileReference(79), FolderKey(u"a file", kArchiveBit)})
                                .Add({FileReference(81), inItself})
                                .Add({FileReference(80), FolderKey(u".")})
                                .Add({FileReference(50), FolderKey(u"seen already")})
                                .Add({FileReference(51), FolderKey(u"by index")})
                                .Finish());
    ByteVector damaged = Volume.NewIndexBlock().Add({FileReference(60), FolderKey(u"unread")}).Finish();
    damaged[6] = 3; // a count that doesn't fit the block
    Volume.PutClusters(801, damaged);
    PutAt(801, Record(91, 5, u"in a damaged block"), 2);
    PutAt(900, Record(51, 5, u"late").SetInUse(false).SetFolder(true));
    PutAt(901, Record(93, 5, u"extension").SetBase(41));
    PutAt(2045, Record(90, 77, u"stray.txt"), 6);
    PutAt(2048, Record(92, 5, u"behind the volume"));

    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(Picture(),
              (Lines{"/docs 40", "-/docs/letter.txt 41", "-/by record 50", "/gone folder 77",
                     "/gone folder/stray.txt 90", "/GONEFO~1 78", "/by index 51", "/in a damaged block 91"}));
    EXPECT_EQ(StoredEntryAt(3).RecordSector, Volume.RecordSector(41));
    EXPECT_EQ(StoredEntryAt(8).RecordSector, Volume.Geometry().SectorOf(801) + 2);
    EXPECT_EQ(StoredEntryAt(9).RecordSector, Volume.Geometry().SectorOf(2045) + 6);
}

TEST_F(TurboScanTest, IndexEntriesKeepDatesAndShiftedFlagsAndStopAtTheFirstShortOne) {
    FileNameValue key = FolderKey(u"dated", kFolderBit | 1U);
    key.Times.Created = FileTimeOfDay(2021, 3, 4);
    key.Times.Accessed = FileTimeOfDay(2022, 5, 6);
    ByteVector shortEntry(72);
    PutNumber<std::uint16_t>(shortEntry, 8, 66);
    Volume.PutClusters(800, Volume.NewIndexBlock()
                                .Add({FileReference(60), key})
                                .Add({FileReference(61), FolderKey(u"DATED~1", kFolderBit, kNamespaceDos)})
                                .AddRaw(shortEntry)
                                .Add({FileReference(62), FolderKey(u"behind the end")})
                                .Finish());
    Scan();
    ASSERT_EQ(Picture(), (Lines{"/dated 60"}));
    const CatalogueEntry entry = StoredEntryAt(2);
    EXPECT_EQ(entry.CreatedDate, (2021 - 1980) << 9 | 3 << 5 | 4);
    EXPECT_EQ(entry.AccessedDate, (2022 - 1980) << 9 | 5 << 5 | 6);
    EXPECT_EQ(entry.Flags, static_cast<std::uint16_t>((1U | 6U) << 2U));
    EXPECT_EQ(entry.Size + entry.RecordSector, 0U);
}

TEST_F(TurboScanTest, NumbersRecordsOfTheOlderFormByTheirPlace) {
    // Behind a record that knows its number the count goes on; an index block sets it to 0.
    PutAt(700, Record(500, 5, u"known"));
    PutAt(700, Record(0, 5, u"next", RecordForm::Older), 2);
    Volume.PutClusters(701, Volume.NewIndexBlock().Finish());
    PutAt(702, Record(0, 5, u"first behind the block", RecordForm::Older));
    PutAt(702, Record(0, 5, u"second", RecordForm::Older).AddIndexRoot({{.Key = NameIn(99, u"key")}}), 2);
    PutAt(702, Record(0, 5, u"third behind the block", RecordForm::Older), 4);
    Scan();
    EXPECT_EQ(Picture(), (Lines{"/known 500", "/next 501", "/first behind the block 0", "/second 99",
                                "/third behind the block 2"}));
}

TEST_F(TurboScanTest, ABadSectorCostsItselfAlone) {
    Volume.AddFile({.Number = 41, .Name = u"lost.txt"});
    Volume.AddFile({.Number = 42, .Name = u"kept.txt"});
    Plan->Rules = {{.FirstSector = Volume.RecordSector(41)}};
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(Picture(), (Lines{"/kept.txt 42"}));
    EXPECT_EQ(Reports.Log.size(), 2U) << "one for the span, one for the sector, none for reading ahead";
    EXPECT_EQ(Engine.Losses.Sectors, 1U);
}

TEST_F(TurboScanTest, AFatalErrorKeepsWhatWasFoundAndCountsAsCompleted) {
    Volume.AddFile({.Number = 41, .Name = u"before.txt"});
    Plan->Rules = {
        {.FirstSector = Volume.Geometry().SectorOf(600), .SectorCount = 100000, .Code = kErrorNotReady}};
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(Picture(), (Lines{"/before.txt 41"}));
    EXPECT_EQ(Reports.Boxes.size(), 1U);
    EXPECT_EQ(Engine.Losses.Sectors, 16511U - (128 + 600 * 8));
}

TEST_F(TurboScanTest, AStopKeepsWhatWasFoundAndTurnsUnknownParentsIntoLostFolders) {
    Volume.AddFile({.Number = 41, .Parent = 1234, .Name = u"before.txt"});
    PutAt(1025, Record(90, 5, u"behind"));
    Reports.OnProgress = [] { Engine.ScanRunFlag = Engine.ProgressDone < 1024 * 8 ? 1 : 0; };
    EXPECT_EQ(Scan(), 0);
    EXPECT_EQ(Picture(), (Lines{"-#1234 1234", "#1234/before.txt 41"}));
}

TEST_F(TurboScanTest, ImpossibleSizesEndTheScanAndFindWhatCanBeFound) {
    Volume.AddFile({.Number = 41, .Name = u"there.txt"});
    Engine.VolumeParams.IndexBlockBytes = 0x80000000U;
    Engine.VolumeParams.TotalSectors = ~std::uint64_t{0} / 2;
    Engine.VolumeParams.VolumeSerial = 1; // a boot sector says so
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(Engine.Losses.Sectors, ~std::uint64_t{0} / 2 + 128 - Engine.SourceDisk.TotalSectors);
    EXPECT_EQ(Picture(), (Lines{"/there.txt 41"}));
}

} // namespace

} // namespace thntfs::test
