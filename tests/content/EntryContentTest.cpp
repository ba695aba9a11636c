#include "content/ContentFixture.h"
#include "content/ContentOutcome.h"
#include "content/Lznt1Chunks.h"

#include <algorithm>

namespace thntfs::test {

namespace {

class EntryContentTest : public ContentFixture {};

ByteVector Clusters(std::size_t count, std::uint64_t seed = 1) { return PatternBytes(count * 4096, seed); }

/// Bytes that compress well, but not to almost nothing.
ByteVector Compressible(std::size_t length) {
    ByteVector bytes = PatternBytes(length, 5);
    for (std::size_t i = 0; i < length; ++i) {
        bytes[i] = i % 64 < 16 ? bytes[i] : 'x';
    }
    return bytes;
}

} // namespace

TEST_F(EntryContentTest, ResidentData) {
    const ByteVector value = BytesOf("resident");
    EXPECT_TRUE(Read(Record().AddData(value), 3));
    EXPECT_EQ(Out.Content, value) << "the whole value, whatever the size says";
    EXPECT_TRUE(Read(Record().AddData(ByteVector{}), 0));
    EXPECT_TRUE(Out.Writes.empty());
    EXPECT_TRUE(Read(Record(), 5)) << "no data at all";
    EXPECT_TRUE(Read(Record().AddData(BytesOf("stream"), u"s"), 6));
    EXPECT_TRUE(Out.Content.empty());
    Read(Record().AddData(BytesOf("stream"), u"s").AddData(value).AddData(BytesOf("more")), 8);
    EXPECT_EQ(Out.Content, value) << "the first unnamed one";
}

TEST_F(EntryContentTest, PlainRunsAreCutToTheSize) {
    const ByteVector first = Clusters(20, 1);
    const ByteVector second = Clusters(3, 2);
    const NonResidentValue data = {.Runs = {PutRun(first), PutRun(second)}};
    const ByteVector whole = Join({first, second});
    struct Case {
        std::uint64_t Size;
        std::vector<std::size_t> Pieces;
    };
    for (const Case& test : {Case{94208, {65536, 16384, 12288}},
                             {94207, {65536, 16384, 12287}},
                             {81920, {65536, 16384}},
                             {81921, {65536, 16384, 1}},
                             {65536, {65536}},
                             {1, {1}},
                             {0, {}},
                             {200000, {65536, 16384, 12288}}}) {
        SCOPED_TRACE(test.Size);
        Plan->Log.clear();
        EXPECT_TRUE(Read(Record().AddData(data), test.Size));
        EXPECT_EQ(Out.Content, FirstOf(whole, std::min<std::size_t>(test.Size, whole.size())));
        EXPECT_EQ(Plan->Log.size(), 1 + test.Pieces.size()) << "nothing behind the size is read";
        ASSERT_EQ(Reports.Progress.size(), test.Pieces.size());
        ASSERT_EQ(Out.Writes.size(), test.Pieces.size());
        std::uint64_t done = 0;
        for (std::size_t i = 0; i < test.Pieces.size(); ++i) {
            done += test.Pieces[i];
            EXPECT_EQ(Out.Writes[i].Size, test.Pieces[i]);
            EXPECT_EQ(Reports.Progress[i], (TestHost::Pair{done, test.Size}));
        }
        EXPECT_EQ(Engine.BytesWritten, Out.Content.size());
    }
    Engine.PreviewActive = true;
    Engine.ScanRunFlag = 0;
    Engine.VolumeParams.TotalSectors = 1; // the medium has more
    EXPECT_TRUE(Read(Record().AddData(data), 94208));
    EXPECT_EQ(Out.Content, whole);
    EXPECT_TRUE(Reports.Progress.empty()) << "a preview sends none";
}

TEST_F(EntryContentTest, HolesAddNothing) {
    const ByteVector first = Clusters(2, 1);
    const ByteVector second = Clusters(2, 2);
    for (const std::uint16_t flags : std::initializer_list<std::uint16_t>{0, 0x8000, 0x4000, 0x8001}) {
        EXPECT_TRUE(
            Read(Record().AddData({.Runs = {PutRun(first), {30, {}}, PutRun(second)}, .Flags = flags}),
                 34 * 4096));
        EXPECT_EQ(Out.Content, Join({first, second})) << flags;
        EXPECT_EQ(Engine.BytesWritten, 4U * 4096);
    }
}

TEST_F(EntryContentTest, CompressedUnits) {
    const ByteVector plain = Compressible(65536);
    const ByteVector packed = CompressLznt1(plain);
    const auto packedClusters = (packed.size() + 4095) / 4096;
    ASSERT_LT(packedClusters, 15U);
    const ByteVector raw = Clusters(16, 3);
    const auto read = [&](std::vector<DataRun> runs, std::uint64_t size) {
        return Read(Record().AddData({.Runs = std::move(runs), .Flags = 1, .CompressionExponent = 4}), size);
    };
    const DataRun hole = {16 - packedClusters, {}};
    ByteVector zeroEnded = packed; // zeros behind the last chunk close the stream
    zeroEnded.resize(packedClusters * 4096);

    EXPECT_TRUE(read({PutRun(zeroEnded), hole}, 65536));
    EXPECT_EQ(Out.Content, plain);
    EXPECT_EQ(Reports.Progress, (std::vector<TestHost::Pair>{{0, 65536}, {65536, 65536}}))
        << "one behind each node";

    EXPECT_TRUE(read({PutRun(zeroEnded), hole}, 60000));
    EXPECT_EQ(Out.Content, plain) << "the last unit isn't cut";

    EXPECT_TRUE(read({PutRun(raw), PutRun(zeroEnded), hole}, 131072));
    EXPECT_EQ(Out.Content, Join({raw, plain})) << "a unit stored as it is";

    ByteVector noChain = Clusters(3, 4);
    PutNumber(noChain, 0, std::uint16_t{0xBFFE}); // a chunk of 4095 bytes, and then
    PutNumber(noChain, 4097, std::uint16_t{0xBFFF});
    PutNumber(noChain, 8195, std::uint16_t{0xBFFF});
    EXPECT_TRUE(read({PutRun(noChain), {13, {}}, PutRun(zeroEnded), hole}, 131072));
    EXPECT_EQ(Out.Content, Join({noChain, plain})) << "what isn't a chain goes out as it is";

    EXPECT_TRUE(read({PutRun(zeroEnded)}, 65536));
    EXPECT_TRUE(Out.Content.empty()) << "no hole closes the unit";

    EXPECT_TRUE(read({PutRun(raw), {1, {}}, PutRun(raw)}, 65536));
    EXPECT_EQ(Out.Content, raw) << "nothing behind the size";
}

TEST_F(EntryContentTest, HostileUnitSizesAndRuns) {
    const DataRun run = PutRun(Clusters(16));
    for (const std::uint8_t exponent : std::initializer_list<std::uint8_t>{14, 20, 32, 63, 255}) {
        EXPECT_TRUE(Read(
            Record().AddData({.Runs = {run, {1, {}}}, .Flags = 1, .CompressionExponent = exponent}), 65536));
        EXPECT_LE(Out.Content.size(), 65536U);
    }
    Read(Record().AddData({.Runs = {run}, .Flags = 1}), 65536);
    EXPECT_EQ(Out.Content, Clusters(16)) << "units of one cluster are never compressed";

    for (const std::uint16_t flags : std::initializer_list<std::uint16_t>{0, 1}) {
        EXPECT_TRUE(
            Read(Record().AddData(
                     {.Runs = {{0xFFFFFF, 100}, {0xFFFFFF, 200}}, .Flags = flags, .CompressionExponent = 4}),
                 ~0ULL));
        EXPECT_LT(Out.Content.size(), Volume.Image().size() + 65536) << "no more than a volume can hold";
    }
}

TEST_F(EntryContentTest, AttributeListsInTheirOrder) {
    const ByteVector first = Clusters(3, 1);
    const ByteVector second = Clusters(2, 2);
    const auto extension = [&](std::uint32_t number) {
        return Volume.NewRecord(number).SetBase(FileReference(40)).AddResident(0x40, ByteVector(8));
    };
    Volume.PlaceRecord(extension(41).AddData({.Runs = {PutRun(first)}, .RealSize = 5 * 4096}));
    const NonResidentValue later = {.Runs = {PutRun(second)}, .FirstVcn = 3};
    Volume.PlaceRecord(extension(42).AddData(BytesOf("stream"), u"s").AddData(later));
    const auto with = [&](const std::vector<ListEntry>& list) {
        return Volume.NewRecord(40).AddStandardInformation().AddAttributeList(list);
    };
    const std::vector<ListEntry> list = {{kStandardInformation, 40}, {kData, 41}, {kData, 42, 3}};
    EXPECT_TRUE(Read(with(list), 20480));
    EXPECT_EQ(Out.Content, Join({first, second}));
    Read(with(list), 16000);
    EXPECT_EQ(Out.Content, FirstOf(Join({first, second}), 16000)) << "cut over all pieces";
    Read(with({{kData, 42, 3}, {kData, 41}}), 20480);
    EXPECT_EQ(Out.Content, Join({second, first})) << "the list's order, not the clusters'";
    Read(with({{kData, 41}, {kData, 42, 0, 0, u"s"}, {kData, 42, 3}}), 40960);
    EXPECT_EQ(Out.Content, Join({first, second, second})) << "a stream beside a piece repeats it";
    Read(with({{kData, 41}, {kData, 70000}, {kIndexRoot, 42}, {kData, 42}}), 20480);
    EXPECT_EQ(Out.Content, Join({first, second})) << "other types and unknown numbers are dropped";
    Read(with({{kData, 41}, {0x88, 1}, {kData, 42}}), 20480);
    EXPECT_EQ(Out.Content, first) << "an invalid type ends the list";
    Volume.PlaceRecord(43, ByteVector(1024));
    EXPECT_FALSE(Read(with({{kData, 41}, {kData, 43}, {kData, 42}}), 20480));
    EXPECT_EQ(Out.Content, first) << "what was written stays";
    EXPECT_TRUE(Read(with({}), 20480));
    EXPECT_TRUE(Out.Content.empty());

    const DataRun clusters = PutRun(Join({EncodeAttributeList(list), ByteVector(8192)}));
    Volume.PutClusters(*clusters.Start + 2, EncodeAttributeList({{kData, 42, 3}}));
    EXPECT_TRUE(Read(
        Volume.NewRecord(40).AddStandardInformation().AddAttributeList(NonResidentValue{.Runs = {clusters}}),
        28672));
    EXPECT_EQ(Out.Content, Join({first, second, second})) << "each cluster begins anew behind its padding";

    RecordBuilder third = Volume.NewRecord(40).AddStandardInformation().AddResident(0x10, ByteVector(48));
    EXPECT_TRUE(Read(third.AddAttributeList(list).AddData(BytesOf("own")), 3));
    EXPECT_TRUE(Out.Content.empty()) << "a list that isn't the second attribute";
}

TEST_F(EntryContentTest, DamagedRecords) {
    EXPECT_FALSE(Read(Record().AddData(BytesOf("x")).Poke8(0, 'X'), 1));
    CatalogueItem nowhere = ItemOf(40, 1);
    nowhere.RecordSector = ~0ULL / 512;
    EXPECT_FALSE(Read(nowhere));
    EXPECT_FALSE(TakeContent(nowhere, Out).Kept());
    EXPECT_TRUE(Out.Writes.empty());
}

TEST_F(EntryContentTest, BadSectorsAreZerosInAJobAndAWholePieceOutsideOne) {
    const ByteVector plain = Clusters(20);
    const DataRun run = PutRun(plain);
    const RecordBuilder record = Record().AddData({.Runs = {run}});
    Plan->Rules = {{Volume.Geometry().SectorOf(*run.Start) + 9, 1, kErrorCrc}};
    ByteVector expected = plain;
    std::fill_n(expected.begin() + 9 * 512, 512, std::uint8_t{0});
    EXPECT_TRUE(Read(record, plain.size()));
    EXPECT_EQ(Out.Content, expected);
    EXPECT_EQ(Reports.Log.size(), 2U);

    Engine.PreviewActive = true;
    Engine.ScanRunFlag = 0;
    std::fill_n(expected.begin(), 65536, std::uint8_t{0});
    EXPECT_TRUE(Read(record, plain.size()));
    EXPECT_EQ(Out.Content, expected);
}

TEST_F(EntryContentTest, DamageIsWhatIsMissingFromTheData) {
    ByteVector packed = CompressLznt1(Compressible(65536));
    const std::uint64_t packedSectors = (packed.size() + 511) / 512;
    packed.resize((packed.size() + 4095) / 4096 * 4096 + 4096);
    const NonResidentValue plain = {.Runs = {PutRun(Clusters(4))}};
    const DataRun packedRun = PutRun(packed);
    const NonResidentValue unit = {
        .Runs = {packedRun, {16 - packedRun.Clusters, {}}}, .Flags = 1, .CompressionExponent = 4};
    NonResidentValue inPieces = unit;
    inPieces.Runs = {{1, packedRun.Start}, {packedRun.Clusters - 1, *packedRun.Start + 1}, unit.Runs[1]};
    NonResidentValue twoUnits = unit;
    twoUnits.Runs.insert(twoUnits.Runs.end(), {PutRun(packed), unit.Runs[1]});
    const NonResidentValue across = {.Runs = {{4, 2048}}}; // the medium has two more
    const NonResidentValue unitAcross = {.Runs = {{16, 2048}}, .Flags = 1, .CompressionExponent = 4};
    struct Case {
        const NonResidentValue& Data;
        std::uint64_t Size;
        std::uint64_t BadSector; ///< of the data
        std::uint64_t Times;     ///< that it can't be read
        std::uint64_t Unread;
        std::size_t Reasons;
        std::uint64_t Behind = 0;
    };
    for (const Case& test : {Case{plain, 13000, 0, 0, 0, 0},
                             {plain, 13000, 5, 1, 0, 0}, // read on the second try
                             {plain, 13000, 5, kForever, 2, 1},
                             {plain, 13000, 25, kForever, 1, 1},
                             {plain, 13000, 26, kForever, 0, 0}, // behind the end of the file
                             {plain, 20000, 0, 0, 0, 1},         // too short
                             {plain, 20000, 5, kForever, 1, 2},
                             {across, 13000, 0, 0, 0, 1, 13000 - 8192},
                             {across, 8192, 0, 0, 0, 0},
                             {unitAcross, 65536, 0, 0, 0, 1, 65536 - 8192},
                             {unit, 65536, 3, kForever, 1, 2}, // its chunk comes out short
                             {twoUnits, 131072, 3, kForever, 1, 2},
                             {inPieces, 65536, packedSectors, kForever, 0, 0},
                             {unit, 65536, packedSectors, kForever, 0, 0},
                             {unit, 60000, 0, 0, 0, 1}}) { // too long
        SCOPED_TRACE(testing::Message() << test.Size << " " << test.BadSector);
        Volume.PlaceRecord(Record().AddData(test.Data));
        Out.Clear();
        const std::uint64_t bad = Volume.Geometry().SectorOf(*test.Data.Runs[0].Start) + test.BadSector;
        Plan->Rules = {{bad, std::max<std::uint64_t>(1, test.Unread), kErrorCrc, test.Times}};
        const ContentOutcome outcome = TakeContent(ItemOf(40, test.Size), Out);
        EXPECT_EQ(outcome.Missing.SectorsUnread, test.Unread);
        EXPECT_EQ(outcome.Missing.BytesBehindEnd, test.Behind);
        EXPECT_EQ(outcome.Whole(), test.Reasons == 0);
        EXPECT_EQ(outcome.Written, Out.Content.size());
        EXPECT_TRUE(test.Unread == 0 || outcome.Missing.FirstSectorUnread == bad);
        EXPECT_EQ(DamageReasons(outcome).size(), test.Reasons);
    }
}

TEST_F(EntryContentTest, AStopEndsBetweenPieces) {
    const NonResidentValue plain = {.Runs = {PutRun(Clusters(64))}};
    Reports.OnProgress = [] { Engine.ScanRunFlag = 0; };
    EXPECT_TRUE(Read(Record().AddData(plain), 64 * 4096));
    EXPECT_EQ(Out.Content.size(), 65536U);

    Engine.ScanRunFlag = 1;
    const std::vector<DataRun> units(4, PutRun(Clusters(16)));
    Read(Record().AddData({.Runs = units, .Flags = 1, .CompressionExponent = 4}), 64 * 4096);
    EXPECT_EQ(Out.Content.size(), 65536U);
}

TEST_F(EntryContentTest, FatalReadsAndFailedWritesPassThrough) {
    const DataRun run = PutRun(Clusters(40));
    const RecordBuilder record = Record().AddData({.Runs = {run}});
    Plan->Rules = {{Volume.Geometry().SectorOf(*run.Start) + 130, 1, kErrorNotReady}};
    EXPECT_THROW(Read(record, 163840), CUserException);
    EXPECT_EQ(Out.Content.size(), 65536U);
    Plan->Rules.clear();
    Out.OnCall = [] { return kErrorDiskFull; };
    EXPECT_THROW(Read(ItemOf(40, 163840)), CUserException);
    EXPECT_EQ(Reports.Boxes, (std::vector<std::string>{"The device is not ready.",
                                                       "There is not enough space on the disk."}));
}

} // namespace thntfs::test
