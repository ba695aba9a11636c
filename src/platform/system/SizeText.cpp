#include "platform/system/SizeText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace thntfs {

namespace {

struct Unit {
    std::uint64_t Bytes;
    const char* Name;
};

constexpr std::array<Unit, 3> kUnits = {{{1073741824, "GB"}, {1048576, "MB"}, {1024, "KB"}}};
constexpr std::size_t kNumberWidth = 7;

/// The largest unit that is no more than the size, or KB.
const Unit& UnitOf(std::uint64_t bytes) {
    const auto* fitting =
        std::find_if(kUnits.begin(), kUnits.end(), [bytes](const Unit& unit) { return bytes >= unit.Bytes; });
    return fitting == kUnits.end() ? kUnits.back() : *fitting;
}

// With a point before the decimals, whatever the user's language writes there.
std::string DecimalText(double number, int decimals) {
    std::array<char, 400> text{}; // the largest number has 309 digits before the point
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed, decimals);
    return {text.data(), end.ptr};
}

std::string UnitText(std::uint64_t bytes, const Unit& unit, int decimals) {
    return DecimalText(static_cast<double>(bytes) / static_cast<double>(unit.Bytes), decimals);
}

} // namespace

std::string SizeText(std::uint64_t bytes) {
    const Unit& unit = UnitOf(bytes);
    const std::string number = UnitText(bytes, unit, 3);
    const std::size_t blanks = kNumberWidth - std::min(kNumberWidth, number.size());
    return std::string(blanks, ' ') + number + ' ' + unit.Name;
}

std::string ByteText(std::uint64_t bytes) {
    const Unit& unit = UnitOf(bytes);
    if (bytes < unit.Bytes) {
        return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
    }
    return UnitText(bytes, unit, 1) + ' ' + unit.Name;
}

// In the precision of a float.
std::string DiskSizeText(std::uint64_t bytes) {
    const auto count = static_cast<float>(static_cast<std::int64_t>(bytes));
    const float gigabytes = count * 0x1p-30F;
    return gigabytes >= 1 ? DecimalText(static_cast<double>(gigabytes), 2) + " GB"
                          : DecimalText(static_cast<double>(count * 0x1p-20F), 2) + " MB";
}

// What lies half-way between two numbers becomes the larger one.
std::string StretchSizeText(std::uint64_t bytes) {
    const Unit& unit = UnitOf(bytes - std::min<std::uint64_t>(bytes, 1));
    if (bytes <= unit.Bytes) {
        return std::to_string(bytes) + " bytes";
    }
    const std::uint64_t hundredths =
        bytes / unit.Bytes * 100 + (bytes % unit.Bytes * 100 + unit.Bytes / 2) / unit.Bytes;
    return std::to_string(hundredths / 100) + '.' + std::to_string(hundredths / 10 % 10) +
           std::to_string(hundredths % 10) + ' ' + unit.Name;
}

std::string DurationText(double seconds) {
    const auto whole = static_cast<unsigned>(std::min(seconds, 359999.0));
    std::array<char, 32> text{};
    if (whole >= 3600) {
        std::snprintf(text.data(), text.size(), "%u:%02u:%02u", whole / 3600, whole / 60 % 60, whole % 60);
    } else {
        std::snprintf(text.data(), text.size(), "%u:%02u", whole / 60, whole % 60);
    }
    return text.data();
}

std::string RoughTimeText(double seconds) {
    const auto inUnits = [seconds = std::min(seconds, 359999999.0)](unsigned unit) { // at least one
        return static_cast<unsigned>(std::max(1.0, std::ceil(seconds / unit)));
    };
    const unsigned minutes = inUnits(60);
    const unsigned tenMinutes = inUnits(600);
    if (inUnits(5) < 12) {
        return std::to_string(5 * inUnits(5)) + " s";
    }
    if (minutes < 60) {
        return std::to_string(minutes) + " min";
    }
    if (tenMinutes >= 60) {
        return std::to_string(inUnits(3600)) + " h";
    }
    const std::string hours = std::to_string(tenMinutes / 6) + " h";
    return tenMinutes % 6 == 0 ? hours : hours + " " + std::to_string(tenMinutes % 6) + "0 min";
}

std::string CountText(std::uint64_t count, const std::string& one, const std::string& more) {
    return std::to_string(count) + " " + (count == 1 ? one : more);
}

} // namespace thntfs
