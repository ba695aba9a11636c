#include "content/ExactFile.h"

#include "content/ContentFixture.h"
#include "content/ContentOutcome.h"
#include "content/Lznt1Chunks.h"
#include "engine/RecordTable.h"

#ifdef THNTFS_WIMLIB
#include <wimlib.h>
#endif

namespace thntfs::test {

namespace {

ByteVector Zeros(std::size_t clusters) { return ByteVector(clusters * 4096); }
ByteVector Noise(std::size_t clusters, std::uint64_t seed) { return PatternBytes(clusters * 4096, seed); }

/// Bytes that become less by compression.
ByteVector Text(std::size_t length) {
    ByteVector bytes = PatternBytes(length, 9);
    for (std::size_t i = 0; i < length; ++i) {
        bytes[i] = i % 32 < 12 ? bytes[i] : 'x';
    }
    return bytes;
}

class ExactFileTest : public ContentFixture {
protected:
    static CatalogueItem Numbered(CatalogueItem item, std::uint32_t number) {
        item.RecordNumber = number;
        return item;
    }
    CatalogueItem Placed(const RecordBuilder& record, std::uint64_t size = 0) {
        Volume.PlaceRecord(record);
        return Numbered(ItemOf(record.Number(), size), record.Number());
    }

    /// Places a record and takes its content; it is in Out.
    ContentOutcome Take(const RecordBuilder& record) { return Take(Placed(record)); }
    ContentOutcome Take(const CatalogueItem& item, std::u16string_view stream = {}) {
        Out.Clear();
        ContentOutcome outcome = TakeExactContent(item, Out, stream);
        EXPECT_EQ(outcome.Kept() ? outcome.Size : 0, Out.Content.size());
        return outcome;
    }

    /// The only doubt about an outcome.
    static testing::AssertionResult Doubts1(const ContentOutcome& outcome, Doubt doubt) {
        const bool right = outcome.Doubtful.Has(doubt) && outcome.Doubtful.Reasons().size() == 1 &&
                           !outcome.Whole() && outcome.Kept() && DamageReasons(outcome).size() == 1;
        return right ? testing::AssertionSuccess()
                     : testing::AssertionFailure() << testing::PrintToString(DamageReasons(outcome));
    }
};

} // namespace

TEST_F(ExactFileTest, SizesHolesAndOffsets) {
    const ByteVector first = Noise(2, 1);
    const ByteVector second = Noise(3, 2);
    const std::vector<DataRun> runs = {PutRun(first), {3, {}}, PutRun(second)};
    const ByteVector all = Join({first, Zeros(3), second});
    EXPECT_TRUE(Take(Record().AddData({.Runs = runs, .Flags = 0x8000, .RealSize = 30000})).Whole());
    EXPECT_EQ(Out.Content, FirstOf(all, 30000));

    const RecordBuilder record =
        Record().AddData({.Runs = runs, .RealSize = 30000, .InitializedSize = 21000});
    EXPECT_TRUE(Take(record).Whole());
    ByteVector short1 = FirstOf(all, 21000);
    short1.resize(30000);
    EXPECT_EQ(Out.Content, short1) << "zeros from the initialized size on";

    ExactFile file;
    ASSERT_TRUE(file.Open(Placed(record)));
    const auto stream = file.OpenStream();
    for (const auto& [offset, length] : {std::pair<std::size_t, std::size_t>{0, 1},
                                         {511, 2},
                                         {700, 5000},
                                         {8190, 12300},
                                         {20999, 2},
                                         {29999, 9}}) {
        MissingData missing;
        ByteVector buffer(length, 7);
        const std::size_t got = stream->Read(offset, buffer, missing);
        ASSERT_EQ(got, std::min(length, 30000 - offset));
        EXPECT_TRUE(std::equal(buffer.begin(), buffer.begin() + got, short1.begin() + offset)) << offset;
    }
    const auto edges = [&](std::uint64_t offset) {
        return std::pair(stream->NextData(offset), stream->NextHole(offset));
    };
    EXPECT_EQ(edges(100), std::pair(100UL, 8192UL));
    EXPECT_EQ(edges(8192), std::pair(20480UL, 8192UL));
    EXPECT_EQ(edges(20480), std::pair(20480UL, 21000UL));
    EXPECT_EQ(edges(21000), std::pair(30000UL, 21000UL));
    EXPECT_EQ(edges(40000), std::pair(30000UL, 30000UL));

    ASSERT_TRUE(
        file.Open(Placed(Record().AddData({.Runs = runs, .RealSize = 30000, .InitializedSize = 32768}))));
    EXPECT_EQ(file.OpenStream()->NextHole(25000), 30000U);

    // Nothing on the medium stands for it: petabytes are known as a hole at once.
    ASSERT_TRUE(file.Open(Placed(Record().AddData({.Runs = {}, .RealSize = 1ULL << 43U}))));
    const auto empty = file.OpenStream();
    EXPECT_EQ(empty->NextData(0), empty->Size());
    EXPECT_EQ(empty->NextHole(0), 0U);
    EXPECT_TRUE(empty->StreamDoubts().Has(Doubt::RunsMissing));
}

TEST_F(ExactFileTest, RunsThatTheVolumeDoesNotHold) {
    const ByteVector bytes = Noise(2, 1);
    const DataRun run = PutRun(bytes);
    ContentOutcome outcome = Take(Record().AddData({.Runs = {run, {2, 1U << 20U}}}));
    EXPECT_EQ(Out.Content, Join({bytes, Zeros(2)}));
    EXPECT_EQ(outcome.Missing.BytesBehindEnd, 8192U);
    EXPECT_FALSE(outcome.Whole());

    // Clusters that a list claims again and again are no more than the volume has.
    std::vector<DataRun> claims(80, DataRun{2000, 10});
    outcome = Take(Record().AddData({.Runs = claims, .RealSize = 8192}));
    EXPECT_LE(Out.Content.size(), 8192U);
    ExactFile file;
    ASSERT_TRUE(file.Open(Placed(Record().AddData({.Runs = claims}))));
    EXPECT_LE(file.OpenStream()->AllocatedBytes(), Volume.Image().size());

    EXPECT_TRUE(Doubts1(Take(Record().AddData({.Runs = {run}, .RealSize = 12000})), Doubt::RunsMissing));
    EXPECT_EQ(Out.Content.size(), 12000U);
    RecordBuilder broken = Record().AddData({.Runs = {run, {1, {}}}, .RealSize = 8192});
    broken.Poke8(broken.LastAttributeOffset() + 68, 0x99);
    EXPECT_TRUE(Doubts1(Take(broken), Doubt::RunsDamaged));
    EXPECT_EQ(Out.Content, bytes);
    EXPECT_TRUE(
        Take(Record().AddData({.Runs = {run}, .RealSize = 1ULL << 60U})).Doubtful.Has(Doubt::SizeImpossible));
    EXPECT_TRUE(Doubts1(Take(Record().AddData({.Runs = {run}, .Flags = 0x4000})), Doubt::Encrypted));
    EXPECT_EQ(Out.Content, bytes) << "as they lie";
}

TEST_F(ExactFileTest, UnitsOfCompression) {
    const ByteVector plain = Text(65536);
    ByteVector packed = CompressLznt1(plain);
    const std::size_t clusters = packed.size() / 4096 + 1;
    ASSERT_LT(clusters, 15U);
    packed.resize(clusters * 4096);
    const ByteVector raw = Noise(16, 3);
    const DataRun hole = {16 - clusters, {}};
    const auto take = [&](std::vector<DataRun> runs, std::uint64_t size, std::uint16_t flags = 1) {
        return Take(Record().AddData(
            {.Runs = std::move(runs), .Flags = flags, .CompressionExponent = 4, .RealSize = size}));
    };
    for (const std::uint32_t flags : {1U, 0x8001U}) {
        // A unit that begins in the middle of a run, one of nothing, and one cut to the size.
        const DataRun both = PutRun(Join({raw, packed}));
        EXPECT_TRUE(take({both, hole, {16, {}}, PutRun(packed), hole}, 260000, std::uint16_t(flags)).Whole());
        EXPECT_EQ(Out.Content, FirstOf(Join({raw, plain, Zeros(16), plain}), 260000));
    }
    ExactFile file; // of which the last was read
    ASSERT_TRUE(file.Open(Numbered(ItemOf(40, 0), 40)));
    const auto edges = [stream = file.OpenStream()](std::uint64_t cluster) {
        return std::pair(stream->NextData(cluster * 4096) / 4096, stream->NextHole(cluster * 4096) / 4096);
    };
    EXPECT_EQ(edges(1), std::pair(1UL, 32UL)) << "clusters that are saved are no hole";
    EXPECT_EQ(edges(33), std::pair(48UL, 33UL));
    EXPECT_EQ(edges(60), std::pair(60UL, 63UL));

    const ByteVector head = FirstOf(packed, 4096);
    const DataRun parts[] = {PutRun(head), PutRun(ByteVector(packed.begin() + 4096, packed.end()))};
    EXPECT_TRUE(take({parts[0], parts[1], hole}, 65536).Whole());
    EXPECT_EQ(Out.Content, plain) << "a unit in pieces";

    const ByteVector three = Join({Chunk(true, {0, 'a', 'b'}), Chunk(false, ByteVector(4096, 'c')),
                                   Chunk(true, {4, 'd', 'd', 0xFB, 0x0F})});
    EXPECT_TRUE(take({PutRun(three), {15, {}}}, 12288).Whole());
    ByteVector wanted = BytesOf("ab");
    wanted.resize(4096);
    AppendBytes(wanted, ByteVector(4096, 'c'));
    AppendBytes(wanted, ByteVector(4096, 'd'));
    wanted.resize(12288);
    EXPECT_EQ(FirstOf(Out.Content, 8192), FirstOf(wanted, 8192)) << "a short chunk is followed by zeros";
    EXPECT_EQ(Out.Content, wanted);

    EXPECT_TRUE(take({PutRun(three), {14, {}}}, 12289).Whole()) << "zeros follow, which need no chunk";
    for (const ByteVector& lost : {Join({three, Zeros(1)}), Join({Zeros(1), three})}) {
        EXPECT_TRUE(Doubts1(take({PutRun(lost), {13, {}}}, 12289), Doubt::DataDamaged)) << "more is stored";
    }
    const ByteVector chunks[] = {Chunk(true, {1, 0, 0}),
                                 Chunk(true, {2, 'a', 0, 0x10}),       // repeats what isn't there
                                 Chunk(true, {2, 'a', 0xFF, 0x0F, 0}), // longer than a chunk
                                 Chunk(true, {2, 'a', 0}),             // half a token
                                 ByteVector{0x01, 0x80, 0, 'a'}};      // no chunk's signature
    for (const ByteVector& chunk : chunks) {
        EXPECT_TRUE(Doubts1(take({PutRun(Join({chunk, Chunk(true, {0, 'z'})})), {15, {}}}, 4097),
                            Doubt::DataDamaged));
        EXPECT_EQ(Out.Content.back(), 'z') << "what follows comes back";
    }
    Plan->Rules.push_back({Volume.Geometry().SectorOf(*parts[1].Start)});
    const ContentOutcome unread = take({parts[0], parts[1], hole}, 65536);
    EXPECT_EQ(unread.Missing.SectorsUnread, 1U);
    EXPECT_EQ(FirstOf(Out.Content, 4096), FirstOf(plain, 4096));
    EXPECT_TRUE(take({parts[0], parts[1], hole}, 1).Whole()) << "no chunk of it is needed";
}

TEST_F(ExactFileTest, PiecesOfAnAttributeList) {
    const ByteVector bytes[] = {Noise(3, 1), Noise(2, 2), Noise(4, 3)};
    const auto extension = [&](std::uint32_t number, std::uint64_t firstVcn, const ByteVector& content) {
        return Volume.NewRecord(number)
            .SetBase(FileReference(40))
            .AddResident(0x40, ByteVector(8))
            .AddData({.Runs = {PutRun(content)}, .FirstVcn = firstVcn, .RealSize = 9 * 4096});
    };
    const auto place = [&] {
        Volume.PlaceRecord(extension(41, 0, bytes[0]));
        Volume.PlaceRecord(extension(42, 3, bytes[1]));
        Volume.PlaceRecord(extension(43, 5, bytes[2]).AddData(BytesOf("second"), u"other"));
    };
    place();
    // Out of order; the entries' ids say which attribute of the record is meant.
    const std::vector<ListEntry> list = {{kData, FileReference(43), 5, 1},
                                         {kData, FileReference(41), 0, 1},
                                         {kData, FileReference(42), 3, 1},
                                         {kData, FileReference(43), 0, 2, u"other"}};
    const ByteVector all = Join({bytes[0], bytes[1], bytes[2]});
    const auto resident = [&] { return Record().AddAttributeList(list); };
    EXPECT_TRUE(Take(resident()).Whole());
    EXPECT_EQ(Out.Content, all);
    EXPECT_TRUE(Take(Placed(resident()), u"other").Whole());
    EXPECT_EQ(Out.Content, BytesOf("second"));

    // A list in two runs, with an entry across their border and rubbish behind its size.
    ByteVector far;
    while (far.size() < 4096 - 16) {
        AppendBytes(far, EncodeAttributeList({{kBitmap, FileReference(40), 0, 9, u"$I30"}}));
    }
    AppendBytes(far, EncodeAttributeList(list));
    const std::uint64_t listBytes = far.size();
    AppendBytes(far, EncodeAttributeList({{kData, FileReference(60), 9, 1}}));
    const DataRun listRuns[] = {PutRun(FirstOf(far, 4096)), PutRun(Noise(1, 8)),
                                PutRun(ByteVector(far.begin() + 4096, far.end()))};
    EXPECT_TRUE(Take(Record().AddAttributeList(
                         NonResidentValue{.Runs = {listRuns[0], listRuns[2]}, .RealSize = listBytes}))
                    .Whole());
    EXPECT_EQ(Out.Content, all);

    const ByteVector holed = Join({bytes[0], Zeros(2), bytes[2]});
    const auto expectHole = [&](const RecordBuilder& piece, Doubt doubt, const char* what) {
        Volume.PlaceRecord(piece);
        EXPECT_TRUE(Doubts1(Take(resident()), doubt)) << what;
        EXPECT_EQ(Out.Content, holed) << what;
    };
    const RecordBuilder piece = extension(42, 3, bytes[1]);
    expectHole(RecordBuilder(piece).SetBase(FileReference(39)), Doubt::PieceForeign, "another file's");
    expectHole(RecordBuilder(piece).SetBase(FileReference(40, 2)), Doubt::PieceForeign, "a later file's");
    expectHole(RecordBuilder(piece).Poke16(16, 2), Doubt::PieceForeign, "a record used again");
    expectHole(extension(42, 2, bytes[1]), Doubt::PieceMissing, "another piece");
    expectHole(RecordBuilder(piece).Poke16(piece.LastAttributeOffset() + 14, 7), Doubt::PieceMissing,
               "another attribute");
    expectHole(RecordBuilder(piece).Poke8(0, 'X'), Doubt::PieceMissing, "a damaged record");
    Volume.PlaceRecord(RecordBuilder(piece).SetInUse(false).Poke16(16, 2));
    EXPECT_TRUE(Take(resident()).Whole()) << "a deleted one has counted up";

    // Deleted with all its records; and where nothing but the last piece is left.
    for (const std::uint32_t number : {41U, 43U}) {
        Volume.PlaceRecord(number, ByteVector(1024));
    }
    const ContentOutcome rest = Take(Placed(resident().SetInUse(false).Poke16(16, 2), 9 * 4096));
    EXPECT_TRUE(Doubts1(rest, Doubt::PieceMissing));
    EXPECT_EQ(Out.Content, Join({Zeros(3), bytes[1], Zeros(4)}));
    RecordBuilder torn = resident();
    torn.Poke16(torn.LastAttributeOffset() + 28, 0); // length of the first entry
    EXPECT_TRUE(Doubts1(Take(Placed(torn, 5000)), Doubt::ListDamaged));
    EXPECT_EQ(Out.Content, ByteVector(5000));
}

TEST_F(ExactFileTest, ClustersOfAnotherSize) {
    // Laid out in clusters of 2 KiB, the volume having 4: what a formatting has left.
    const ByteVector bytes = Noise(3, 4);
    const DataRun run = PutRun(bytes);
    RecordBuilder record = Record().AddData({.Runs = {{6, *run.Start * 2}}, .RealSize = 12000});
    record.Poke(record.LastAttributeOffset() + 40, 8, 12288);
    EXPECT_TRUE(Take(record).Whole());
    EXPECT_EQ(Out.Content, FirstOf(bytes, 12000));
    const auto doubtful = [&](std::uint64_t allocated, std::uint64_t start) {
        RecordBuilder other = Record().AddData({.Runs = {{6, start}}, .RealSize = 12000});
        other.Poke(other.LastAttributeOffset() + 40, 8, allocated);
        return Take(other).Doubtful.Has(Doubt::ClusterSize);
    };
    EXPECT_TRUE(doubtful(6 * 3000, 10)) << "no power of two";
    EXPECT_TRUE(doubtful(6 * 65536ULL, 200)) << "behind the volume's end";
    EXPECT_FALSE(doubtful(6 * 4096, 10));
    for (const std::uint32_t nonsense : {0U, 256U, 1U << 30U}) {
        Engine.VolumeParams.ClusterBytes = nonsense;
        EXPECT_TRUE(doubtful(6 * 4096, 10));
    }
}

TEST_F(ExactFileTest, NamesTimesAndStreams) {
    const FileTimes times = {FileTimeOfDay(2020, 1, 2), FileTimeOfDay(2021, 3, 4), 7,
                             FileTimeOfDay(2022, 5, 6)};
    const RecordBuilder record = Volume.NewRecord(40)
                                     .AddStandardInformation(times, 0x21)
                                     .AddFileName(NameIn(5, u"LONGNA~1", kNamespaceDos))
                                     .AddFileName(NameIn(5, u"long name"))
                                     .AddFileName(NameIn(30, u"link", 0))
                                     .AddData(BytesOf("named"), u"named")
                                     .AddData(BytesOf("own"));
    ExactFile file;
    ASSERT_TRUE(file.Open(Placed(record)));
    const std::vector<ExactName> names = file.Names();
    ASSERT_EQ(names.size(), 2U);
    EXPECT_EQ(names[0].Name, u"long name");
    EXPECT_EQ(names[1].Name, u"link");
    EXPECT_EQ(names[1].Parent, FileReference(30));
    const std::vector<ExactStreamInfo> streams = file.Streams();
    ASSERT_EQ(streams.size(), 2U);
    EXPECT_EQ(streams[0].Size, 3U);
    EXPECT_EQ(streams[1].Name, u"named");
    EXPECT_EQ(streams[1].Size, 5U);
    EXPECT_EQ(file.Times().Modified, times.Modified);
    EXPECT_EQ(file.Times().Accessed, times.Accessed);
    EXPECT_EQ(file.AttributeBits(), 0x21U);
    EXPECT_FALSE(file.Open(Numbered(Placed(record), 41))) << "another record stands there by now";
    EXPECT_EQ(Take(Numbered(ItemOf(40, 3), 41)).End, ContentEnd::RecordDamaged);
}

#ifdef THNTFS_WIMLIB

namespace {

struct SystemChunks {
    std::uint32_t Format;
    std::size_t ChunkBytes;
    std::size_t EntryBytes = 4;

    /// The stream of a file: the table, and the chunks behind it.
    [[nodiscard]] ByteVector Stream(ConstBytes plain) const {
        wimlib_compressor* compressor = nullptr;
        wimlib_create_compressor(Format == 1 ? WIMLIB_COMPRESSION_TYPE_LZX : WIMLIB_COMPRESSION_TYPE_XPRESS,
                                 ChunkBytes, 0, &compressor);
        std::vector<ByteVector> chunks;
        for (; !plain.empty(); plain = plain.subspan(std::min(plain.size(), ChunkBytes))) {
            const ConstBytes chunk = plain.first(std::min(plain.size(), ChunkBytes));
            ByteVector packed(chunk.size() - 1);
            packed.resize(
                wimlib_compress(chunk.data(), chunk.size(), packed.data(), packed.size(), compressor));
            chunks.push_back(packed.empty() ? ByteVector(chunk.begin(), chunk.end()) : packed);
        }
        wimlib_free_compressor(compressor);
        return WithTable(chunks);
    }

    [[nodiscard]] ByteVector WithTable(const std::vector<ByteVector>& chunks) const {
        ByteVector table((chunks.size() - 1) * EntryBytes);
        ByteVector content;
        for (std::size_t i = 0; i < chunks.size(); ++i) {
            if (i != 0) {
                PutNumber(table, (i - 1) * EntryBytes, static_cast<std::uint32_t>(content.size()));
            }
            AppendBytes(content, chunks[i]);
        }
        return Join({table, content});
    }

    [[nodiscard]] ByteVector Point() const {
        ByteVector point(28);
        for (const auto& [at, value] :
             {std::pair{0U, 0x80000017U}, {8U, 1U}, {12U, 2U}, {16U, 1U}, {20U, Format}}) {
            PutNumber(point, at, value);
        }
        return point;
    }
};

} // namespace

TEST_F(ExactFileTest, FilesThatTheSystemHasCompressed) {
    const auto place = [&](const SystemChunks& chunks, std::uint64_t size, const ByteVector& stored) {
        return Placed(
            Record()
                .AddData({.Runs = {{(size + 4095) / 4096, {}}}, .Flags = 0x8000, .RealSize = size})
                .AddData({.Runs = {PutRun(stored)}, .Name = u"WofCompressedData", .RealSize = stored.size()})
                .AddResident(0xC0, chunks.Point()));
    };
    for (const SystemChunks chunks : {SystemChunks{0, 4096}, {1, 32768}, {2, 8192}, {3, 16384}}) {
        SCOPED_TRACE(chunks.Format);
        const ByteVector plain = Join({Text(90000), PatternBytes(40000), Text(1000)});
        ByteVector stored = chunks.Stream(plain);
        ASSERT_LT(stored.size(), plain.size());
        EXPECT_TRUE(Take(place(chunks, plain.size(), stored)).Whole());
        EXPECT_TRUE(Out.Content == plain);
        stored[4 * (plain.size() / chunks.ChunkBytes) + 200] ^= 0xFF;
        EXPECT_TRUE(Doubts1(Take(place(chunks, plain.size(), stored)), Doubt::DataDamaged));
        EXPECT_TRUE(std::equal(plain.end() - 60000, plain.end(), Out.Content.end() - 60000));
    }

    // From 4 GiB on the table's entries are wider.
    constexpr std::uint64_t kSize = (4ULL << 30U) + 5;
    const SystemChunks wide = {1, 32768, 8};
    std::vector<ByteVector> chunks(kSize / 32768, ByteVector(2)); // of no sense, and not read
    chunks[7] = wide.Stream(ByteVector(32768, 'y'));
    chunks.push_back(BytesOf("tail!"));
    const ByteVector stored = wide.WithTable(chunks);
    ExactFile file;
    ASSERT_TRUE(file.Open(place(wide, kSize, stored)));
    const auto stream = file.OpenStream();
    MissingData missing;
    ByteVector buffer(10);
    EXPECT_EQ(stream->Read(7 * 32768 + 100, buffer, missing), 10U);
    EXPECT_EQ(buffer, ByteVector(10, 'y'));
    EXPECT_EQ(stream->Read(kSize - 5, buffer, missing), 5U);
    EXPECT_EQ(FirstOf(buffer, 5), BytesOf("tail!"));
    EXPECT_EQ(file.Streams().size(), 1U) << "the system's own isn't one of the file's";

    RecordBuilder lost = Record().AddData({.Runs = {}, .RealSize = 5000}).AddResident(0xC0, wide.Point());
    EXPECT_TRUE(Take(lost).Doubtful.Has(Doubt::DataDamaged)) << "the stream is gone";
    RecordBuilder archive = Record().AddData(ByteVector{}).AddResident(0xC0, wide.Point());
    archive.Poke8(archive.LastAttributeOffset() + 24 + 12, 1);
    EXPECT_TRUE(Doubts1(Take(archive), Doubt::Elsewhere));
}

#endif

} // namespace thntfs::test
