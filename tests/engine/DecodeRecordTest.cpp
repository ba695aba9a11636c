#include "engine/DecodeRecord.h"

#include "engine/FileRecord.h"
#include "support/EngineFixture.h"

namespace thntfs::test {

namespace {

class DecodeRecordTest : public EngineFixture {
protected:
    DecodeRecordTest() { OpenVolume(Volume); }

    /// A live file's record with standard information.
    RecordBuilder File() { return Volume.NewRecord(40).AddStandardInformation(); }

    bool Decode(const RecordBuilder& record) {
        ByteVector bytes = record.Finish();
        EXPECT_TRUE(CheckFileRecord(bytes, Volume.Geometry().RecordBytes, 512));
        Entry = DecodedEntry();
        return DecodeFileRecord(bytes, Entry);
    }

    VolumeBuilder Volume;
    DecodedEntry Entry;
};

} // namespace

TEST_F(DecodeRecordTest, TheLastNameThatIsNotInDosFormCounts) {
    struct Case {
        const char* Name;
        std::vector<FileNameValue> Names;
        std::u16string Expected;
        std::uint32_t Parent;
    };
    const Case cases[] = {
        {"Win32 first", {NameIn(7, u"long name"), NameIn(8, u"LONGNA~1", 2)}, u"long name", 7},
        {"DOS first", {NameIn(8, u"LONGNA~1", 2), NameIn(7, u"long name")}, u"long name", 7},
        {"both in one", {NameIn(7, u"SHORT", 3)}, u"SHORT", 7},
        {"two links", {NameIn(7, u"one link"), NameIn(9, u"other", 0)}, u"other", 9},
        {"DOS alone", {NameIn(7, u"SHORT", 2)}, u"", 0},
        {"255 units", {NameIn(7, std::u16string(255, u'\u4E2D'))}, std::u16string(255, u'\u4E2D'), 7},
        {"no units", {NameIn(7, u"")}, u"", 7},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.Name);
        RecordBuilder record = File();
        for (const FileNameValue& name : test.Names) {
            record.AddFileName(name);
        }
        EXPECT_EQ(Decode(record), test.Parent != 0) << "without a parent and a number it is dropped";
        EXPECT_EQ(Entry.Name(), test.Expected);
        EXPECT_EQ(Entry.ParentNumber, test.Parent);
    }
    Decode(File().AddData(BytesOf("1")).AddFileName(NameIn(5, u"late")));
    EXPECT_EQ(Entry.NameLength, 0) << "the walk ends at data";
}

TEST_F(DecodeRecordTest, CatalogueFlagsTakeOverTwoBits) {
    struct Case {
        bool InUse;
        bool Folder;
        std::uint16_t SetBits;
        std::uint16_t ClearBits;
    };
    for (const Case& test :
         {Case{true, false, 8, 16}, {false, true, 16, 0}, {true, true, 24, 0}, {false, false, 0, 16}}) {
        for (const std::uint32_t bits : {0U, 0x18U, 0x10000827U, 0xFFFFFFFFU}) {
            const auto expected = static_cast<std::uint16_t>((bits | test.SetBits) & ~test.ClearBits);
            Decode(Volume.NewRecord(40)
                       .SetInUse(test.InUse)
                       .SetFolder(test.Folder)
                       .AddStandardInformation(EqualTimes(), bits)
                       .AddFileName(NameIn(5, u"x")));
            EXPECT_EQ(Entry.Flags, expected) << test.InUse << test.Folder << bits;
        }
    }
}

TEST_F(DecodeRecordTest, DatesAreDosDates) {
    FileTimes times;
    times.Created = FileTimeOfDay(2024, 2, 29);
    for (const int date : {0, 1 << 5 | 1}) { // the last moments of the day before, and of the first one
        times.Accessed = FileTimeOfDay(1980, 1, date == 0 ? 1 : 2) - 1;
        Decode(Volume.NewRecord(40).AddStandardInformation(times).AddFileName(NameIn(5, u"x")));
        EXPECT_EQ(Entry.CreatedDate, (2024 - 1980) << 9 | 2 << 5 | 29);
        EXPECT_EQ(Entry.AccessedDate, date);
    }
}

TEST_F(DecodeRecordTest, SizeComesFromTheFirstUnnamedData) {
    const ByteVector value = BytesOf("12345");
    const auto named = [this] { return File().AddFileName(NameIn(5, u"x")); };
    struct Case {
        const char* Name;
        RecordBuilder Record;
        std::uint64_t Size;
    };
    RecordBuilder halfNamed = named().AddData(value, u"s");
    halfNamed.Poke16(halfNamed.LastAttributeOffset() + 10, 0); // a name length, but no place
    RecordBuilder behindUsed = named().AddData(value);
    behindUsed.Poke32(24, static_cast<std::uint32_t>(behindUsed.LastAttributeOffset()));
    const Case cases[] = {
        {"none", named(), 0},
        {"resident", named().AddData(value), 5},
        {"stream alone", named().AddData(value, u"s"), 0},
        {"behind a stream", named().AddData(BytesOf("123"), u"s").AddData(value), 5},
        {"two", named().AddData(value).AddData(BytesOf("123")), 5},
        {"half named", halfNamed, 5},
        {"behind the used bytes", behindUsed, 0},
        {"behind the index root", named().AddIndexRoot({}).AddData(value), 0},
        {"in clusters", named().AddData({.Runs = {{2, 100}}, .RealSize = 4097}), 4097},
        {"above 4 GiB", named().AddData({.Runs = {{9, 100}}, .RealSize = 0x123456789A}), 0x123456789A},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.Name);
        EXPECT_TRUE(Decode(test.Record));
        EXPECT_EQ(Entry.Size, test.Size);
    }
}

TEST_F(DecodeRecordTest, MetafilesAreDroppedByNameInAnyFolder) {
    for (const char16_t* name : {u"$MFT", u"$MFTMirr", u"$LogFile", u"$Volume", u"$AttrDef", u".", u"$Bitmap",
                                 u"$Boot", u"$BadClus", u"$Secure", u"$UpCase"}) {
        EXPECT_FALSE(Decode(File().AddFileName(NameIn(77, name))));
        EXPECT_EQ(Entry.NameLength, 0);
    }
    for (const char16_t* name : {u"$mft", u"$MFT1", u"$Boo", u"..", u"$Extend", u"$Quota", u"$"}) {
        EXPECT_TRUE(Decode(File().AddFileName(NameIn(77, name))));
        EXPECT_EQ(Entry.Name(), name);
    }
}

TEST_F(DecodeRecordTest, AFolderLearnsItsNumberFromItsIndex) {
    const std::vector<IndexEntry> one = {{.Reference = 50, .Key = NameIn(41, u"child")}};
    const auto folder = [&](std::uint32_t parent, const std::vector<IndexEntry>& entries) {
        return Volume.NewRecord(41, RecordForm::Older)
            .SetFolder(true)
            .AddStandardInformation()
            .AddFileName(NameIn(parent, u"folder"))
            .AddIndexRoot(entries);
    };
    EXPECT_TRUE(Decode(folder(5, one)));
    EXPECT_EQ(Entry.RecordNumber, 41U);
    EXPECT_TRUE(Decode(folder(5, {})));
    EXPECT_EQ(Entry.RecordNumber, 0U) << "an index without a key tells nothing";
    EXPECT_FALSE(Decode(folder(41, one))) << "a folder in itself is the root";
    EXPECT_FALSE(Decode(folder(0, {})));

    // What its index root must be: over names, filled, of more than 40 bytes.
    const std::size_t value = folder(5, one).LastAttributeOffset() + 32; // behind the header and "$I30"
    for (const auto& [type, used, allocated, number] : {std::array{0x31U, 48U, 48U, 0U},
                                                        {0x30U, 48U, 8U, 0U},
                                                        {0x30U, 40U, 40U, 0U},
                                                        {0x30U, 48U, 48U, 41U}}) {
        Decode(folder(5, one).Poke32(value, type).Poke32(value + 20, used).Poke32(value + 24, allocated));
        EXPECT_EQ(Entry.RecordNumber, number) << type << " " << used << " " << allocated;
    }
}

TEST_F(DecodeRecordTest, AttributeListsLeadToExtensionRecords) {
    const auto extension = [this](std::uint32_t number) { return Volume.NewRecord(number).SetBase(40); };
    const auto unnamed = [&](std::uint32_t number) {
        return extension(number).AddResident(0x40, ByteVector(8));
    };
    const NonResidentValue large = {.Runs = {{4, 200}}, .RealSize = 0x100000001};
    Volume.PlaceRecord(extension(50)
                           .AddFileName(NameIn(9, u"long"))
                           .AddResident(0x40, ByteVector(8))
                           .AddFileName(NameIn(9, u"behind another type")));
    Volume.PlaceRecord(
        extension(51).AddFileName(NameIn(9, u"long")).AddFileName(NameIn(8, u"DOS", 2)).AddData(large));
    Volume.PlaceRecord(extension(52).AddData(BytesOf("123"), u"named").AddData(BytesOf("1")));
    Volume.PlaceRecord(unnamed(53).AddData({.Runs = {{4, 200}}, .FirstVcn = 4}));
    Volume.PlaceRecord(unnamed(54).AddData(ByteVector{}));
    Volume.PlaceRecord(55, ByteVector(1024));
    Volume.PlaceRecord(unnamed(56).AddData({.Runs = {{4, 200}}, .LastVcn = ~0ULL}));
    struct Case {
        const char* Name;
        std::vector<ListEntry> List;
        std::uint64_t Size;
        std::u16string Expected = u"long";
    };
    const Case cases[] = {
        {"name and size", {{kFileName, 50}, {kData, 51}}, 0x100000001},
        {"the last name, of whatever form", {{kFileName, 51}, {kData, 51}}, 0x100000001, u"DOS"},
        {"the record's first data, named or not", {{kFileName, 50}, {kData, 52}}, 3},
        {"a later piece isn't followed", {{kFileName, 50}, {kData, 51, 4}, {kData, 52}}, 3},
        {"nor is a stream", {{kFileName, 50}, {kData, 52, 0, 0, u"s"}, {kData, 51}}, 0x100000001},
        {"nor what stands behind the data", {{kFileName, 50}, {kData, 52}, {kFileName, 51}}, 3},
        {"a type above data ends", {{kFileName, 50}, {kIndexRoot, 1}, {kData, 52}}, 0},
        {"types below are passed", {{kStandardInformation, 40}, {0x50, 3}, {kFileName, 50}}, 0},
        {"a piece that isn't the first", {{kFileName, 50}, {kData, 53}}, 0},
        {"an empty piece", {{kFileName, 50}, {kData, 54}}, 0},
        {"a piece without an end", {{kFileName, 50}, {kData, 56}}, 0},
        {"a lost size record", {{kFileName, 50}, {kData, 55}}, 0},
        {"a number no extent holds", {{kFileName, 50}, {kData, 5000}}, 0},
    };
    const std::uint64_t cluster = Volume.AllocateClusters(1);
    for (const Case& test : cases) {
        SCOPED_TRACE(test.Name);
        Volume.PutClusters(cluster, ByteVector(4096));
        Volume.PutClusters(cluster, EncodeAttributeList(test.List));
        for (const RecordBuilder& record :
             {File().AddAttributeList(test.List),
              File().AddAttributeList(NonResidentValue{.Runs = {{1, cluster}}})}) {
            EXPECT_TRUE(Decode(record));
            EXPECT_EQ(Entry.Name(), test.Expected);
            EXPECT_EQ(Entry.Size, test.Size);
        }
    }
    EXPECT_FALSE(Decode(File().AddAttributeList(std::vector<ListEntry>{{kFileName, 55}, {kData, 51}})))
        << "a lost name ends the walk";
    EXPECT_EQ(Entry.Size, 0U);
}

TEST_F(DecodeRecordTest, AListWithoutAResultEndsTheRecordsWalk) {
    Volume.PlaceRecord(Volume.NewRecord(50).SetBase(40).AddFileName(NameIn(9, u"listed")));
    const std::vector<IndexEntry> key = {{.Reference = 60, .Key = NameIn(40, u"child")}};
    const auto record = [&](bool folder, const std::vector<ListEntry>& list) {
        return File()
            .SetFolder(folder)
            .AddAttributeList(list)
            .AddFileName(NameIn(7, u"own"))
            .AddIndexRoot(key);
    };
    Decode(record(false, {{0x50, 1}}));
    EXPECT_EQ(Entry.NameLength, 0) << "no result";
    Decode(record(false, {{kFileName, 50}}));
    EXPECT_EQ(Entry.Name(), u"listed") << "a file's walk ends with the list";
    Decode(record(true, {{kFileName, 50}}));
    EXPECT_EQ(Entry.Name(), u"own") << "a folder's goes on";
    EXPECT_EQ(Entry.RecordNumber, 40U);
    Decode(record(true, {{kFileName, 999}}));
    EXPECT_EQ(Entry.RecordNumber, 0U);
}

TEST_F(DecodeRecordTest, AListInClustersEndsWithTheClusterThatGaveAResult) {
    Volume.PlaceRecord(Volume.NewRecord(50).SetBase(40).AddFileName(NameIn(9, u"first")));
    Volume.PlaceRecord(
        Volume.NewRecord(51).SetBase(40).AddFileName(NameIn(9, u"second")).AddData(BytesOf("12")));
    const std::uint64_t clusters = Volume.AllocateClusters(3);
    const auto put = [&](std::uint64_t index, const std::vector<ListEntry>& list) {
        Volume.PutClusters(clusters + index, EncodeAttributeList(list));
    };
    put(0, {{0x50, 1}});
    put(1, {{kFileName, 50}});
    put(2, {{kFileName, 51}, {kData, 51}});
    const RecordBuilder record =
        File().AddAttributeList(NonResidentValue{.Runs = {{1, clusters}, {4, {}}, {2, clusters + 1}}});
    EXPECT_TRUE(Decode(record));
    EXPECT_EQ(Entry.Name(), u"first");
    EXPECT_EQ(Entry.Size, 0U);
    put(1, {{kFileName, 999}});
    EXPECT_TRUE(Decode(record));
    EXPECT_EQ(Entry.Name(), u"second");
    EXPECT_EQ(Entry.Size, 2U);
}

TEST_F(DecodeRecordTest, AListThatAsksForMoreReadsThanAnyDriverWritesEndsAndSoDoesAStoppedOne) {
    const std::uint64_t cluster = Volume.AllocateClusters(1);
    Volume.PutClusters(cluster, EncodeAttributeList(std::vector<ListEntry>(4096 / 32, {kFileName, 60})));
    const RecordBuilder record =
        File().AddAttributeList(NonResidentValue{.Runs = std::vector<test::Run>(64, {1, cluster})});
    Decode(record);
    EXPECT_LT(Plan->Log.size(), 3200U);
    EXPECT_TRUE(Engine.Lists.Ended);

    Plan->Log.clear();
    const std::uint64_t zeros = Volume.AllocateClusters(100);
    Decode(File().AddAttributeList(NonResidentValue{.Runs = {{100, zeros}}}));
    EXPECT_EQ(Plan->Log.size(), 64U) << "256 KiB";
    Engine.VolumeParams.ClusterBytes = 1U << 20U;
    Decode(File().AddAttributeList(NonResidentValue{.Runs = {{2, zeros}}}));
    EXPECT_EQ(Plan->Log.size(), 65U);
    EXPECT_EQ(Plan->Log.back().Size, 256U << 10U);
    Engine.VolumeParams.ClusterBytes = 4096;

    // Lists that share their records end sooner.
    for (int i = 0; i < 100; ++i) {
        Decode(record);
    }
    const std::size_t before = Plan->Log.size();
    Decode(record);
    EXPECT_LT(Plan->Log.size() - before, 40U);

    Volume.PlaceRecord(Volume.NewRecord(60).SetBase(40).AddFileName(NameIn(9, u"taken before the stop")));
    Engine.Lists = {.InScan = true};
    Engine.ScanRunFlag = 1;
    Plan->OnRead = [before = Plan->Log.size()](std::uint64_t index, const ReadRequest&) {
        Engine.ScanRunFlag = index < before + 5 ? 1 : 0;
    };
    EXPECT_FALSE(Decode(record));
    EXPECT_EQ(Engine.Lists.OfRecord, 7U) << "six reads, and the look that ended them";
    EXPECT_TRUE(Engine.Lists.Stopped);
}

TEST_F(DecodeRecordTest, FindsARecordsSectorByTheTablesRuns) {
    VolumeParams& volume = Engine.VolumeParams;
    SetTableRuns({{2, 100}, {1, {}}, {1, 50}});
    EXPECT_EQ(FindRecordSector(0), 128U + 800);
    EXPECT_EQ(FindRecordSector(7), 128U + 814);
    EXPECT_EQ(FindRecordSector(8), 128U + 400);
    EXPECT_EQ(FindRecordSector(11), 128U + 406);
    EXPECT_EQ(FindRecordSector(12), std::nullopt);
    volume.SectorsPerFileRecord = 3; // 16 sectors hold 5 records, the rest is dropped
    EXPECT_EQ(FindRecordSector(4), 128U + 812);
    EXPECT_EQ(FindRecordSector(5), 128U + 400);

    volume.SectorsPerFileRecord = 2;
    SetTableRuns({{0x20000001, 100}, {1, 50}}); // 0x20000001 * 8 wraps to 8
    EXPECT_EQ(FindRecordSector(3), 128U + 806);
    EXPECT_EQ(FindRecordSector(4), 128U + 400);
    volume.SectorsPerFileRecord = 0;
    EXPECT_EQ(FindRecordSector(0), std::nullopt);
}

TEST_F(DecodeRecordTest, AFatalReadPassesThrough) {
    Engine.ScanRunFlag = 1;
    Plan->Rules = {{Volume.RecordSector(50), 1, kErrorNotReady},
                   {Volume.Geometry().SectorOf(300), 1, kErrorNotReady}};
    EXPECT_THROW(Decode(File().AddAttributeList(std::vector<ListEntry>{{kFileName, 50}})), CUserException);
    EXPECT_THROW(Decode(File().AddAttributeList(std::vector<ListEntry>{{kData, 50}})), CUserException);
    EXPECT_THROW(Decode(File().AddAttributeList(NonResidentValue{.Runs = {{1, 300}}})), CUserException);
    EXPECT_EQ(Reports.Boxes.size(), 3U);
}

} // namespace thntfs::test
