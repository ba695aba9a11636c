#pragma once

#include "disktools/CopyMap.h"

#include <optional>
#include <string>
#include <string_view>

namespace thntfs {

/// Where a copy stands, for the line of the map file that tells it.
struct CopyPlace {
    std::uint64_t Position = 0; ///< byte of the source that is worked on
    char Status = '?'; ///< '?' copies, '-' reads bad places again, '+' has ended with nothing left to read
    unsigned Pass = 1; ///< from 1
};

/// The text of a map file. `comment` is put into its head; a line end in it begins another comment line.
std::string TextOfMap(const CopyMap& map, const CopyPlace& place, std::string_view comment);

/// The map that a text tells, of a source of `totalBytes`. Areas that another tool has left half-done ('*'
/// not trimmed, '/' not scraped) count as unread. None for a text that is no map of such a source; `why` then
/// says so in a sentence without its full stop.
std::optional<CopyMap> MapOfText(std::string_view text, std::uint64_t totalBytes, std::string& why);

} // namespace thntfs
