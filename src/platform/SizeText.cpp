#include "platform/SizeText.h"

#include <array>
#include <cstdio>

namespace thntfs {

namespace {

struct Unit {
    std::uint64_t Bytes;
    const char* Name;
};

constexpr Unit kKilobytes{1024, "KB"};
constexpr Unit kMegabytes{1048576, "MB"};
constexpr Unit kGigabytes{1073741824, "GB"};

} // namespace

std::string SizeText(std::uint64_t bytes) {
    const Unit unit = bytes < kMegabytes.Bytes   ? kKilobytes
                      : bytes < kGigabytes.Bytes ? kMegabytes
                                                 : kGigabytes;
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%7.3f %s",
                  static_cast<double>(bytes) / static_cast<double>(unit.Bytes), unit.Name);
    return text.data();
}

} // namespace thntfs
