#include "scaninfo/ScanInfoNames.h"

#include "scaninfo/ScanInfo.h"
#include "scaninfo/ScanInfoFixture.h"

namespace thntfs::test {

namespace {

std::tm Day(int year, int month, int day, int weekday) {
    std::tm local{};
    local.tm_year = year - 1900;
    local.tm_mon = month - 1;
    local.tm_mday = day;
    local.tm_wday = weekday;
    return local;
}

TEST(ScanInfoNamesTest, SuggestedNamesOfEveryMonthAndWeekday) {
    const char* const months[] = {"Jan", "Feb", "Mar",  "Apr", "May", "Jun",
                                  "Jul", "Aug", "Sept", "Oct", "Nov", "Dec"};
    for (int month = 1; month <= 12; ++month) {
        const std::string text = months[month - 1];
        EXPECT_EQ(SuggestedTreeInfoName(Day(2026, month, 9, 0)),
                  "TH NTFS Scan Info# 09-" + text + "-2026.tht");
    }
    const char* const weekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    for (int weekday = 0; weekday < 7; ++weekday) {
        const std::string text = weekdays[weekday];
        EXPECT_EQ(SuggestedPartitionInfoName(Day(1999, 9, 30, weekday)),
                  "TH NTFS Scan Information # " + text + ", 30-Sept-1999");
    }
}

TEST(ScanInfoNamesTest, PlaceOfAPath) {
    const ScanInfoPlace plain = ScanInfoPlaceOf("/a/b/c.d", ".tht");
    EXPECT_EQ(plain.Folder, "/a/b");
    EXPECT_EQ(plain.FileName, "c.d");
    EXPECT_EQ(plain.Target, "/a/b/c.d.tht");
    const ScanInfoPlace root = ScanInfoPlaceOf("/c.tht", ".tht");
    EXPECT_EQ(root.Folder, "");
    EXPECT_EQ(root.Target, "/c.tht");
}

TEST(ScanInfoNamesTest, DescriptionsThatFit) {
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

class ProbeTest : public ScanInfoFixture {};

TEST_F(ProbeTest, FilesAreKnownByTheirFirstBytesAlone) {
    const auto kindOf = [this](ConstBytes bytes) {
        WriteFileBytes(At("probed.img"), bytes);
        return ProbeScanInfo(At("probed.img")).Kind;
    };
    EXPECT_EQ(kindOf(LayTreeInfo(laid_)), ScanInfoKind::Tree);
    EXPECT_EQ(ProbeScanInfo(At("probed.img")).Medium, ImagePath());
    EXPECT_EQ(kindOf(LayPartitionInfo(laid_)), ScanInfoKind::Partitions);
    EXPECT_EQ(ProbeScanInfo(At("probed.img")).Medium, ImagePath());
    EXPECT_EQ(kindOf(ByteVector{0, 0, 1, 1}), ScanInfoKind::Tree);
    EXPECT_EQ(ProbeScanInfo(At("probed.img")).Medium, "");
    EXPECT_EQ(kindOf(ByteVector{0, 0, 1}), ScanInfoKind::None);
    EXPECT_EQ(kindOf(ByteVector(1024)), ScanInfoKind::None);
    EXPECT_EQ(ProbeScanInfo(scratch_.Path()).Kind, ScanInfoKind::None);
    EXPECT_EQ(ProbeScanInfo(At("missing")).Kind, ScanInfoKind::None);
}

} // namespace

} // namespace thntfs::test
