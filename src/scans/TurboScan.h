#pragma once

#include "platform/system/Bytes.h"
#include "scans/ScanReach.h"

#include <cstdint>

namespace thntfs {

/// Reads the whole volume, from StartSector on for TotalSectors sectors, and catalogues every FILE record and
/// every folder of an index block that stands at an aligned place, whether or not the Master File Table
/// reaches it. Needs a catalogue just created and ScanRunFlag set. ProgressDone counts sectors. Gives
/// ScanRunFlag: 1 if it went through to the end, 0 if it was stopped. A fatal error ends the reading; what
/// was found up to then is kept. Losses tells how many sectors of the volume could not be read. `reach` adds
/// entries behind those of the walk.
std::uint32_t TurboScan(const ScanReach& reach = {});

/// Catalogues the folders that a checked index block lists. `nextEntryId` advances by what was written.
/// Always gives 1. Passes CUserException on.
int HarvestIndexBlock(ConstBytes block, std::uint32_t& nextEntryId);

} // namespace thntfs
