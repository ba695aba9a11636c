#pragma once

#include <cstdint>

namespace thntfs {

enum class SearchMethod : std::uint32_t { Quick = 0, Thorough = 1 };

/// Runs one search over sectors from `firstSector` up to, not including, `endSector`, and leaves what it
/// finds in the candidate list of SourceDisk, and in Losses how many sectors it could not read. ScanRunFlag
/// must be set; clearing it stops the search, and what was found up to then stands. Gives ScanRunFlag at its
/// end.
std::uint32_t RunPartitionSearch(SearchMethod method, std::uint64_t firstSector, std::uint64_t endSector);

/// Looks for boot sectors at two places in 16065 sectors: where a cylinder of 255 heads by 63 sectors begins,
/// and 63 sectors behind it. The bounds are rounded to multiples of 16065.
std::uint32_t QuickScan(std::uint64_t firstSector, std::uint64_t endSector);

/// Looks at every sector for boot sectors and for the records named $MFT and $MFTMirr, and works out from
/// those the volumes whose boot sector is gone.
std::uint32_t ThoroughScan(std::uint64_t firstSector, std::uint64_t endSector);

} // namespace thntfs
