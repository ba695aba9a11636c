#pragma once

#include <cstdint>

namespace thntfs {

class LostStarts;

enum class SearchMethod : std::uint32_t { Quick = 0, Thorough = 1 };

/// Runs one search over sectors from `firstSector` up to, not including, `endSector`, and leaves what it
/// finds in the candidate list of SourceDisk, and in Losses how many sectors it could not read. ScanRunFlag
/// must be set; clearing it stops the search, and what was found up to then stands. Gives ScanRunFlag at its
/// end.
std::uint32_t RunPartitionSearch(SearchMethod method, std::uint64_t firstSector, std::uint64_t endSector,
                                 LostStarts* traces = nullptr);

/// The same, then puts the volumes that its traces lead to behind the others, and examines all of them
/// (ExamineVolumes). A quick search looks for traces at the medium's end too. A stop ends this as well; what
/// hasn't been examined by then is said to be so.
std::uint32_t SearchVolumes(SearchMethod method, std::uint64_t firstSector, std::uint64_t endSector);

/// Looks for boot sectors at two places in 16065 sectors: where a cylinder of 255 heads by 63 sectors begins,
/// and 63 sectors behind it. The bounds are rounded to multiples of 16065.
/// `traces` takes note of what the sectors read tell of volumes that begin elsewhere.
std::uint32_t QuickScan(std::uint64_t firstSector, std::uint64_t endSector, LostStarts* traces = nullptr);

/// Looks at every sector for boot sectors and for the records named $MFT and $MFTMirr, and works out from
/// those the volumes whose boot sector is gone. `traces` as above.
std::uint32_t ThoroughScan(std::uint64_t firstSector, std::uint64_t endSector, LostStarts* traces = nullptr);

} // namespace thntfs
