#pragma once

#include "disktools/CopyMap.h"

#include <cstdint>

namespace thntfs {

/// What has become of the sectors of SourceDisk.
struct CopySums {
    std::uint64_t Total = 0;
    std::uint64_t Bad = 0;
    std::uint64_t Unread = 0;

    [[nodiscard]] std::uint64_t Copied() const { return Total - Bad - Unread; }
};

/// Sectors that so many bytes of SourceDisk take.
std::uint64_t SectorsOf(std::uint64_t bytes);

CopySums SumsOf(const CopyMap& map);

} // namespace thntfs
