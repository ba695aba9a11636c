#include "scaninfo/ScanInfoNames.h"

#include "scaninfo/ScanInfo.h"
#include "scaninfo/ScanInfoFixture.h"

namespace thntfs::test {

namespace {

class ScanInfoNamesTest : public ScanInfoFixture {};

TEST_F(ScanInfoNamesTest, SuggestedNames) {
    std::tm day{};
    std::tie(day.tm_year, day.tm_mon, day.tm_mday, day.tm_wday) = std::tuple(99, 8, 9, 6);
    EXPECT_EQ(SuggestedTreeInfoName(day), "TH NTFS Scan Info# 09-Sept-1999.tht");
    EXPECT_EQ(SuggestedPartitionInfoName(day), "TH NTFS Scan Information # Sat, 09-Sept-1999");
}

TEST_F(ScanInfoNamesTest, PlaceOfAPath) {
    for (const auto& [given, target] : {std::pair{"/a/b.tht", "/a/b.tht"},
                                        {"/a/b", "/a/b.tht"},
                                        {"/c.THT", "/c.THT.tht"},
                                        {"/d.tht.bak", "/d.tht.bak.tht"},
                                        {"/tht", "/tht.tht"},
                                        {"/.tht", "/.tht"}}) {
        EXPECT_EQ(ScanInfoPlaceOf(given, ".tht").Target, target);
    }
    EXPECT_EQ(ScanInfoPlaceOf("/a/b/c", ".tht").Folder, "/a/b");
    EXPECT_EQ(ScanInfoPlaceOf("/a/b/c", ".tht").FileName, "c");
    EXPECT_EQ(ScanInfoPlaceOf("/c", ".tht").Folder, "");
}

TEST_F(ScanInfoNamesTest, DescriptionsThatFit) {
    EXPECT_TRUE(DescriptionFits("/" + std::string(254, 'x')));
    EXPECT_FALSE(DescriptionFits("/" + std::string(255, 'x')));
    EXPECT_FALSE(DescriptionFits(std::string(254, 'x'))); // stored from the root on
    std::string pairs = "/";
    for (int i = 0; i < 127; ++i) {
        pairs += "\xF0\x9F\x93\x81"; // two units each
    }
    EXPECT_TRUE(DescriptionFits(pairs));
    EXPECT_FALSE(DescriptionFits(pairs + "x"));
    EXPECT_FALSE(DescriptionFits("/not UTF-8 \xFF")); // couldn't be found again
}

TEST_F(ScanInfoNamesTest, FilesAreKnownByTheirFirstBytesAlone) {
    const auto expect = [this](ConstBytes bytes, ScanInfoKind kind, const std::string& medium) {
        WriteFileBytes(At("probed.img"), bytes);
        EXPECT_EQ(ProbeScanInfo(At("probed.img")).Kind, kind);
        EXPECT_EQ(ProbeScanInfo(At("probed.img")).Medium, medium);
    };
    expect(LayTreeInfo(laid_), ScanInfoKind::Tree, ImagePath());
    expect(LayPartitionInfo(laid_), ScanInfoKind::Partitions, ImagePath());
    expect(ByteVector{0, 0, 1, 1}, ScanInfoKind::Tree, "");
    expect(ByteVector{0, 0, 1}, ScanInfoKind::None, "");
    expect(ByteVector(1024), ScanInfoKind::None, "");
    EXPECT_EQ(ProbeScanInfo(scratch_.Path()).Kind, ScanInfoKind::None);
    EXPECT_EQ(ProbeScanInfo(At("missing")).Kind, ScanInfoKind::None);
}

} // namespace

} // namespace thntfs::test
