#pragma once

#include "scans/ScanReach.h"

namespace thntfs {

/// Walks the Master File Table along VolumeParams.MftExtents and catalogues every record that passes its
/// tests, live and deleted alike. Needs a catalogue just created and ScanRunFlag set. ProgressDone counts
/// record slots. Gives 1 if it ran to its end, 0 if it was stopped by ScanRunFlag or couldn't start. A fatal
/// error of the medium or of the catalogue ends the reading; what was found up to then is kept. Losses tells
/// what of the table could not be had, Yield what was met. `reach` adds entries behind those of the walk.
int BasicScan(const ScanReach& reach = {});

} // namespace thntfs
