#include "frame/JobControl.h"

#include "engine/EngineState.h"
#include "frame/StatusPanes.h"
#include "shell/Boxes.h"
#include "shell/DesktopState.h"
#include "shell/PauseGate.h"

#include <QCoreApplication>
#include <exception>
#include <system_error>

namespace thntfs {

namespace {

QString LittleFoundNote() {
    return Engine.Yield.Little()
               ? QCoreApplication::translate("JobControl", "\n\n%1.\nTurbo Scan may find more.")
                     .arg(QString::fromStdString(LittleFoundText(Engine.Yield)))
               : QString();
}

} // namespace

QString FinishedText(FinishedJob kind) {
    switch (kind) {
    case FinishedJob::FileTypes:
        return QCoreApplication::translate("JobControl", "Searching for file type(s) finished.");
    case FinishedJob::BasicScan:
        return QCoreApplication::translate("JobControl",
                                           "You have just completed Basic Scan of a logical drive.\n\n"
                                           "Please examine the tree created, if you find none of the\n"
                                           "files listed are the one you were looking for, then use\n"
                                           "more advanced disk scanning method i.e. Turbo Scan.\n\n"
                                           "Go to Tools->TurboScan") +
               LittleFoundNote();
    default:
        return {};
    }
}

namespace {

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

JobControl::JobControl(MessageTarget& frame, StatusPanes& panes)
    : frame_(frame)
    , panes_(panes) {}

// The worker of a copy has the medium until its dialog is gone.
bool JobControl::JobBusy() const { return jobBusy_ || Desktop.CopyDialog != nullptr; }

// A stopped worker still fills the tree, and some commands are enabled meanwhile.
bool JobControl::MayStartWork() const {
    if (Desktop.WaitDialog != nullptr || Engine.ScanRunFlag != 0) {
        return false;
    }
    if (JobBusy()) {
        ShowBox(tr("Please wait..."), tr("Information"), BoxIcon::Warning);
    }
    return !JobBusy();
}

void JobControl::Choose(const ProcessLogEntry& wizardEntry) {
    currentEntry_ = wizardEntry;
    jobBusy_ = true;
}

void JobControl::SetRunning() {
    Engine.ScanRunFlag = 1;
    jobBusy_ = true;
}

// The worker before it has returned, or is about to: its last message has been handled.
void JobControl::StartWorker(std::function<void()> work) {
    workerThread_.reset();
    try {
        workerThread_ = std::make_unique<JobThread>(std::move(work));
    } catch (const std::system_error& failure) {
        ShowBox(QString::fromLocal8Bit(failure.what()), tr("Error"), BoxIcon::Stop);
        EndFailed();
    }
}

// The worker stands still while the question is up. What it had sent before may still be handled meanwhile,
// its last message too.
void JobControl::Stop() {
    if (Engine.ScanRunFlag == 0 || Desktop.CopyDialog != nullptr) {
        return;
    }
    const WorkerPause pause;
    WM_COPY_EVENT.Post(&frame_, CopyWork::Scan, CopyEvent::Paused);
    if (Engine.ScanRunFlag != 0 && AskYesNo(tr("Do you want to stop process?"), tr("Confirm"))) {
        Engine.ScanRunFlag = 0;
        return;
    }
    WM_COPY_EVENT.Post(&frame_, CopyWork::Scan, CopyEvent::Resumed);
}

ProcessLogEntry JobControl::EntryOf(CopyWork work, CopyEvent event) {
    if (event == CopyEvent::Paused || event == CopyEvent::Resumed) {
        return {WorkName(work), event == CopyEvent::Paused ? "Process Paused" : "Process Resumed", "",
                kLogInProgress};
    }
    const bool completed = event == CopyEvent::Completed;
    currentEntry_.Status = completed ? kLogDone : kLogFailed;
    currentEntry_.Name = (completed ? "Completed " : "Aborted ") + currentEntry_.Name;
    if (work == CopyWork::Clone || work == CopyWork::Image) {
        jobBusy_ = false;
    }
    return currentEntry_;
}

void JobControl::TellFinished(const QString& text) {
    panes_.EndProgress();
    if (!text.isEmpty()) {
        ShowBox(text, tr("Information"), BoxIcon::Information);
    }
}

void JobControl::EndFailed() {
    panes_.EndProgress();
    ReturnToIdle();
}

void JobControl::ReturnToIdle() {
    Engine.ScanRunFlag = 0;
    jobBusy_ = false;
}

// What the library throws for want of memory ends a job like a catalogue that can't be had.
bool RunGuarded(const std::function<void()>& work) {
    try {
        work();
    } catch (const CUserException&) { // its box has been seen
        return false;
    } catch (const std::exception& failure) {
        Host().ErrorBox(failure.what());
        return false;
    }
    return true;
}

} // namespace thntfs
