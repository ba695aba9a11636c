// The life of a job: its start, its progress, the user's stop, its end.

#include "content/TargetRules.h"
#include "engine/EngineState.h"
#include "frame/CataloguePlace.h"
#include "frame/MainFrame.h"
#include "frame/ScanWorkers.h"
#include "frame/StatusTexts.h"
#include "shell/Boxes.h"
#include "shell/DesktopHost.h"
#include "shell/DesktopState.h"
#include "shell/PauseGate.h"
#include "wizard/WizardSheet.h"

#include <system_error>

namespace thntfs {

namespace {

const char* FinishedText(FinishedJob kind) {
    switch (kind) {
    case FinishedJob::Save:
        return "Saving data completed.";
    case FinishedJob::FileTypes:
        return "Searching for file type(s) finished.";
    case FinishedJob::BasicScan:
        return "You have just completed Basic Scan of a logical drive.\n\n"
               "Please examine the tree created, if you find none of the\n"
               "files listed are the one you were looking for, then use\n"
               "more advanced disk scanning method i.e. Turbo Scan.\n\n"
               "Go to Tools->TurboScan";
    default:
        return nullptr;
    }
}

const char* WorkName(CopyWork work) {
    switch (work) {
    case CopyWork::Clone:
        return "Disk Cloning";
    case CopyWork::Image:
        return "Disk Imaging";
    default:
        return "Internal File processing";
    }
}

} // namespace

// A stopped worker still fills the tree, and some commands are enabled meanwhile.
bool CMainFrame::MayStartWork() {
    if (Desktop.WaitDialog != nullptr || Engine.ScanRunFlag != 0) {
        return false;
    }
    if (JobBusy != 0) {
        ShowBox(QStringLiteral("Please wait..."), QStringLiteral("Information"), BoxIcon::Warning);
    }
    return JobBusy == 0;
}

void CMainFrame::TakeWizardResult(const CWizardSheet& sheet) {
    CurrentEntry = std::make_unique<ProcessLogEntry>(sheet.State().WizardLogEntry);
    Desktop.TurboScanUsed = false;
    JobBusy = 1;
    BeginBasicScan();
}

void CMainFrame::BeginBasicScan() {
    ClearViews();
    WM_UPDATE_TOTALS.Send(this, Totals::All, 0);
    ClearFindMark();
    PlaceCatalogue(catalogueFolder_, SourceMediumPath());
    Engine.ScanRunFlag = 1;
    JobBusy = 1;
    ScanInfoDirty = 1;
    scanUnsaved_ = true;
    NoScanYet = 0;
    WM_START_BASIC_SCAN.Send(this);
}

// A bar made before the worker starts is there for its first report.
void CMainFrame::StartBasicScan() {
    ScanInfoDirty = 1;
    CreateProgressBar(QString(8, QLatin1Char(' ')));
    StartWorker(&BasicScanThread);
}

void CMainFrame::StartTurboScan() {
    if (!MayStartWork()) {
        return;
    }
    PlaceCatalogue(catalogueFolder_, SourceMediumPath());
    Engine.ScanRunFlag = 1;
    JobBusy = 1;
    Desktop.TurboScanUsed = true;
    ScanInfoDirty = 1;
    scanUnsaved_ = true;
    Panes[1]->setText(QLatin1String(kNoTotalsText));
    ClearFindMark();
    CreateProgressBar(QStringLiteral("Scanning"));
    StartWorker(&TurboScanThread);
}

// The worker before it has returned, or is about to: its last message has been handled.
void CMainFrame::StartWorker(void (*work)(CMainFrame&)) {
    worker_.reset();
    try {
        worker_ = std::make_unique<JobThread>([this, work] { work(*this); });
        WorkerThread = worker_.get();
    } catch (const std::system_error& failure) {
        ShowBox(QString::fromLocal8Bit(failure.what()), QStringLiteral("Error"), BoxIcon::Stop);
        EndFailedJob();
    }
    UpdateCommands();
}

void CMainFrame::CreateProgressBar(const QString& caption) {
    constexpr int kWholePane = 100;
    constexpr int kMaximum = 100;
    ProgressBar.reset();
    ProgressBar = std::make_unique<CProgressBar>(Panes[0], caption, kWholePane, kMaximum);
    ProgressBar->Label = QStringLiteral("Scanning");
    TheDesktopHost().BeginProgress();
}

void CMainFrame::ShowJobProgress() {
    if (!ProgressBar) {
        return;
    }
    const int percent = ProgressPercent();
    if (percent == ProgressBar->LastPercent && percent != 0) {
        return;
    }
    ProgressBar->SetText(ProgressBar->Label + QStringLiteral(" :%1%").arg(percent));
    ProgressBar->LastPercent = percent;
    ProgressBar->SetPos(percent);
}

// The worker stands still while the question is up. What it had sent before may still be handled meanwhile,
// its last message too.
void CMainFrame::StopProcess() {
    if (Engine.ScanRunFlag == 0 || Desktop.CopyDialog != nullptr) {
        return;
    }
    const WorkerPause pause;
    WM_COPY_EVENT.Post(MainWindow(), CopyWork::Scan, CopyEvent::Paused);
    if (Engine.ScanRunFlag != 0 &&
        AskYesNo(QStringLiteral("Do you want to stop process?"), QStringLiteral("Confirm"))) {
        Engine.ScanRunFlag = 0;
        return;
    }
    WM_COPY_EVENT.Post(MainWindow(), CopyWork::Scan, CopyEvent::Resumed);
}

void CMainFrame::LogCopyEvent(CopyWork work, CopyEvent event) {
    ProcessLogEntry entry;
    if (event == CopyEvent::Paused || event == CopyEvent::Resumed) {
        entry.Name = WorkName(work);
        entry.Description = event == CopyEvent::Paused ? "Process Paused" : "Process Resumed";
        WM_LOG_ADD.Send(LogList, entry);
        return;
    }
    if (!CurrentEntry) {
        CurrentEntry = std::make_unique<ProcessLogEntry>();
    }
    const bool completed = event == CopyEvent::Completed;
    CurrentEntry->Status = completed ? kLogDone : kLogFailed;
    CurrentEntry->Name = (completed ? "Completed " : "Aborted ") + CurrentEntry->Name;
    if (work == CopyWork::Clone || work == CopyWork::Image) {
        JobBusy = 0;
    }
    WM_LOG_ADD.Send(LogList, *CurrentEntry);
}

void CMainFrame::FinishJob(FinishedJob kind) {
    ProgressBar.reset();
    if (const char* text = FinishedText(kind)) {
        ShowBox(QLatin1String(text), QStringLiteral("Information"), BoxIcon::Information);
    }
    if (!ending_) {
        showMaximized();
    }
    ReturnToIdle();
    Panes[2]->clear();
}

void CMainFrame::EndFailedJob() {
    ProgressBar.reset();
    ReturnToIdle();
}

void CMainFrame::ReturnToIdle() {
    Engine.ScanRunFlag = 0;
    JobBusy = 0;
    WorkerThread = nullptr;
    UpdateCommands();
}

} // namespace thntfs
