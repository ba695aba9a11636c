#pragma once

#include "engine/VolumeFacts.h"

#include <cstdint>

namespace thntfs {

/// What stands where a partition table names a volume.
enum class TableVolumeState : std::uint8_t {
    Usable,       ///< an NTFS boot sector; the volume is a candidate
    NoBootSector, ///< something else: another file system, or a volume whose boot sector is lost
    Unreadable,   ///< a sector that can't be read
    LostTable,    ///< what follows is unknown, as a further table of the chain can't be read
    Encrypted,    ///< the boot sector of a fully encrypted volume
};

/// A volume of NTFS's type in a partition table, usable or not, or an encrypted one found elsewhere.
struct TableVolume {
    std::uint64_t StartSector = 0;  ///< absolute; of LostTable the sector of the table
    std::uint64_t TotalSectors = 0; ///< as the table says; 0 for LostTable
    TableVolumeState State = TableVolumeState::Usable;
    VolumeSource Source = VolumeSource::Mbr;
};

/// What a search for volumes has left out because there was too much of it.
inline constexpr std::uint8_t kLimitCandidates = 1;
inline constexpr std::uint8_t kLimitEvidence = 2;

} // namespace thntfs
