#pragma once

#include "scans/ScanReach.h"

#include <atomic>
#include <cstdint>

namespace thntfs {

class CTHNTFSTreeView;
class JobControl;
class MessageTarget;
class StatusPanes;
struct ProcessLogEntry;

/// The scans of the volume in work.
class ScanJob {
public:
    /// The worker reports to the frame and fills the tree. All are the caller's and live longer.
    ScanJob(JobControl& job, MessageTarget& frame, CTHNTFSTreeView& tree, StatusPanes& panes);

    /// Once a Basic Scan has ended, for good.
    [[nodiscard]] bool BasicScanDone() const { return basicScanDone_; }

    /// Whether scans from the next one on list records without a usable name.
    [[nodiscard]] bool ListsNameless() const { return reach_.Deep; }
    void SetListsNameless(bool lists) { reach_.Deep = lists; }

    /// A volume has been chosen to be scanned; the entry, which the job's lines go on with, names it.
    void TakeVolume(const ProcessLogEntry& wizardEntry);

    // The worker starts, as JobControl::StartWorker.
    void StartBasicScan();
    void StartTurboScan(std::uint8_t logicalDriveNumber);

    /// Shows how far a scan that runs is; for handling WM_JOB_PROGRESS, while the worker waits.
    void ShowProgress();
    /// To be called when a job has ended.
    void NoteEnd() { runs_ = false; }

private:
    JobControl& job_;
    MessageTarget& frame_;
    CTHNTFSTreeView& tree_;
    StatusPanes& panes_;
    ScanReach reach_{.Exact = true};
    bool runs_ = false;
    std::atomic<bool> basicScanDone_{false}; ///< written by the worker
};

} // namespace thntfs
