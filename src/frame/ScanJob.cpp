#include "frame/ScanJob.h"

#include "catalogue/Catalogue.h"
#include "catalogue/CatalogueReader.h"
#include "engine/EngineState.h"
#include "frame/JobControl.h"
#include "frame/ScanWorkers.h"
#include "frame/StatusPanes.h"
#include "shell/DesktopState.h"

#include <QCoreApplication>
#include <QLocale>
#include <algorithm>

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
    runs_ = true;
    panes_.BeginProgress(kBlankCaption);
    job_.StartWorker([this, reach = reach_] {
        if (BasicScanThread(frame_, tree_, reach)) {
            basicScanDone_ = true;
        }
    });
}

void ScanJob::StartTurboScan(std::uint8_t logicalDriveNumber) {
    runs_ = true;
    Desktop.TurboScanUsed = true;
    panes_.BeginProgress(QT_TRANSLATE_NOOP("StatusPanes", "Scanning"));
    job_.StartWorker([this, logicalDriveNumber, reach = reach_] {
        TurboScanThread(frame_, tree_, logicalDriveNumber, reach);
    });
}

void ScanJob::ShowProgress() {
    if (runs_) {
        const std::uint64_t entries = CatalogueEntryCount();
        const std::uint64_t found = entries - std::min<std::uint64_t>(entries, kFirstEntryId);
        panes_.ShowWork({static_cast<double>(Engine.ProgressDone), static_cast<double>(Engine.ProgressTotal),
                         QCoreApplication::translate("ScanJob", "%1 files and folders found")
                             .arg(QLocale(QLocale::English).toString(qulonglong{found}))});
    }
}

} // namespace thntfs
