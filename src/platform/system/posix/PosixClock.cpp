#include "platform/system/Dates.h"

#include <ctime>

namespace thntfs {

std::string LogTimeNow() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    return LogTimeText(local);
}

} // namespace thntfs
