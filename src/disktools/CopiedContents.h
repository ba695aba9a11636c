#pragma once

#include "disktools/CopyMap.h"
#include "platform/system/ErrorCodes.h"

#include <cstdint>
#include <optional>

namespace thntfs {

class File;

/// What came of comparing an image with the medium that is to be read on.
struct ContentCheck {
    std::uint64_t Compared = 0;           ///< sectors that could be read again, and were compared
    std::optional<std::uint64_t> Differs; ///< the first sector found to be another one
    ErrorCode Code = kErrorNone;          ///< failure of the image; the comparison ended there
};

/// Reads again from SourceDisk what the map says is in the image, as far as it lies in the first megabyte,
/// and 64 sectors spread evenly over all of it. Sectors that can't be read now don't count, and after 16 of
/// them the comparison ends.
ContentCheck CompareCopied(File& image, const CopyMap& map);

} // namespace thntfs
