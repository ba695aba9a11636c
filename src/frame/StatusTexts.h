#pragma once

#include <cstdint>
#include <string>

namespace thntfs {

/// What pane 1 says before there is anything to add up.
inline constexpr const char* kNoTotalsText = "Total 0 KB in 0 Files in 0 Folders";

/// Panes 1 and 2 of the status bar: bytes in KB, MB or GB with three places, and the two counts.
std::string TotalsText(std::uint64_t bytes, std::uint32_t files, std::uint32_t folders);
std::string MarkedText(std::uint64_t bytes, std::uint32_t files, std::uint32_t folders);

} // namespace thntfs
