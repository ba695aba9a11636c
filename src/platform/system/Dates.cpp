#include "platform/system/Dates.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

namespace thntfs {

namespace {

constexpr std::uint64_t kTicksOfDay = 24ULL * 60 * 60 * 10'000'000;
constexpr std::uint32_t kFirstYear = 1980;

/// Days from 1601-01-01 to the first of January of a year from 1601 on.
constexpr std::uint32_t DaysBeforeYear(std::uint32_t year) {
    const std::uint32_t years = year - 1601;
    return years * 365 + years / 4 - years / 100 + years / 400;
}

constexpr std::uint32_t kFirstDay = DaysBeforeYear(kFirstYear);
constexpr std::uint32_t kEndDay = DaysBeforeYear(2108);

/// Days are counted from a first of March, where a leap day ends its year.
constexpr std::uint32_t kMarchYear = 1976;
constexpr std::uint32_t kFirstMarchDay = DaysBeforeYear(kMarchYear) + 60;
constexpr std::uint32_t kMarch2100 = DaysBeforeYear(2100) + 59;
constexpr std::uint32_t kDaysOfFourYears = 1461;

bool IsLeapYear(unsigned year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

unsigned DaysOfMonth(unsigned year, unsigned month) {
    static constexpr std::array<std::uint8_t, 12> kDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

void PutTwoDigits(std::string& text, std::size_t place, unsigned number) {
    text[place] = static_cast<char>('0' + number / 10);
    text[place + 1] = static_cast<char>('0' + number % 10);
}

} // namespace

std::uint64_t UnixSecondsOfFileTime(std::uint64_t fileTime) {
    constexpr std::uint64_t kTicksOfSecond = 10'000'000;
    constexpr std::uint64_t kSecondsBefore1970 = 24ULL * 60 * 60 * DaysBeforeYear(1970);
    return std::max(fileTime / kTicksOfSecond, kSecondsBefore1970) - kSecondsBefore1970;
}

std::uint16_t DosDateOfFileTime(std::uint64_t fileTime) {
    const std::uint64_t days = fileTime / kTicksOfDay;
    if (days < kFirstDay || days >= kEndDay) {
        return 0;
    }
    // With years that begin in March the months' lengths follow one linear rule and no table is needed. Every
    // fourth year counts as a leap year; the only one that is none is stepped over.
    const std::uint32_t marchDays =
        static_cast<std::uint32_t>(days) - kFirstMarchDay + (days >= kMarch2100 ? 1 : 0);
    const std::uint32_t years = (4 * marchDays + 3) / kDaysOfFourYears;
    const std::uint32_t dayOfYear = marchDays - years * kDaysOfFourYears / 4;
    const std::uint32_t marchMonth = (5 * dayOfYear + 2) / 153;
    const std::uint32_t day = dayOfYear - (153 * marchMonth + 2) / 5 + 1;
    const std::uint32_t month = marchMonth < 10 ? marchMonth + 3 : marchMonth - 9;
    const std::uint32_t year = kMarchYear + years + (month <= 2 ? 1 : 0);
    return static_cast<std::uint16_t>((year - kFirstYear) << 9U | month << 5U | day);
}

std::string IsoDate(std::uint16_t dosDate) {
    const unsigned day = dosDate & 31U;
    const unsigned month = (dosDate >> 5U) & 15U;
    const unsigned year = kFirstYear + (static_cast<unsigned>(dosDate) >> 9U);
    if (month < 1 || month > 12 || day < 1 || day > DaysOfMonth(year, month)) {
        return {};
    }
    std::string text = "....-..-..";
    PutTwoDigits(text, 0, year / 100);
    PutTwoDigits(text, 2, year % 100);
    PutTwoDigits(text, 5, month);
    PutTwoDigits(text, 8, day);
    return text;
}

// All that can be written is what is read back.
std::uint16_t DosDateOfIso(std::string_view text) {
    constexpr std::size_t kDigits = 4;
    unsigned year = 0;
    unsigned month = 0;
    unsigned day = 0;
    const auto read = [text](std::size_t from, std::size_t count, unsigned& number) {
        const std::string_view part = text.substr(std::min(from, text.size()), count);
        return std::from_chars(part.data(), part.data() + part.size(), number).ptr == part.data() + count;
    };
    if (!read(0, kDigits, year) || !read(5, 2, month) || !read(8, 2, day) || year < kFirstYear) {
        return 0;
    }
    const auto date = static_cast<std::uint16_t>((year - kFirstYear) << 9U | month << 5U | day);
    return IsoDate(date) == text ? date : std::uint16_t{0};
}

std::string LogTimeText(const std::tm& local) {
    // Fixed English names: strftime would follow the locale.
    static constexpr std::array<const char*, 7> kDays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr std::array<const char*, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    std::array<char, 64> text{};
    const int length =
        std::snprintf(text.data(), text.size(), "%s %s %2d %d %02d:%02d:%02d",
                      kDays[static_cast<std::size_t>(local.tm_wday) % kDays.size()],
                      kMonths[static_cast<std::size_t>(local.tm_mon) % kMonths.size()], local.tm_mday,
                      local.tm_year + 1900, local.tm_hour, local.tm_min, local.tm_sec);
    return {text.data(), static_cast<std::size_t>(length)};
}

} // namespace thntfs
