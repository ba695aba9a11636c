#pragma once

#include "engine/Host.h"
#include "scans/ScanReach.h"
#include "shell/JobThread.h"
#include "shell/WindowMessages.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

namespace thntfs {

class CTHNTFSTreeView;
class StatusPanes;

/// The scan of the volume in work, from its choice to the end of its handling: its flags, its worker, its
/// progress, the user's stop. One runs at a time.
class ScanJob {
public:
    /// The worker reports to the frame and fills the tree. All three are the caller's and live longer.
    ScanJob(MessageTarget& frame, CTHNTFSTreeView& tree, StatusPanes& panes);

    /// From the choice of a job to the end of its handling.
    [[nodiscard]] bool JobBusy() const { return jobBusy_; }
    /// Once a Basic Scan has ended, for good.
    [[nodiscard]] bool BasicScanDone() const { return basicScanDone_; }

    /// Whether anything may begin that needs the medium or the catalogue. A box says where a stopped worker
    /// still has them.
    [[nodiscard]] bool MayStartWork() const;

    /// Whether scans from the next one on list records without a usable name.
    [[nodiscard]] bool ListsNameless() const { return reach_.Deep; }
    void SetListsNameless(bool lists) { reach_.Deep = lists; }

    /// A volume has been chosen to be scanned; the entry, which the job's lines go on with, names it.
    void TakeVolume(const ProcessLogEntry& wizardEntry);
    /// From here on a scan runs, though its worker has yet to start.
    void SetRunning();

    // The worker starts; where the system has no thread for it, a box says so and the job has ended.
    void StartBasicScan();
    void StartTurboScan(std::uint8_t logicalDriveNumber);

    /// Asks whether the scan is to stop, while its worker stands still.
    void Stop();

    /// The worker is through: takes the bar away and tells so in a box. ReturnToIdle is still to come.
    void TellFinished(FinishedJob kind);
    /// The worker could not begin or go on.
    void EndFailed();
    void ReturnToIdle();

    /// The line for the log on what has become of a work.
    ProcessLogEntry EntryOf(CopyWork work, CopyEvent event);

    /// To be called before what the worker reports to goes away.
    void WaitForWorker() { workerThread_.reset(); }

private:
    void StartWorker(std::function<void()> work);

    MessageTarget& frame_;
    CTHNTFSTreeView& tree_;
    StatusPanes& panes_;
    ScanReach reach_{.Exact = true};
    ProcessLogEntry currentEntry_; ///< of the wizard run that has started the job
    bool jobBusy_ = false;
    std::atomic<bool> basicScanDone_{false}; ///< written by the worker
    std::unique_ptr<JobThread> workerThread_;
};

} // namespace thntfs
