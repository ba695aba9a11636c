#include "frame/ScanWorkers.h"

#include "catalogue/Catalogue.h"
#include "engine/EngineState.h"
#include "frame/MainFrame.h"
#include "scaninfo/JobLog.h"
#include "scans/BasicScan.h"
#include "scans/TurboScan.h"
#include "shell/Boxes.h"
#include "shell/DesktopState.h"

#include <exception>

namespace thntfs {

namespace {

void FillTree(CMainFrame& frame) {
    try {
        frame.TreeView->FillTree();
    } catch (const CUserException&) { // its box has been seen
    }
}

bool RunBasicScan(CMainFrame& frame) {
    LogBasicScanStarted();
    CloseCatalogue();
    if (CreateCatalogue() == 0) {
        return false;
    }
    LogBasicScanEnded(BasicScan() != 0);
    LogLosses();
    CloseCatalogue();
    WM_PROGRESS_CAPTION.Send(&frame, "Populating ");
    LogTreeFillStarted();
    if (OpenCatalogue() == 0) {
        return false;
    }
    FillTree(frame);
    LogTreeFillEnded();
    return true;
}

void ShowFullProgress(CMainFrame& frame) {
    Engine.ProgressDone = 1;
    Engine.ProgressTotal = 1;
    WM_JOB_PROGRESS.Send(&frame);
}

bool RunTurboScan(CMainFrame& frame) {
    const unsigned number = frame.LogicalDriveNumber;
    CloseCatalogue();
    Engine.VolumeParams.TurboScanRun = 1;
    Desktop.StructuresMissing = false;
    LogTurboScanStarted(number);
    WM_CLEAR_VIEWS.Send(&frame);
    if (CreateCatalogue() == 0) {
        return false;
    }
    const bool complete = TurboScan() != 0;
    LogTurboScanEnded(number, complete);
    LogLosses();
    if (complete) {
        ShowFullProgress(frame);
    }
    ShowBox(complete ? QStringLiteral("Turbo Scan Completed") : QStringLiteral("Turbo Scan aborted"),
            QStringLiteral("Information"), BoxIcon::Information);
    CloseCatalogue();
    if (OpenCatalogue() == 0) {
        return false;
    }
    FillTree(frame);
    return true;
}

// What the library throws for want of memory ends a scan like a catalogue that can't be made.
bool RunToEnd(bool (*scan)(CMainFrame&), CMainFrame& frame) {
    bool done = false;
    try {
        done = scan(frame);
    } catch (const CUserException&) { // its box has been seen
    } catch (const std::exception& failure) {
        Host().ErrorBox(failure.what());
    }
    if (!done) {
        LogNoCatalogue();
        WM_JOB_FAILED.Send(&frame);
    }
    return done;
}

} // namespace

void BasicScanThread(CMainFrame& frame) {
    if (RunToEnd(&RunBasicScan, frame)) {
        WM_JOB_FINISHED.Send(&frame, FinishedJob::BasicScan);
        frame.BasicScanDone = 1;
    }
}

void TurboScanThread(CMainFrame& frame) {
    if (RunToEnd(&RunTurboScan, frame)) {
        WM_JOB_FINISHED.Send(&frame, FinishedJob::TurboScan);
    }
}

} // namespace thntfs
