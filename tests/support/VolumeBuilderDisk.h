#pragma once

#include "support/VolumeBuilderGeometry.h"

namespace thntfs::test {

/// Fields of an NTFS boot sector. BootFieldsOf fills them for a geometry; a test changes what it likes.
struct BootSectorFields {
    std::uint16_t SectorBytes = 512;        ///< at 11
    std::uint8_t SectorsPerCluster = 8;     ///< at 13
    std::uint32_t HiddenSectors = 0;        ///< at 28
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
