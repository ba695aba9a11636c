#pragma once

#include <cstdint>

namespace thntfs {

class Medium;

/// Header of a sparse VMDK extent. Places and sizes are in sectors of 512 bytes.
struct VmdkHeader {
    bool IsSparse = false; ///< it is one at all
    std::uint32_t Flags = 0;
    std::uint64_t Capacity = 0;
    std::uint64_t GrainSectors = 0;
    std::uint64_t DescriptorSector = 0; ///< 0 where the text stands in another file
    std::uint32_t TableEntries = 0;     ///< of each grain table
    std::uint64_t CopySector = 0;       ///< of the second grain directory
    std::uint64_t DirectorySector = 0;
};

inline constexpr std::uint64_t kVmdkSectorBytes = 512;
inline constexpr std::uint32_t kVmdkCopyOfTables = 2; ///< there is a second directory
inline constexpr std::uint32_t kVmdkZeroGrains = 4;
inline constexpr std::uint64_t kVmdkDirectoryAtEnd = ~std::uint64_t{0};

VmdkHeader ReadVmdkHeader(Medium& extent);

} // namespace thntfs
