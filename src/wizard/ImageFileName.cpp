#include "wizard/ImageFileName.h"

#include <array>

namespace thntfs {

namespace {

constexpr std::array<const char*, 7> kDays = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
constexpr std::array<const char*, 12> kMonths = {"Jan", "Feb", "Mar",  "Apr", "May", "Jun",
                                                 "Jul", "Aug", "Sept", "Oct", "Nov", "Dec"};

const char* Nth(const auto& names, int number) { return names.at(static_cast<std::size_t>(number - 1)); }

} // namespace

QString ImageFileName(const QDate& day) {
    return QStringLiteral("Tarnholt Volume Salvage (NTFS) Image # %1, %2-%3-%4")
        .arg(QLatin1String(Nth(kDays, day.dayOfWeek())))
        .arg(day.day(), 2, 10, QLatin1Char('0'))
        .arg(QLatin1String(Nth(kMonths, day.month())))
        .arg(day.year());
}

} // namespace thntfs
