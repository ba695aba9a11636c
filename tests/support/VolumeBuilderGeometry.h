#pragma once

#include "support/VolumeBuilderBytes.h"

#include <bit>

namespace thntfs::test {

/// The measures of a volume to be built and its place on the medium. The defaults give a volume of 8 MiB with
/// a table of 256 records of 1024 bytes.
struct VolumeGeometry {
    std::uint32_t SectorBytes = 512;
    std::uint32_t SectorsPerCluster = 8;
    std::uint32_t RecordBytes = 1024;
    std::uint32_t IndexBlockBytes = 4096;
    std::uint64_t StartSector = 128; ///< absolute first sector of the volume
    std::uint64_t TotalSectors =
        16383;                      ///< as the boot sector says; the backup boot sector follows behind them
    std::uint64_t TailSectors = 16; ///< sectors of the medium behind the backup boot sector
    std::uint64_t MirrorCluster = 1024;
    std::uint64_t Serial = 0x1122334455667788;
    std::vector<Run> MftRuns = {{64, 4}}; ///< where the Master File Table lies; at least one run, none sparse

    [[nodiscard]] std::uint64_t MftCluster() const { return MftRuns.front().Start.value_or(0); }
    [[nodiscard]] std::uint32_t ClusterBytes() const { return SectorBytes * SectorsPerCluster; }
    [[nodiscard]] std::uint64_t MediumSectors() const { return StartSector + TotalSectors + 1 + TailSectors; }
    /// Absolute sector of a logical cluster.
    [[nodiscard]] std::uint64_t SectorOf(std::uint64_t cluster) const {
        return StartSector + cluster * SectorsPerCluster;
    }
    /// Byte offset on the medium of a logical cluster.
    [[nodiscard]] std::uint64_t OffsetOf(std::uint64_t cluster) const {
        return SectorOf(cluster) * SectorBytes;
    }
    /// The boot sector's byte for a size: clusters, or a negative power of two where it is below a cluster.
    [[nodiscard]] std::uint8_t SizeCode(std::uint32_t bytes) const {
        return bytes >= ClusterBytes() ? static_cast<std::uint8_t>(bytes / ClusterBytes())
                                       : static_cast<std::uint8_t>(256 - std::countr_zero(bytes));
    }
};

} // namespace thntfs::test
