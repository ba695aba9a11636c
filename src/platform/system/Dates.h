#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

namespace thntfs {

/// DOS date of a file time (100 ns units since 1601-01-01 UTC): day in bits 0-4, month in bits 5-8, year less
/// 1980 in bits 9-15. A time outside 1980 to 2107 gives 0, which means no date.
std::uint16_t DosDateOfFileTime(std::uint64_t fileTime);

/// Seconds since 1970-01-01 UTC of a file time, a fraction dropped; 0 for times before.
std::uint64_t UnixSecondsOfFileTime(std::uint64_t fileTime);

/// When the content of a file or folder was changed and last read, each in 100 ns units since 1601-01-01 UTC;
/// 0 where it isn't known.
struct FileDates {
    std::uint64_t Modified = 0;
    std::uint64_t Accessed = 0;
};

/// "YYYY-MM-DD" of a DOS date, empty where it is 0 or no date of the calendar.
std::string IsoDate(std::uint16_t dosDate);

/// DOS date of "YYYY-MM-DD", 0 where that is no date of the calendar from 1980 to 2107.
std::uint16_t DosDateOfIso(std::string_view text);

/// A time as "Thu Nov 19 2026 06:21:28": the layout of the process log's time column. A day below 10 has a
/// second space before it, as in "Mon Nov  9".
std::string LogTimeText(const std::tm& local);

/// The present local time in that layout.
std::string LogTimeNow();

} // namespace thntfs
