#include "frame/ScanWorkers.h"

#include "catalogue/Catalogue.h"
#include "engine/EngineState.h"
#include "frame/JobControl.h"
#include "scaninfo/JobLog.h"
#include "scans/BasicScan.h"
#include "scans/TurboScan.h"
#include "shell/Boxes.h"
#include "shell/DesktopState.h"
#include "shell/WindowMessages.h"
#include "views/THNTFSTreeView.h"

#include <QCoreApplication>
#include <functional>

namespace thntfs {

namespace {

void FillTree(CTHNTFSTreeView& tree) {
    try {
        tree.FillTree();
    } catch (const CUserException&) { // its box has been seen
    }
}

bool RunBasicScan(MessageTarget& frame, CTHNTFSTreeView& tree, const ScanReach& reach) {
    LogBasicScanStarted();
    CloseCatalogue();
    if (CreateCatalogue() == 0) {
        return false;
    }
    LogBasicScanEnded(BasicScan(reach) != 0);
    LogLosses();
    LogYield();
    CloseCatalogue();
    WM_PROGRESS_CAPTION.Send(&frame, QT_TRANSLATE_NOOP("StatusPanes", "Populating "));
    LogTreeFillStarted();
    if (OpenCatalogue() == 0) {
        return false;
    }
    FillTree(tree);
    LogTreeFillEnded();
    return true;
}

void ShowFullProgress(MessageTarget& frame) {
    Engine.ProgressDone = 1;
    Engine.ProgressTotal = 1;
    WM_JOB_PROGRESS.Send(&frame);
}

bool RunTurboScan(MessageTarget& frame, CTHNTFSTreeView& tree, std::uint8_t number, const ScanReach& reach) {
    CloseCatalogue();
    Engine.VolumeParams.TurboScanRun = 1;
    Desktop.StructuresMissing = false;
    LogTurboScanStarted(number);
    WM_CLEAR_VIEWS.Send(&frame);
    if (CreateCatalogue() == 0) {
        return false;
    }
    const bool complete = TurboScan(reach) != 0;
    LogTurboScanEnded(number, complete);
    LogLosses();
    LogYield();
    if (complete) {
        ShowFullProgress(frame);
    }
    ShowBox(complete ? QCoreApplication::translate("ScanWorkers", "Turbo Scan Completed")
                     : QCoreApplication::translate("ScanWorkers", "Turbo Scan aborted"),
            QCoreApplication::translate("ScanWorkers", "Information"), BoxIcon::Information);
    CloseCatalogue();
    if (OpenCatalogue() == 0) {
        return false;
    }
    FillTree(tree);
    return true;
}

bool RunToEnd(MessageTarget& frame, FinishedJob kind, const std::function<bool()>& scan) {
    bool done = false;
    RunGuarded([&] { done = scan(); });
    if (done) {
        WM_JOB_FINISHED.Send(&frame, kind);
    } else {
        LogNoCatalogue();
        WM_JOB_FAILED.Send(&frame);
    }
    return done;
}

} // namespace

bool BasicScanThread(MessageTarget& frame, CTHNTFSTreeView& tree, const ScanReach& reach) {
    return RunToEnd(frame, FinishedJob::BasicScan, [&] { return RunBasicScan(frame, tree, reach); });
}

bool TurboScanThread(MessageTarget& frame, CTHNTFSTreeView& tree, std::uint8_t logicalDriveNumber,
                     const ScanReach& reach) {
    return RunToEnd(frame, FinishedJob::TurboScan,
                    [&] { return RunTurboScan(frame, tree, logicalDriveNumber, reach); });
}

} // namespace thntfs
