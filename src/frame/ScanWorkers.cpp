#include "frame/ScanWorkers.h"

#include "catalogue/Catalogue.h"
#include "engine/EngineState.h"
#include "frame/MainFrame.h"
#include "scaninfo/JobLog.h"
#include "scans/BasicScan.h"
#include "scans/TurboScan.h"
#include "shell/Boxes.h"

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
    SendWindowMessage(&frame, WM_PROGRESS_CAPTION, WordOf("Populating "));
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
    SendWindowMessage(&frame, WM_JOB_PROGRESS, 1, 1);
}

bool RunTurboScan(CMainFrame& frame) {
    const unsigned number = frame.LogicalDriveNumber;
    CloseCatalogue();
    Engine.VolumeParams.TurboScanRun = 1;
    Engine.StructuresMissing = 0;
    LogTurboScanStarted(number);
    SendWindowMessage(&frame, WM_CLEAR_VIEWS);
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
        SendWindowMessage(&frame, WM_JOB_FAILED);
    }
    return done;
}

} // namespace

void BasicScanThread(CMainFrame& frame) {
    if (RunToEnd(&RunBasicScan, frame)) {
        SendWindowMessage(&frame, WM_JOB_FINISHED, kFinishedBasicScan);
        frame.BasicScanDone = 1;
    }
}

void TurboScanThread(CMainFrame& frame) {
    if (RunToEnd(&RunTurboScan, frame)) {
        SendWindowMessage(&frame, WM_JOB_FINISHED, kFinishedTurboScan);
    }
}

} // namespace thntfs
