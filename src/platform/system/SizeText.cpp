#include "platform/system/SizeText.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace thntfs {

namespace {

struct Unit {
    std::uint64_t Bytes;
    const char* Name;
};

constexpr Unit kKilobytes{1024, "KB"};
constexpr Unit kMegabytes{1048576, "MB"};
constexpr Unit kGigabytes{1073741824, "GB"};
constexpr std::size_t kNumberWidth = 7;

} // namespace

std::string SizeText(std::uint64_t bytes) {
    const Unit unit = bytes < kMegabytes.Bytes   ? kKilobytes
                      : bytes < kGigabytes.Bytes ? kMegabytes
                                                 : kGigabytes;
    const std::string number = DecimalText(static_cast<double>(bytes) / static_cast<double>(unit.Bytes), 3);
    const std::size_t blanks = kNumberWidth - std::min(kNumberWidth, number.size());
    return std::string(blanks, ' ') + number + ' ' + unit.Name;
}

std::string DecimalText(double number, int decimals) {
    std::array<char, 400> text{}; // the largest number has 309 digits before the point
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed, decimals);
    return {text.data(), end.ptr};
}

} // namespace thntfs
