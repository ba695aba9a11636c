#include "preview/HexText.h"

#include "support/VolumeBuilderBytes.h"

#include <gtest/gtest.h>

namespace thntfs::test {

TEST(HexTextTest, Lines) {
    const std::string sixteen = "    41 42 43 44 45 46 47 48 - 49 4A 4B 4C 4D 4E 4F 50    ABCDEFGHIJKLMNOP";
    const auto line = [](const ByteVector& bytes) { return HexLineText(bytes).toStdString(); };
    EXPECT_EQ(line(BytesOf("ABCDEFGHIJKLMNOP")), sixteen);
    EXPECT_EQ(line(BytesOf("a Z\x7F")), "    61 20 5A 7F" + std::string(42, ' ') + "a.Z.");
    EXPECT_EQ(line({0, 9, 0xE4, 0xFF, '0', '9', '@', '['}),
              "    00 09 E4 FF 30 39 40 5B" + std::string(30, ' ') + "....09..");
    EXPECT_EQ(line({1, 2, 3, 4, 5, 6, 7, 8, 9}),
              "    01 02 03 04 05 06 07 08 - 09" + std::string(25, ' ') + ".........");
    EXPECT_EQ(HexOffsetText(0).toStdString(), "00000000");
    EXPECT_EQ(HexOffsetText(0x1DFFFFF).toStdString(), "1DFFFFF0");
    EXPECT_EQ(HexOffsetText(0x12345678).toStdString(), "123456780");
}

TEST(HexTextTest, Copies) {
    EXPECT_EQ(HexCopyText(ByteVector{0, 0xAB, 0x7F}).toStdString(), "00 AB 7F");
    EXPECT_EQ(PlainCopyText(BytesOf(std::string("a b\r\n\t,\0\x1B\xFF\xC3\xA4", 12))).toStdString(),
              "a b\r\n\t,...\xC3\xA4");
}

TEST(HexTextTest, Searches) {
    const ByteVector bytes = BytesOf(std::string("xABCabc a\0B\0c\0 \xC3\xA4", 18));
    const auto find = [&](const std::optional<HexPattern>& pattern, std::uint64_t from) {
        const auto match = pattern ? FindPattern(bytes, *pattern, from) : std::nullopt;
        return match ? std::pair(match->Offset, match->Length)
                     : std::pair<std::uint64_t, std::uint64_t>{99, 0};
    };
    using Place = std::pair<std::uint64_t, std::uint64_t>;
    EXPECT_EQ(find(TextPattern(QStringLiteral("abc")), 0), (Place{1, 3}));
    EXPECT_EQ(find(TextPattern(QStringLiteral("aBC")), 2), (Place{4, 3}));
    EXPECT_EQ(find(TextPattern(QStringLiteral("ABC")), 5), (Place{8, 6})) << "UTF-16";
    EXPECT_EQ(find(TextPattern(QStringLiteral("c")), 12), (Place{12, 2}));
    EXPECT_EQ(find(TextPattern(QStringLiteral("ä")), 0), (Place{15, 2}));
    EXPECT_EQ(find(TextPattern(QStringLiteral("abcd")), 0), (Place{99, 0}));
    EXPECT_EQ(find(BytesPattern(QStringLiteral("61 62")), 0), (Place{4, 2})) << "bytes are as they are";
    EXPECT_EQ(find(BytesPattern(QStringLiteral("c3A4")), 16), (Place{99, 0}));
    for (const char* wrong : {"", "6", "616", "6g", "zz", "61,62"}) {
        EXPECT_FALSE(BytesPattern(QLatin1String(wrong))) << wrong;
    }
}

} // namespace thntfs::test
