#pragma once

#include <cstdint>

namespace thntfs {

/// The clusters of the volume in work that can be claimed: up to the end of the volume or of the medium,
/// whichever comes first.
struct ClaimSpace {
    std::uint64_t Clusters = 0;
    std::uint64_t SectorsPerCluster = 0; ///< 0 where nothing can be judged

    [[nodiscard]] std::uint64_t Sectors() const { return Clusters * SectorsPerCluster; }
};

ClaimSpace ClaimSpaceOfVolume();

} // namespace thntfs
