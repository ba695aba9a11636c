#include "scans/TurboScan.h"

#include "catalogue/CatalogueFixture.h"
#include "catalogue/EntryWalk.h"

namespace thntfs::test {

namespace {

using Lines = std::vector<std::string>;

class TurboScanTest : public CatalogueFixture {
protected:
    /// Scans the volume and opens the catalogue; gives the scan's result.
    std::uint32_t Scan() {
        OpenVolume(Volume);
        Engine.VolumeParams.MftExtents.clear();
        Engine.ScanRunFlag = 1;
        EXPECT_EQ(CreateCatalogue(), 1);
        const std::uint32_t result = TurboScan();
        CloseCatalogue();
        EXPECT_EQ(OpenCatalogue(), 1);
        return result;
    }

    /// "path number" of all entries in walking order, deleted ones with a minus in front.
    static Lines Picture() {
        Lines lines;
        EntryWalk walk({}, WalkReach::Whole);
        while (walk.Next()) {
            if (walk.Item().EntryId != 1) {
                lines.push_back((walk.Item().IsLive() ? "" : "-") + walk.Path() + " " +
                                std::to_string(walk.Item().RecordNumber));
            }
        }
        return lines;
    }

    static FileNameValue Key(std::uint32_t parent, const char16_t* name, std::uint32_t bits = kFolderBit) {
        FileNameValue key;
        key.Parent = FileReference(parent);
        key.Name = name;
        key.AttributeBits = bits;
        return key;
    }

    RecordBuilder OlderFile(const char16_t* name, bool folder = false) {
        RecordBuilder record = Volume.NewRecord(0, RecordForm::Older);
        record.SetFolder(folder).AddStandardInformation().AddFileName(Key(5, name, kArchiveBit));
        return record;
    }

    void PutAt(std::uint64_t cluster, std::size_t offset, ConstBytes bytes) {
        ByteVector& image = Volume.Image();
        std::copy(bytes.begin(), bytes.end(),
                  image.begin() + static_cast<std::ptrdiff_t>(Volume.Geometry().OffsetOf(cluster) + offset));
    }

    VolumeBuilder Volume;
};

TEST_F(TurboScanTest, FindsRecordsAndFoldersWhereverTheyLie) {
    Volume.AddFolder({.Number = 40, .Name = u"docs"});
    Volume.AddFile({.Number = 41, .Parent = 40, .Name = u"letter.txt", .Live = false});
    // A record far from the table, and an index block that names a folder without a record of its own.
    PutAt(700, 3072,
          Volume.NewRecord(90)
              .AddStandardInformation()
              .AddFileName(Key(77, u"stray.txt", kArchiveBit))
              .Finish());
    IndexBlockBuilder block = Volume.NewIndexBlock();
    block.Add({FileReference(77), Key(5, u"gone folder")})
        .Add({FileReference(78), Key(5, u"GONEFO~1")})
        .Add({FileReference(79), Key(5, u"a file", kArchiveBit)})
        .Add({FileReference(5), Key(5, u".")});
    PutAt(800, 0, block.Finish());

    EXPECT_EQ(Scan(), 1U);
    EXPECT_EQ(Picture(), (Lines{"/docs 40", "-/docs/letter.txt 41", "/gone folder 77",
                                "/gone folder/stray.txt 90", "/GONEFO~1 78"}));
}

TEST_F(TurboScanTest, IndexEntriesKeepDatesAndShiftedFlagsAndStopAtTheFirstShortOne) {
    FileNameValue key = Key(5, u"dated", kFolderBit | 1U);
    key.Times.Created = FileTimeOfDay(2021, 3, 4);
    key.Times.Accessed = FileTimeOfDay(2022, 5, 6);
    FileNameValue dos = Key(5, u"DATED~1");
    dos.Namespace = kNamespaceDos;
    ByteVector shortEntry(72);
    PutNumber<std::uint16_t>(shortEntry, 8, 66);
    IndexBlockBuilder block = Volume.NewIndexBlock();
    block.Add({FileReference(60), key}).Add({FileReference(61), dos});
    block.AddRaw(shortEntry);
    block.Add({FileReference(62), Key(5, u"behind the end")});
    PutAt(800, 0, block.Finish());

    Scan();
    ASSERT_EQ(Picture(), (Lines{"/dated 60"}));
    const CatalogueEntry entry = StoredEntryAt(2);
    EXPECT_EQ(entry.CreatedDate, (2021 - 1980) << 9 | 3 << 5 | 4);
    EXPECT_EQ(entry.AccessedDate, (2022 - 1980) << 9 | 5 << 5 | 6);
    EXPECT_EQ(entry.Flags, static_cast<std::uint16_t>((1U | 6U) << 2U));
    EXPECT_EQ(entry.Size + entry.RecordSector, 0U);
}

TEST_F(TurboScanTest, FirstSightOfAFolderCountsWhateverItsSource) {
    IndexBlockBuilder block = Volume.NewIndexBlock();
    block.Add({FileReference(50), Key(5, u"by index")}).Add({FileReference(51), Key(5, u"by index too")});
    Volume.AddFolder({.Number = 50, .Name = u"by record", .Live = false}); // the table stands at cluster 64
    PutAt(800, 0, block.Finish());
    PutAt(900, 0,
          Volume.NewRecord(51)
              .SetInUse(false)
              .SetFolder(true)
              .AddStandardInformation()
              .AddFileName(Key(5, u"late", kFolderBit))
              .Finish());
    Scan();
    EXPECT_EQ(Picture(), (Lines{"-/by record 50", "/by index too 51"}));
}

TEST_F(TurboScanTest, NumbersRecordsOfTheOlderFormByTheirPlace) {
    // Behind a record that knows its number the count goes on; an index block sets it to 0.
    PutAt(700, 0,
          Volume.NewRecord(500).AddStandardInformation().AddFileName(Key(5, u"known", kArchiveBit)).Finish());
    PutAt(700, 1024, OlderFile(u"next").Finish());
    PutAt(701, 0, Volume.NewIndexBlock().Finish());
    PutAt(702, 0, OlderFile(u"first behind the block").Finish());
    PutAt(702, 2048, OlderFile(u"third behind the block").Finish());
    Scan();
    EXPECT_EQ(Picture(),
              (Lines{"/known 500", "/next 501", "/first behind the block 0", "/third behind the block 2"}));
}

TEST_F(TurboScanTest, ABlockThatFailsItsCheckIsLookedThroughForRecords) {
    ByteVector block = Volume.NewIndexBlock().Add({FileReference(60), Key(5, u"unread")}).Finish();
    block[6] = 3; // a count that doesn't fit the block
    const ByteVector record =
        Volume.NewRecord(91).AddStandardInformation().AddFileName(Key(5, u"inside", kArchiveBit)).Finish();
    std::copy(record.begin(), record.end(), block.begin() + 1024);
    PutAt(800, 0, block);
    Scan();
    EXPECT_EQ(Picture(), (Lines{"/inside 91"}));
    EXPECT_EQ(StoredEntryAt(2).RecordSector, Volume.Geometry().SectorOf(800) + 2);
}

TEST_F(TurboScanTest, ABadSectorCostsItselfAlone) {
    Volume.AddFile({.Number = 41, .Name = u"lost.txt"});
    Volume.AddFile({.Number = 42, .Name = u"kept.txt"});
    Plan->Rules = {{.FirstSector = Volume.RecordSector(41)}};
    EXPECT_EQ(Scan(), 1U);
    EXPECT_EQ(Picture(), (Lines{"/kept.txt 42"}));
    // One line for the span and one for the sector: reading ahead leaves none.
    EXPECT_EQ(Reports.Log.size(), 2U);
}

TEST_F(TurboScanTest, AFatalErrorKeepsWhatWasFoundAndCountsAsCompleted) {
    Volume.AddFile({.Number = 41, .Name = u"before.txt"});
    Plan->Rules = {
        {.FirstSector = Volume.Geometry().SectorOf(600), .SectorCount = 100000, .Code = kErrorNotReady}};
    EXPECT_EQ(Scan(), 1U);
    EXPECT_EQ(Picture(), (Lines{"/before.txt 41"}));
    EXPECT_EQ(Reports.Boxes.size(), 1U);
}

TEST_F(TurboScanTest, AStopKeepsWhatWasFoundAndTurnsUnknownParentsIntoLostFolders) {
    Volume.AddFile({.Number = 41, .Parent = 1234, .Name = u"before.txt"});
    PutAt(1500, 0,
          Volume.NewRecord(90).AddStandardInformation().AddFileName(Key(5, u"behind", kArchiveBit)).Finish());
    Reports.OnProgress = [] {
        if (Engine.ProgressDone > 8000) {
            Engine.ScanRunFlag = 0;
        }
    };
    EXPECT_EQ(Scan(), 0U);
    EXPECT_EQ(Picture(), (Lines{"-#1234 1234", "#1234/before.txt 41"}));
}

TEST_F(TurboScanTest, ImpossibleSizesEndTheScanAndFindWhatCanBeFound) {
    Volume.AddFile({.Number = 41, .Name = u"there.txt"});
    OpenVolume(Volume);
    Engine.VolumeParams.IndexBlockBytes = 0x80000000U;
    Engine.VolumeParams.TotalSectors = ~std::uint64_t{0} / 2;
    Engine.ScanRunFlag = 1;
    ASSERT_EQ(CreateCatalogue(), 1);
    EXPECT_EQ(TurboScan(), 1U);
    CloseCatalogue();
    ASSERT_EQ(OpenCatalogue(), 1);
    EXPECT_EQ(Picture(), (Lines{"/there.txt 41"}));
}

} // namespace

} // namespace thntfs::test
