#include "scans/BasicScan.h"

#include "scans/ScanFixture.h"
#include "support/FailingFileStore.h"

#include <set>

namespace thntfs::test {

namespace {

class BasicScanTest : public ScanFixture {
protected:
    BasicScanTest() { Engine.VolumeParams.MftRecordCount = 256; }

    static int Scan() {
        return RunScan([] { return BasicScan(); });
    }
};

/// What must hold of every finished catalogue: ids, name ranges, owners of chains, each entry in one chain.
void ExpectSoundCatalogue() {
    const ByteVector entries = ReadFileBytes(Engine.CatalogueFolder + kEntryFileName);
    const ByteVector names = ReadFileBytes(Engine.CatalogueFolder + kNameFileName);
    const ByteVector tree = ReadFileBytes(Engine.CatalogueFolder + kTreeFileName);
    const std::size_t count = entries.size() / kStoredEntryBytes;
    EXPECT_EQ(entries.size() % kStoredEntryBytes + tree.size() % kStoredBlockBytes, 0U);
    std::multiset<std::uint32_t> children;
    for (std::size_t id = 0; id < count; ++id) {
        const CatalogueEntry entry = DecodeEntry(Part(entries, id * kStoredEntryBytes, kStoredEntryBytes));
        EXPECT_EQ(entry.EntryId, id);
        EXPECT_LE(entry.NameOffset + 2U * entry.NameLength, names.size());
        if ((entry.Flags & kFlagFolder) == 0) {
            EXPECT_EQ(entry.BlockOffset, 0U);
            continue;
        }
        std::uint32_t offset = entry.BlockOffset;
        do {
            const FolderBlock block = DecodeBlock(Part(tree, offset, kStoredBlockBytes));
            EXPECT_EQ(block.OwnerNumber, entry.RecordNumber);
            for (const std::uint32_t slot : block.Slots) {
                if (slot != 0) {
                    children.insert(slot);
                }
            }
            offset = block.NextBlock;
        } while (offset != 0);
    }
    ASSERT_EQ(children.size(), count - 1);
    EXPECT_EQ(std::set<std::uint32_t>(children.begin(), children.end()).size(), count - 1);
}

} // namespace

TEST_F(BasicScanTest, PlacesEntriesByTheirParentNumbers) {
    Volume.AddFolder({.Number = 30, .Name = u"folder"});
    Volume.AddFile({.Number = 31, .Parent = 40, .Name = u"early child", .Content = BytesOf("abc")});
    Volume.AddFile({.Number = 32, .Parent = 30, .Name = u"gone", .Live = false});
    Volume.AddFolder({.Number = 40, .Parent = 30, .Name = u"late folder", .Live = false});
    Volume.AddFile({.Number = 41, .Parent = 77, .Name = u"orphan"});
    Volume.AddFile({.Number = 42, .Parent = 31, .Name = u"in a file's number"});
    Volume.AddFile({.Number = 53, .Parent = 0, .Name = u"a file without any number"});
    Volume.PlaceRecord(Record(43, 0, u"on top")
                           .SetFolder(true)
                           .AddIndexRoot({{.Reference = 9, .Key = NameIn(43, u"child")}}));
    Volume.AddFile({.Number = 44, .Parent = 30, .Name = u"$Boot"});
    Volume.AddFile({.Number = 45, .Parent = 30, .Name = u"twin"});
    Volume.PlaceRecord(46, Record(45, 5, u"other twin").Finish());
    Volume.PlaceRecord(47, Record(30, 5, u"second of its number").SetFolder(true).Finish());
    Volume.PlaceRecord(Record(48, 30, u"extension").SetBase(FileReference(31)));
    Volume.PlaceRecord(50, ByteVector(1024, 0xAA));
    Volume.PlaceRecord(
        Volume.NewRecord(51).SetFolder(true).AddStandardInformation().AddFileName(NameIn(5, u"")));
    Volume.PlaceRecord(Record(54, 55, u"in a circle, out of reach").SetFolder(true));
    Volume.PlaceRecord(Record(55, 54, u"the same").SetFolder(true));
    Volume.PlaceRecord(Record(56, 56, u"in itself").SetFolder(true));
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(Picture(),
              (Lines{"/folder 30", "-/folder/gone 32", "-/folder/late folder 40",
                     "/folder/late folder/early child 31", "/folder/twin 45", "/other twin 45", "/#51 51",
                     "on top 43", "-#31 31", "#31/in a file's number 42", "-#77 77", "#77/orphan 41"}));
    ExpectSoundCatalogue();
    EXPECT_EQ(CatalogueEntryCount(), 17U);
    EXPECT_FALSE(Engine.Losses.Any()) << "what the table says of its size is not known";
    std::vector<std::uint32_t> owners;
    for (std::uint32_t offset = 0; offset < 11 * kStoredBlockBytes; offset += kStoredBlockBytes) {
        owners.push_back(StoredBlockAt(offset).OwnerNumber);
    }
    EXPECT_EQ(owners, (std::vector<std::uint32_t>{0, 5, 30, 40, 77, 31, 43, 51, 55, 54, 56}));
    const auto file = LoadEntry(3);
    EXPECT_EQ(file->Name, u"early child");
    EXPECT_EQ(file->RecordSector, Volume.RecordSector(31));
    EXPECT_EQ(file->Size, 3U);
    EXPECT_EQ(file->BlockOffset, 0U);
}

TEST_F(BasicScanTest, NumbersOfTheOlderFormCountSlots) {
    const std::vector<IndexEntry> key = {{.Reference = 9, .Key = NameIn(99, u"child")}};
    const auto put = [&](std::uint32_t slot, const RecordBuilder& record) {
        Volume.PlaceRecord(slot, record.Finish());
    };
    put(30, Record(0, 5, u"file", RecordForm::Older));
    put(31, Record(0, 5, u"full", RecordForm::Older).SetFolder(true).AddIndexRoot(key));
    put(32, Record(0, 5, u"empty", RecordForm::Older).SetFolder(true).AddIndexRoot({}));
    put(33, Record(500, 5, u"newer").SetFolder(true).AddIndexRoot(key));
    put(34, Record(0, 99, u"inside", RecordForm::Older));
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(Picture(), (Lines{"/file 30", "/full 99", "/full/inside 34", "/empty 32", "/newer 500"}));

    // Slots behind the medium count, and are passed over quickly.
    SetTableRuns({{0x10000000, 0xFFFFFFFF}, {64, 4}, {0x1FFFFFFF, 0xFFFFFFFFFFFF}});
    Plan->Log.clear();
    Reports.Progress.clear();
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(Picture(), (Lines{"/file 1073741854", "/full 99", "/full/inside 1073741858",
                                "/empty 1073741856", "/newer 500"}));
    EXPECT_LT(Plan->Log.size() + Reports.Progress.size(), 20U);
}

TEST_F(BasicScanTest, CountsSlotsOverAllExtents) {
    // 100 clusters hold 400 records; the second extent's rest of a cluster is dropped.
    SetTableRuns({{100, 100}, {3, {}}, {1, 300}, {1, 310}});
    Engine.VolumeParams.SectorsPerFileRecord = 3;
    Engine.VolumeParams.FileRecordBytes = 1536;
    VolumeGeometry geometry;
    geometry.RecordBytes = 1536;
    const auto put = [&](std::uint64_t sector, const char16_t* name) {
        RecordBuilder record(geometry, 7777);
        Volume.PutSectors(sector, record.AddStandardInformation().AddFileName(NameIn(5, name)).Finish());
    };
    put(128 + 800 + 3 * 265, u"last of the first");
    put(128 + 2400, u"first");
    put(128 + 2400 + 3, u"second");
    put(128 + 2480, u"third");
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(Picture(), (Lines{"/last of the first 7777", "/first 7777", "/second 7777", "/third 7777"}));
    ASSERT_GE(Reports.Progress.size(), 3U);
    // Batches of 42 records; the second and third extents hold 2 each.
    EXPECT_EQ(Reports.Progress[1], (TestHost::Pair{42, 256}));
    EXPECT_EQ(Reports.Progress[Reports.Progress.size() - 2].first, 266U);
    EXPECT_EQ(Reports.Progress.back().first, 268U);
}

TEST_F(BasicScanTest, OldNumbersGoOnBehindUnreadableSlots) {
    Volume.PlaceRecord(200, Record(0, 5, u"late", RecordForm::Older).Finish());
    Volume.AddFile({.Number = 70, .Name = u"lost"});
    Volume.AddFile({.Number = 71, .Name = u"kept"});
    Volume.PlaceRecord(
        Volume.NewRecord(72).AddStandardInformation().AddAttributeList(NonResidentValue{.Runs = {{1, 400}}}));
    Plan->Rules = {{Volume.RecordSector(70), 1, kErrorCrc},
                   {Volume.RecordSector(128), 128, kErrorIoDevice},
                   {Volume.Geometry().SectorOf(400), 1, kErrorCrc}};
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(Picture(), (Lines{"/kept 71", "/late 200"}));
    EXPECT_EQ(Reports.Progress, (std::vector<TestHost::Pair>{{0, 256}, {64, 256}, {128, 256}, {192, 256}}));
    EXPECT_EQ(Reports.Pauses, 128U);
    EXPECT_EQ(Engine.Losses.Unread, 1U + 64 + 1) << "and a list";
}

TEST_F(BasicScanTest, NothingToScan) {
    SetTableRuns({});
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(CatalogueEntryCount(), 2U);
    SetTableRuns({{1, 100}});
    Engine.ScanRunFlag = 0;
    EXPECT_EQ(Scan(), 0);
    EXPECT_FALSE(Engine.Losses.NoTable) << "a stop found out nothing";
    Engine.ScanRunFlag = 1;
    Engine.VolumeParams.SectorsPerCluster = 1; // less than a record
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(CatalogueEntryCount(), 2U);
    EXPECT_TRUE(Reports.Progress.empty());
    EXPECT_TRUE(Plan->Log.empty());
    EXPECT_TRUE(Engine.Losses.NoTable);

    ASSERT_EQ(CreateCatalogue(), 1);
    Engine.VolumeParams.FileRecordBytes = 0;
    EXPECT_EQ(BasicScan(), 0);
    Engine.VolumeParams.FileRecordBytes = 1024;
    Engine.VolumeParams.BytesPerSector = 0;
    EXPECT_EQ(BasicScan(), 0);
}

TEST_F(BasicScanTest, StoppingKeepsWhatWasFound) {
    for (std::uint32_t number = 30; number < 250; ++number) {
        Volume.AddFile({.Number = number, .Parent = number < 60 ? 900U : 5U, .Name = u"f"});
    }
    Reports.OnProgress = [this] {
        if (Reports.Progress.size() == 2) {
            Engine.ScanRunFlag = 0; // the batch in hand is still taken
        }
    };
    EXPECT_EQ(Scan(), 0);
    EXPECT_EQ(CatalogueEntryCount(), 2U + 98 + 1) << "and its lost folder";
    ExpectSoundCatalogue();

    // Too late to stop the last batch, but for a record whose list is being followed.
    Reports.OnProgress = nullptr;
    const std::uint64_t list = Volume.AllocateClusters(1);
    Volume.PlaceRecord(Volume.NewRecord(250).AddStandardInformation().AddAttributeList(
        NonResidentValue{.Runs = {{1, list}}}));
    for (const std::uint64_t sector : {Volume.RecordSector(192), Volume.Geometry().SectorOf(list)}) {
        Engine.ScanRunFlag = 1;
        Plan->OnRead = [sector](std::uint64_t, const ReadRequest& request) {
            Engine.ScanRunFlag = request.Offset == 512 * sector ? 0 : 1;
        };
        EXPECT_EQ(Scan(), sector == Volume.RecordSector(192) ? 1 : 0);
        EXPECT_EQ(CatalogueEntryCount(), 2U + 220 + 1);
    }
    EXPECT_FALSE(Engine.Losses.Any());
}

TEST_F(BasicScanTest, AFatalReadEndsTheReadingAndIsNoStop) {
    for (std::uint32_t number = 30; number < 250; ++number) {
        Volume.AddFile({.Number = number, .Parent = 900, .Name = u"f"});
    }
    Plan->Rules = {{Volume.RecordSector(130), 1, kErrorNotReady}};
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(CatalogueEntryCount(), 2U + 98 + 1);
    EXPECT_EQ(Reports.Boxes, std::vector<std::string>{"The device is not ready."});
    EXPECT_EQ(Engine.Losses.Unread, 128U) << "all from the batch on that failed";
    ExpectSoundCatalogue();

    // The same while a record's list is followed: the records of the batch in front of it are kept.
    Volume.PlaceRecord(Volume.NewRecord(100).AddStandardInformation().AddAttributeList(
        std::vector<ListEntry>{{kFileName, 240}}));
    Plan->Rules = {{Volume.RecordSector(240), 2, kErrorNotReady}};
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(CatalogueEntryCount(), 2U + 70 + 1);
    ExpectSoundCatalogue();
}

TEST_F(BasicScanTest, DamagedAndMissingRecordsAreCounted) {
    const auto spoilt = [](RecordBuilder record) {
        ByteVector bytes = record.AddData(ByteVector(400)).Finish();
        bytes[510] ^= 0xFFU; // of the check words one differs
        return bytes;
    };
    Volume.AddFile({.Number = 30, .Name = u"file"});
    Volume.PlaceRecord(31, spoilt(Record(31, 5, u"torn")));
    Volume.PlaceRecord(32, spoilt(Record(32, 5, u"torn extension").SetBase(FileReference(30))));
    Volume.PlaceRecord(33, BytesOf("BAAD" + std::string(1020, 'x')));
    Volume.PlaceRecord(34, spoilt(Record(34, 5, u"freed").SetInUse(false)));
    Volume.PlaceRecord(35, Volume.NewRecord(35).SetInUse(false).Finish()); // an empty one
    Volume.PlaceRecord(250, ByteVector(1024, 0x55));
    Engine.TableBytes = 250 * 1024; // what lies behind was never written
    EXPECT_EQ(Scan(), 1);
    EXPECT_EQ(Engine.Losses.Damaged, 3U);
    EXPECT_EQ(Engine.Losses.Records(), 3U);
    // Slots of zeros are lost where the table's own bitmap says that they are in use, or is lost itself.
    Volume.PlaceRecord(200, ByteVector(10 * 1024));
    Engine.VolumeParams.MftSector = Volume.RecordSector(0);
    for (const auto& [first, lost] : {std::pair{0x0F, 3U + 2}, {0x0E, 3U + 10}}) {
        ByteVector bits(32);
        bits[0] = static_cast<std::uint8_t>(first);
        bits[200 / 8] = 3;
        Volume.PlaceRecord(Record(0, 5, u"$MFT").AddResident(kBitmap, bits));
        Scan();
        EXPECT_EQ(Engine.Losses.Damaged, lost) << first;
    }
    Volume.PlaceRecord(Record(0, 5, u"$MFT"));
    SetTableRuns({{10, 4}});
    Scan();
    EXPECT_EQ(LossText(Engine.Losses),
              "At least 213 records could not be read (210 in lost pieces of the table, 3 damaged)");
    SetTableRuns({{10, 4}, {40, 0x10000}, {13, 2040}});
    Scan();
    EXPECT_EQ(Engine.Losses.BehindEnd, 160U + 10) << "ten slots of the last run";
    Engine.TableBytes = 0;
    Engine.TableCut = true;
    Scan();
    EXPECT_EQ(Engine.Losses.Missing, 1U) << "at least";
}

TEST_F(BasicScanTest, ACatalogueThatCannotBeWrittenEndsWithItsBox) {
    FailingFileStore store;
    SetFileStore(&store);
    Volume.AddFile({.Number = 30, .Name = u"file"});
    ASSERT_EQ(CreateCatalogue(), 1);
    store.FailAt(1, kErrorDiskFull, true);
    EXPECT_EQ(BasicScan(), 1);
    EXPECT_FALSE(Reports.Boxes.empty());
    EXPECT_EQ(CloseCatalogue(), 1);
}

} // namespace thntfs::test
