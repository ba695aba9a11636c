#include "scaninfo/ScanInfoNames.h"

#include "platform/files/Paths.h"

#include <array>
#include <cstdio>

namespace thntfs {

namespace {

constexpr std::array<const char*, 12> kMonths{"Jan", "Feb", "Mar",  "Apr", "May", "Jun",
                                              "Jul", "Aug", "Sept", "Oct", "Nov", "Dec"};
constexpr std::array<const char*, 7> kWeekdays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};

template <std::size_t N>
const char* TextAt(const std::array<const char*, N>& texts, int index) {
    return texts[static_cast<std::size_t>(index) % N];
}

std::string DayText(const std::tm& local) {
    std::array<char, 48> text{};
    const int length =
        std::snprintf(text.data(), text.size(), "%02d-%s-%u", local.tm_mday, TextAt(kMonths, local.tm_mon),
                      static_cast<unsigned>(local.tm_year) + 1900U);
    return {text.data(), static_cast<std::size_t>(length)};
}

} // namespace

ScanInfoPlace ScanInfoPlaceOf(const std::string& path, std::string_view extension) {
    const std::string absolute = AbsolutePath(path);
    const std::size_t slash = absolute.rfind('/');
    const std::size_t nameAt = slash == std::string::npos ? 0 : slash + 1;
    ScanInfoPlace place;
    place.Folder = absolute.substr(0, nameAt == 0 ? 0 : slash);
    place.FileName = absolute.substr(nameAt);
    place.Target = place.Folder + "/" + place.FileName;
    if (!place.FileName.ends_with(extension)) {
        place.Target += extension;
    }
    return place;
}

std::string SuggestedTreeInfoName(const std::tm& local) {
    return "TH NTFS Scan Info# " + DayText(local) + ".tht";
}

std::string SuggestedPartitionInfoName(const std::tm& local) {
    return std::string("TH NTFS Scan Information # ") + TextAt(kWeekdays, local.tm_wday) + ", " +
           DayText(local);
}

} // namespace thntfs
