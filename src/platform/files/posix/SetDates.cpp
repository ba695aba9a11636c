#include "platform/files/posix/SetDates.h"

#include "platform/system/Dates.h"

#include <array>
#include <fcntl.h>
#include <sys/stat.h>

namespace thntfs {

namespace {

constexpr std::uint64_t kUnitsPerSecond = 10'000'000;
constexpr std::int64_t kSecondsTo1970 = 11'644'473'600;

// A time in the upper half of its range is no time that a driver writes.
timespec TimeOf(std::uint64_t fileTime) {
    timespec time{0, UTIME_OMIT};
    if (fileTime != 0 && fileTime >> 63U == 0) {
        time.tv_sec = static_cast<std::int64_t>(fileTime / kUnitsPerSecond) - kSecondsTo1970;
        time.tv_nsec = static_cast<long>(fileTime % kUnitsPerSecond * 100);
    }
    return time;
}

} // namespace

void SetDatesOf(int descriptor, const FileDates& dates) {
    const std::array<timespec, 2> times = {TimeOf(dates.Accessed), TimeOf(dates.Modified)};
    (void)::futimens(descriptor, times.data());
}

} // namespace thntfs
