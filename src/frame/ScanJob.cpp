#include "frame/ScanJob.h"

#include "frame/JobControl.h"
#include "frame/ScanWorkers.h"
#include "frame/StatusPanes.h"
#include "shell/DesktopState.h"

#include <QCoreApplication>

namespace thntfs {

ScanJob::ScanJob(JobControl& job, MessageTarget& frame, CTHNTFSTreeView& tree, StatusPanes& panes)
    : job_(job)
    , frame_(frame)
    , tree_(tree)
    , panes_(panes) {}

void ScanJob::TakeVolume(const ProcessLogEntry& wizardEntry) {
    Desktop.TurboScanUsed = false;
    job_.Choose(wizardEntry);
}

// A bar made before the worker starts is there for its first report.
void ScanJob::StartBasicScan() {
    panes_.BeginProgress(kBlankCaption);
    job_.StartWorker([this, reach = reach_] {
        if (BasicScanThread(frame_, tree_, reach)) {
            basicScanDone_ = true;
        }
    });
}

void ScanJob::StartTurboScan(std::uint8_t logicalDriveNumber) {
    Desktop.TurboScanUsed = true;
    panes_.BeginProgress(QT_TRANSLATE_NOOP("StatusPanes", "Scanning"));
    job_.StartWorker([this, logicalDriveNumber, reach = reach_] {
        TurboScanThread(frame_, tree_, logicalDriveNumber, reach);
    });
}

} // namespace thntfs
