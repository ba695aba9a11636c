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
        16383; ///< as the boot sector says; the backup boot sector follows behind them
    std::uint64_t MirrorCluster = 1024;
    std::uint64_t Serial = 0x1122334455667788;
    std::vector<Run> MftRuns = {{64, 4}}; ///< where the Master File Table lies; at least one run, none sparse

    [[nodiscard]] std::uint64_t MftCluster() const { return MftRuns.front().Start.value_or(0); }
    [[nodiscard]] std::uint32_t ClusterBytes() const { return SectorBytes * SectorsPerCluster; }
    /// The medium goes on for 16 sectors behind the backup boot sector.
    [[nodiscard]] std::uint64_t MediumSectors() const { return StartSector + TotalSectors + 17; }
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

/// Fields of an NTFS boot sector. BootFieldsOf fills them for a geometry; a test changes what it likes.
struct BootSectorFields {
    std::uint16_t SectorBytes = 512;        ///< at 11
    std::uint8_t SectorsPerCluster = 8;     ///< at 13
    std::uint64_t TotalSectors = 0;         ///< at 40
    std::uint64_t MftCluster = 0;           ///< at 48
    std::uint64_t MirrorCluster = 0;        ///< at 56
    std::uint8_t RecordSizeCode = 0xF6;     ///< at 64
    std::uint8_t IndexBlockSizeCode = 0xF4; ///< at 68
    std::uint64_t Serial = 0;               ///< at 72
};

BootSectorFields BootFieldsOf(const VolumeGeometry& geometry);

/// The boot sector, `bytes` long (at least 512).
ByteVector EncodeBootSector(const BootSectorFields& fields, std::uint32_t bytes = 512);

/// One of the four entries of a partition table; all sectors as they are to be stored.
struct PartitionEntry {
    std::uint8_t Type = 0x07;
    std::uint32_t FirstSector = 0;
    std::uint32_t SectorCount = 0;
};

/// A master boot record, or a table of an extended chain: 512 bytes with up to four entries in order and the
/// signature at 510.
ByteVector EncodePartitionTable(const std::vector<PartitionEntry>& entries, std::uint16_t signature = 0xAA55);

/// Leaves in a medium's sector 0 what an image of it carries: its size in sectors (u64 at 432) and its sector
/// size (u16 at 444).
void StampImage(Bytes firstSector, std::uint64_t totalSectors, std::uint16_t sectorBytes);

} // namespace thntfs::test
