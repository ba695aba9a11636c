#include "content/Lznt1.h"

#include "content/ContentFixture.h"
#include "content/Lznt1Chunks.h"

namespace thntfs::test {

namespace {

ByteVector Decompress(const ByteVector& source, std::size_t room = 65536) {
    ByteVector target(room);
    target.resize(DecompressLznt1(source, target));
    return target;
}

/// Bytes that come again and again.
ByteVector Repeated(std::size_t length) {
    ByteVector bytes = PatternBytes(length);
    for (std::size_t i = 100; i < length; ++i) {
        bytes[i] = bytes[i % 100];
    }
    return bytes;
}

} // namespace

TEST(Lznt1Test, ChunkChains) {
    const ByteVector ten(10, 0x55);
    struct Case {
        const char* Name;
        ByteVector Bytes;
        bool Expected;
    };
    const Case cases[] = {
        {"nothing", {}, false},
        {"one byte", {9}, false},
        {"one chunk", Chunk(true, ten), true},
        {"two chunks", Join({Chunk(true, ten), Chunk(false, ten)}), true},
        {"a byte too few", {9, 0xB0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, false},
        {"a header alone", {9, 0xB0}, false},
        {"a zero header", {0, 0}, true},
        {"a closing header and anything", Join({Chunk(true, ten), {0, 0, 1, 2, 3}}), true},
        {"length field 0 with other bits", Join({{0, 0xB0}, ten}), true},
        {"length field 3 ends", Join({Chunk(true, ten), {3, 0xB0}}), true},
        {"length field 3 cut", Join({Chunk(true, ten), {3}}), false},
        {"length field 3 first", {3, 0, 9}, true},
        {"garbage behind", Join({Chunk(true, ten), {0xFF, 0x0F, 1}}), false},
        {"one odd byte behind", Join({Chunk(true, ten), {0}}), false},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(IsChunkChain(test.Bytes), test.Expected) << test.Name;
    }
}

TEST(Lznt1Test, StreamsByHand) {
    const ByteVector abc = {0, 'a', 'b', 'c', 'd', 'e'};
    struct Case {
        const char* Name;
        ByteVector Source;
        std::string Expected;
        std::size_t Room = 4096;
    };
    const Case cases[] = {
        {"literals", Chunk(true, abc), "abcde"},
        {"a plain chunk", Chunk(false, abc), std::string("\0abcde", 6)},
        {"a short chunk isn't padded", Join({Chunk(true, abc), Chunk(true, {0, 'x', 'y'})}), "abcdexy"},
        {"an overlapping match", Chunk(true, {2, 'a', 4, 0, 'b'}), "aaaaaaaab"},
        {"a match two back", Chunk(true, {4, 'a', 'b', 2, 0x10}), "abababa"},
        {"a distance beyond the chunk", Chunk(true, {4, 'a', 'b', 1, 0x70}), "ababab"},
        {"a match at the start", Chunk(true, {1, 0, 0, 'z', 'y'}), std::string("\0\0\0zy", 5)},
        {"a token behind 16 bytes",
         Chunk(true, Join({{0}, BytesOf("abcdefgh"), {0}, BytesOf("ijklmnop"), {1, 0, 8}})),
         "abcdefghijklmnop" + std::string(2051, 'p')},
        {"matches stay within their chunk", Join({Chunk(true, abc), Chunk(true, {2, 'x', 0, 0x50, 'q'})}),
         "abcdexxxxq"},
        {"length field 0 ends", Join({Chunk(true, abc), {0, 0xB0}, Chunk(true, abc)}), "abcde"},
        {"length field 3 ends", Join({Chunk(true, abc), Chunk(true, {0, 1, 2, 3}), Chunk(true, abc)}),
         "abcde"},
        {"nothing", {}, ""},
        {"a literal too many", Chunk(true, abc), "abc", 3},
        {"a match too long", Chunk(true, {2, 'a', 4, 0, 'b'}), "aaaa", 4},
        {"a plain chunk that fits", Join({Chunk(true, abc), Chunk(false, {'x', 'y', 'z'})}), "abcdexyz", 8},
        {"a plain chunk that doesn't", Join({Chunk(true, abc), Chunk(false, {'x', 'y', 'z'})}),
         std::string("abcde\0\0", 7), 7},
        {"nothing behind a full target", Join({Chunk(true, abc), Chunk(false, {'x', 'y'})}), "abcde", 5},
        {"a token across the chunk's end takes a header along",
         Join({Chunk(true, {2, 'a', 1}), Chunk(false, abc)}),
         std::string(1285, 'a') + std::string("\0abcde", 6)},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(Decompress(test.Source, test.Room), BytesOf(test.Expected)) << test.Name;
    }
}

TEST(Lznt1Test, RoundTrips) {
    for (const std::size_t length : {3U, 100U, 1000U, 4095U, 4096U, 4099U, 40000U, 65536U}) {
        for (const ByteVector& plain :
             {Repeated(length), PatternBytes(length), Join({Repeated(length), PatternBytes(length)})}) {
            const ByteVector packed = CompressLznt1(plain);
            EXPECT_EQ(Decompress(packed, plain.size()), plain) << length;
            EXPECT_TRUE(IsChunkChain(packed));
        }
    }
}

} // namespace thntfs::test
