#pragma once

#include <atomic>
#include <cstdint>

namespace thntfs {

class CDlgWait;
class CVarientCloneImageDialog;

/// What the windows share beside the engine's state. One exists, `Desktop`, and it belongs to the interface
/// thread; a worker writes the totals of its walk and StructuresMissing.
struct DesktopState {
    // What the tree shows, and what of it carries a check mark.
    std::uint32_t TotalFiles = 0;
    std::uint32_t TotalFolders = 0;
    std::uint64_t TotalBytes = 0;
    std::uint32_t MarkedFiles = 0;
    std::uint32_t MarkedFolders = 0;
    std::uint64_t MarkedBytes = 0;

    std::atomic<bool> StructuresMissing{false}; ///< the chosen volume's table was not located
    bool TurboScanUsed = false;                 ///< from a Turbo Scan to the next volume
    std::uint8_t ProcessingMode = 0; ///< 0 partition table, 1 search: how the candidates came about
    CDlgWait* WaitDialog = nullptr;  ///< stands while a list is filled; not owned
    CVarientCloneImageDialog* CopyDialog = nullptr; ///< of a running copy; not owned
};

inline DesktopState Desktop;

} // namespace thntfs
