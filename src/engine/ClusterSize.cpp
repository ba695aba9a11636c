#include "engine/ClusterSize.h"

#include "engine/EngineState.h"

#include <algorithm>
#include <bit>

namespace thntfs {

namespace {

constexpr std::uint8_t kLargestCount = 0x80;

} // namespace

std::uint32_t SectorsPerClusterOf(std::uint8_t bootByte) {
    return bootByte <= kLargestCount ? bootByte : std::uint32_t{1} << std::min(0x100U - bootByte, 31U);
}

std::string ClusterFault() {
    const VolumeParams& volume = Engine.VolumeParams;
    const std::uint64_t bytes = std::uint64_t{volume.SectorsPerCluster} * volume.BytesPerSector;
    if (volume.SectorsPerCluster == 0 || (std::has_single_bit(volume.SectorsPerCluster) &&
                                          volume.ClusterBytes == bytes && bytes <= kMaxClusterBytes)) {
        return {};
    }
    return "The clusters of this volume would have " + std::to_string(volume.SectorsPerCluster) +
           " sectors of " + std::to_string(volume.BytesPerSector) +
           " bytes. No NTFS volume has such clusters: what was read about its layout is damaged.";
}

} // namespace thntfs
