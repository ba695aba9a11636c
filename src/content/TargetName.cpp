#include "content/TargetName.h"

#include "platform/files/PartName.h"
#include "platform/system/Text.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace thntfs {

namespace {

constexpr std::size_t kMaxExtensionBytes = 32;

// Names that mean a device to systems which the saved files may be taken to.
constexpr std::array<std::string_view, 4> kDeviceNames = {"CON", "PRN", "AUX", "NUL"};
constexpr std::array<std::string_view, 2> kNumberedDeviceNames = {"COM", "LPT"};

// By byte, as each byte of each name of a volume is looked at.
constexpr auto kForbidden = [] {
    std::array<bool, 256> forbidden{};
    std::fill_n(forbidden.begin(), 0x20, true);
    for (const char c : std::string_view("/\\:*?\"<>|\x7F")) {
        forbidden.at(static_cast<unsigned char>(c)) = true;
    }
    return forbidden;
}();

bool IsForbidden(char c) { return kForbidden[static_cast<unsigned char>(c)]; }

bool IsDeviceName(std::string_view name) {
    const std::size_t stemBytes = std::min(name.find('.'), name.size());
    if (stemBytes != 3 && stemBytes != 4) {
        return false;
    }
    std::string stem(name.substr(0, stemBytes));
    std::transform(stem.begin(), stem.end(), stem.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (std::find(kDeviceNames.begin(), kDeviceNames.end(), stem) != kDeviceNames.end()) {
        return true;
    }
    return stem.size() == 4 && stem[3] >= '1' && stem[3] <= '9' &&
           std::find(kNumberedDeviceNames.begin(), kNumberedDeviceNames.end(), stem.substr(0, 3)) !=
               kNumberedDeviceNames.end();
}

bool MeansNoName(std::string_view name) { return name.find_first_not_of('.') == std::string_view::npos; }

// Most names do, and are looked at where they stand.
bool Fits(std::string_view name) {
    return name.size() <= kMaxTargetNameBytes && !MeansNoName(name) &&
           std::none_of(name.begin(), name.end(), IsForbidden) && !IsDeviceName(name) && !IsPartName(name);
}

// Cuts text to a number of bytes without leaving a part of a character behind.
std::string CutText(const std::string& text, std::size_t bytes) {
    if (text.size() <= bytes) {
        return text;
    }
    while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0U) == 0x80U) {
        --bytes;
    }
    return text.substr(0, bytes);
}

struct NameParts {
    std::string Stem;
    std::string Extension; ///< with its dot; empty where there is none worth keeping
};

NameParts SplitName(const std::string& name) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos || dot == 0 || name.size() - dot > kMaxExtensionBytes) {
        return {name, ""};
    }
    return {name.substr(0, dot), name.substr(dot)};
}

std::string JoinWithin(const NameParts& parts, const std::string& between) {
    return CutText(parts.Stem, kMaxTargetNameBytes - between.size() - parts.Extension.size()) + between +
           parts.Extension;
}

} // namespace

std::string TargetName(std::u16string_view name) { return FitName(NarrowText(name)); }

void AppendTargetName(std::string& out, std::u16string_view name) {
    const std::size_t start = out.size();
    AppendNarrowText(out, name);
    if (!Fits(std::string_view(out).substr(start))) {
        const std::string fitting = FitName(out.substr(start));
        out.replace(start, std::string::npos, fitting);
    }
}

std::string FitName(std::string safe) {
    if (Fits(safe)) {
        return safe;
    }
    std::replace_if(safe.begin(), safe.end(), IsForbidden, '_');
    if (MeansNoName(safe)) {
        safe.assign(std::max<std::size_t>(safe.size(), 1), '_'); // "", "." and ".." among them
    }
    if (IsDeviceName(safe) || IsPartName(safe)) {
        safe.insert(0, "_");
    }
    return JoinWithin(SplitName(safe), "");
}

std::string NumberedName(const std::string& name, unsigned number) {
    return JoinWithin(SplitName(name), " (" + std::to_string(number) + ")");
}

} // namespace thntfs
