#pragma once

#include <cstdint>

namespace thntfs {

/// What decides which commands are enabled, and marked.
struct FrameState {
    bool ScanRunning = false; ///< ScanRunFlag
    bool JobBusy = false;
    bool HasTree = false;       ///< the tree shows at least one item
    bool HasMarks = false;      ///< at least one folder of it is marked
    bool HasPartitions = false; ///< the medium's candidate list isn't empty
    bool HasLog = false;
    bool HasFound = false;         ///< Find has picked out an entry
    bool HasCopyDialog = false;    ///< a clone or image job's dialog stands
    bool CurrentHasParent = false; ///< the tree's current folder has one above it
    bool StructuresMissing = false;
    bool BasicScanDone = false;
    bool TurboScanUsed = false;
    bool ListsNameless = false; ///< the next scan is to
    bool HasRows = false;       ///< the list shows at least one
    bool HasSelection = false;  ///< in the list
    bool HasPath = false;       ///< the line above the list tells where one is
    bool SizesInUnits = false;  ///< the list shows sizes in KB, MB and GB
};

/// The rule of a command. Commands without one are always enabled.
bool CommandEnabled(std::uint32_t command, const FrameState& state);

} // namespace thntfs
