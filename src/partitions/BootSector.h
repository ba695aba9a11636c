#pragma once

#include "engine/StoredRecords.h"

#include <cstdint>

namespace thntfs {

inline constexpr std::size_t kBootSectorBytes = 512;

/// Whether 512 bytes are an NTFS boot sector by its jump, its fixed fields, its sector and cluster sizes
/// and its three cluster numbers. The signature 0xAA55 isn't looked at.
bool IsNtfsBootSector(ConstBytes sector);

/// Total sectors, first logical cluster of the Master File Table and sectors per cluster that a boot sector
/// states.
std::uint64_t BootTotalSectors(ConstBytes sector);
std::uint64_t BootMftCluster(ConstBytes sector);
std::uint32_t BootSectorsPerCluster(ConstBytes sector);

/// Fills a candidate from a boot sector that passed the test and that stands at absolute sector `start` on
/// the medium, for a partition table entry that gives the volume `totalSectors` sectors.
void DecodeTableBootSector(ConstBytes sector, std::uint64_t start, std::uint32_t totalSectors,
                           PartitionCandidate& candidate);

/// The same for a boot sector that a search has found: the size comes from the boot sector itself, the sector
/// size is taken as it stands, and IndexBlockBytes stays 0.
void DecodeFoundBootSector(ConstBytes sector, std::uint64_t start, PartitionCandidate& candidate);

/// The first form, in sectors of the medium whatever sectors the boot sector counts by, and with
/// `totalSectors` of any size; 0 stands for what the boot sector says. False where a cluster or a record
/// isn't whole sectors of the medium.
bool DecodeVolume(ConstBytes sector, std::uint64_t start, std::uint64_t totalSectors,
                  PartitionCandidate& candidate);

} // namespace thntfs
