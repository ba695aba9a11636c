#include "platform/system/Text.h"

#include "platform/system/Dates.h"
#include "platform/system/ErrorCodes.h"
#include "platform/system/RemainingTime.h"
#include "platform/system/SizeText.h"
#include "platform/system/posix/ErrnoMap.h"

#include <cerrno>
#include <ctime>
#include <gtest/gtest.h>

namespace thntfs::test {

TEST(TextTest, NarrowAndWideMeetAndWhatIsInvalidIsReplaced) {
    const std::u16string wide = u"aä€\U0001F600\uFFFF\x7F";
    const std::string narrow = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBF\x7F";
    EXPECT_EQ(NarrowText(wide), narrow);
    EXPECT_EQ(WideText(narrow), wide);
    std::string out = "x";
    AppendNarrowText(out, std::u16string_view(u"\0y", 2));
    EXPECT_EQ(out, std::string("x\0y", 3));

    const std::string replaced = "\xEF\xBF\xBD";
    const std::u16string high(1, 0xD83D);
    const std::u16string low(1, 0xDE00);
    EXPECT_EQ(NarrowText(high), replaced);
    EXPECT_EQ(NarrowText(low + high + u"a"), replaced + replaced + "a");
    EXPECT_EQ(NarrowText(high + high + low), replaced + "\xF0\x9F\x98\x80");

    EXPECT_EQ(WideText("a\xFF-b"), u"a\uFFFD-b");
    EXPECT_EQ(WideText("\xE2\x82-b"), u"\uFFFD-b") << "cut short by another character";
    EXPECT_EQ(WideText("b\xF0\x9F\x98"), u"b\uFFFD") << "cut short by the end";
    EXPECT_EQ(WideText("\xC0\xAF"), u"\uFFFD\uFFFD") << "overlong slash";
    EXPECT_EQ(WideText("\xE0\x80\xAF"), u"\uFFFD\uFFFD\uFFFD") << "overlong slash";
    EXPECT_EQ(WideText("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD") << "a surrogate";
    EXPECT_EQ(WideText("\xF4\x90\x80\x80"), u"\uFFFD\uFFFD\uFFFD\uFFFD") << "past the last character";
}

TEST(SizeTextTest, UnitsBeginWhereTheyAreTold) {
    EXPECT_EQ(SizeText(1048575), "1023.999 KB");
    EXPECT_EQ(SizeText(1048576), "  1.000 MB");
    EXPECT_EQ(ByteText(1) + ByteText(1023) + ByteText(1024), "1 byte1023 bytes1.0 KB");
    EXPECT_EQ(DiskSizeText((1U << 30U) - 1048576) + DiskSizeText(1U << 30U), "1023.00 MB1.00 GB");
    EXPECT_EQ(StretchSizeText(1024) + StretchSizeText(1152), "1024 bytes1.13 KB");
    EXPECT_EQ(StretchSizeText(1048576) + StretchSizeText(1073741824), "1024.00 KB1024.00 MB");
}

TEST(SizeTextTest, GuessesOfTimeAreRoundedUp) {
    for (const auto& [seconds, text] : {std::pair{0.0, "5 s"},
                                        {51, "55 s"},
                                        {56, "1 min"},
                                        {61, "2 min"},
                                        {3541, "1 h"},
                                        {3601, "1 h 10 min"},
                                        {7000, "2 h"},
                                        {35400, "9 h 50 min"},
                                        {35401, "10 h"},
                                        {36001, "11 h"},
                                        {1e30, "100000 h"}}) {
        EXPECT_EQ(RoughTimeText(seconds), text) << seconds;
    }
}

TEST(RemainingTimeTest, ThePaceOfLateCounts) {
    RemainingTime remaining;
    std::string left; // at each second, "?" where it isn't known
    const auto look = [&](double now, double done, double total) {
        remaining.Look(now, done, total);
        const auto seconds = remaining.Left(now);
        left += (seconds ? std::to_string(static_cast<int>(*seconds)) : "?") + " ";
    };
    for (const double now : {100.0, 101.0, 102.0, 103.0, 103.9, 104.0}) {
        look(now, (now - 100) * 10, 1000);
    }
    EXPECT_EQ(left, "? ? ? 97 97 96 ");
    left.clear();
    for (int second = 1; second <= 31; ++second) { // a bad stretch
        look(104 + second, 40 + second, 1000);
    }
    EXPECT_TRUE(left.starts_with("116 ") && left.ends_with(" 930 929 ")) << left;
    EXPECT_EQ(remaining.Pace(135), 1);
    EXPECT_FALSE(remaining.Left(166)) << "nobody has looked for long";
    left.clear();
    for (int second = 136; second <= 166; ++second) {
        look(second, 71, 1000); // nothing moves
    }
    EXPECT_TRUE(left.ends_with(" ? ")) << left;
    EXPECT_EQ(remaining.Pace(166), 0);
    left.clear();
    look(167, 0, 500); // the next part
    look(169, 2, 500);
    look(170, 3, 500);
    look(171, 2, 500); // less than before
    EXPECT_EQ(left, "? ? 497 ? ");
}

TEST(DatesTest, AgreesWithTheCalendarOnEveryDay) {
    constexpr std::int64_t kDay = 86'400;
    const auto dateAt = [](std::int64_t unixTime, std::int64_t ticks) {
        return DosDateOfFileTime(
            static_cast<std::uint64_t>((unixTime + 11'644'473'600) * 10'000'000 + ticks));
    };
    constexpr std::int64_t kFirst = 315'532'800; // 1980-01-01
    constexpr std::int64_t kEnd = 4'354'819'200; // 2108-01-01
    for (std::int64_t day = kFirst; day < kEnd; day += kDay) {
        const std::time_t time = day;
        std::tm civil{};
        ASSERT_NE(::gmtime_r(&time, &civil), nullptr);
        const int expected = (civil.tm_year - 80) << 9 | (civil.tm_mon + 1) << 5 | civil.tm_mday;
        ASSERT_EQ(dateAt(day, 0), expected) << "unix time " << day;
        ASSERT_EQ(dateAt(day + kDay, -1), expected) << "unix time " << day;
        std::array<char, 16> text{};
        ASSERT_NE(std::strftime(text.data(), text.size(), "%Y-%m-%d", &civil), 0U);
        ASSERT_EQ(IsoDate(static_cast<std::uint16_t>(expected)), text.data());
    }
    EXPECT_EQ(dateAt(kFirst, -1), 0);
    EXPECT_EQ(dateAt(kEnd, 0), 0);
    EXPECT_EQ(DosDateOfFileTime(0), 0);
    EXPECT_EQ(DosDateOfFileTime(~0ULL), 0);

    using Ymd = std::array<int, 3>; // no dates of the calendar
    for (const auto& [year, month, day] : std::initializer_list<Ymd>{
             {1980, 0, 0}, {2001, 2, 29}, {2100, 2, 29}, {2004, 4, 31}, {2004, 13, 1}, {2004, 7, 0}}) {
        EXPECT_EQ(IsoDate(static_cast<std::uint16_t>((year - 1980) << 9 | month << 5 | day)), "") << year;
    }
}

TEST(DatesTest, LogTimeHasTheLayoutOfTheLog) {
    std::tm time{};
    ASSERT_NE(::strptime("2026-11-19 06:01:28", "%F %T", &time), nullptr);
    EXPECT_EQ(LogTimeText(time), "Thu Nov 19 2026 06:01:28");
    time.tm_mday = 5;
    EXPECT_EQ(LogTimeText(time), "Thu Nov  5 2026 06:01:28");
    EXPECT_EQ(LogTimeNow().size(), 24U);
}

TEST(ErrorCodesTest, EveryFailureHasACodeAndASentence) {
    EXPECT_EQ(SystemErrorText(kErrorCrc), "Data error (cyclic redundancy check).");
    EXPECT_EQ(SystemErrorText(4711), "Unknown error 4711.");
    for (int number = 1; number < 200; ++number) {
        for (const ErrorCode code : {MediumErrorOfErrno(number), FileErrorOfErrno(number)}) {
            EXPECT_NE(code, kErrorNone) << number;
            EXPECT_EQ(SystemErrorText(code).find("Unknown"), std::string::npos) << number;
        }
    }
    EXPECT_EQ(MediumErrorOfErrno(EIO), kErrorCrc) << "one failure means another thing on a medium";
    EXPECT_EQ(FileErrorOfErrno(EIO), kErrorIoDevice);
    for (const int number : {ETIMEDOUT, EBUSY, EAGAIN, EREMOTEIO}) {
        EXPECT_EQ(MediumErrorOfErrno(number), kErrorIoDevice) << "it may pass: " << number;
    }
    EXPECT_EQ(MediumErrorOfErrno(ENXIO), kErrorNotReady);
    EXPECT_EQ(MediumErrorOfErrno(EACCES), kErrorAccessDenied);
    EXPECT_EQ(FileErrorOfErrno(ENOSPC), kErrorDiskFull);
    EXPECT_EQ(FileErrorOfErrno(EROFS), kErrorWriteProtect);
}

} // namespace thntfs::test
