#include "platform/files/PartName.h"

#include <random>

namespace thntfs {

namespace {

constexpr std::string_view kMark = ".th-ntfs-";
constexpr std::string_view kEnd = ".part";
constexpr std::string_view kDigits = "0123456789abcdef";
constexpr std::size_t kDigitCount = 12;
constexpr std::size_t kTailBytes = kMark.size() + kDigitCount + kEnd.size();

} // namespace

std::string NewPartName(std::string_view stem) {
    std::random_device random;
    std::string name(stem);
    name += kMark;
    for (std::size_t i = 0; i < kDigitCount; ++i) {
        name += kDigits[random() % kDigits.size()];
    }
    name += kEnd;
    return name;
}

bool IsPartName(std::string_view name, std::string_view stem) {
    return name.size() == stem.size() + kTailBytes && name.starts_with(stem) && IsPartName(name);
}

bool IsPartName(std::string_view name) {
    if (name.size() < kTailBytes) {
        return false;
    }
    const std::string_view tail = name.substr(name.size() - kTailBytes);
    return tail.starts_with(kMark) && tail.ends_with(kEnd) &&
           tail.find_first_not_of(kDigits, kMark.size()) == kMark.size() + kDigitCount;
}

} // namespace thntfs
