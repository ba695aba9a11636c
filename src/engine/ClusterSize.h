#pragma once

#include <cstdint>
#include <string>

namespace thntfs {

/// Largest cluster that NTFS has, in bytes.
inline constexpr std::uint32_t kMaxClusterBytes = 2U << 20U;

/// Clear in the size of each sector and each cluster.
inline constexpr std::uint32_t kLowNineBits = 0x1FF;

/// Sectors of a cluster as byte 13 of a boot sector states them: the count itself up to 0x80, above that 2 to
/// the power of 256 minus the byte. Powers that no 32 bits hold give 2 to the power of 31.
std::uint32_t SectorsPerClusterOf(std::uint8_t bootByte);

/// What is wrong with the clusters of the volume in VolumeParams, as a sentence; empty where nothing is.
/// Clusters are a power of two of sectors and have kMaxClusterBytes at most. A count of 0 sectors is left to
/// LocateMft, which refuses it.
std::string ClusterFault();

} // namespace thntfs
