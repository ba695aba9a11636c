#pragma once

#include <cstdint>

namespace thntfs {

class CTHNTFSTreeView;
class MessageTarget;
struct ScanReach;

// What the threads of the two scans do: from a volume in work to a filled tree. Each sends its lines to the
// log and ends with WM_JOB_FINISHED, or with WM_JOB_FAILED and false where the catalogue can't be made or
// opened again. What a stopped scan has found is shown too.

bool BasicScanThread(MessageTarget& frame, CTHNTFSTreeView& tree, const ScanReach& reach);
bool TurboScanThread(MessageTarget& frame, CTHNTFSTreeView& tree, std::uint8_t logicalDriveNumber,
                     const ScanReach& reach);

} // namespace thntfs
