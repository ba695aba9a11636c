#pragma once

#include <ctime>
#include <string>
#include <string_view>

namespace thntfs {

inline constexpr std::string_view kTreeInfoExtension = ".tht";
inline constexpr std::string_view kPartitionInfoExtension = ".thd";

/// The parts of a scan information file's path.
struct ScanInfoPlace {
    std::string Folder;   ///< absolute, without a slash at the end
    std::string FileName; ///< as the user gave it
    std::string Target;   ///< path of the file itself
};

/// Where a path leads to. A file name whose last characters aren't exactly `extension`, in lower case, gets
/// it appended in Target; an empty extension leaves the name alone.
ScanInfoPlace ScanInfoPlaceOf(const std::string& path, std::string_view extension = {});

/// The names that the save dialogs suggest on a day, such as "TH NTFS Scan Info# 19-Nov-2026.tht" and
/// "TH NTFS Scan Information # Thu, 19-Nov-2026". September is "Sept".
std::string SuggestedTreeInfoName(const std::tm& local);
std::string SuggestedPartitionInfoName(const std::tm& local);

} // namespace thntfs
