// How the program ends.

#include "engine/EngineState.h"
#include "frame/MainFrame.h"
#include "platform/system/Interrupt.h"
#include "shell/Boxes.h"
#include "shell/DesktopState.h"
#include "shell/EscapeWatch.h"
#include "views/THNTFSTreeView.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QSocketNotifier>

namespace thntfs {

// A result that could not be saved stays on the screen: the log tells why, and the user may try another
// place.
bool CMainFrame::AskToSave(const QString& question, BoxButtons buttons) {
    switch (ShowBox(question, tr("Confirm"), BoxIcon::Information, buttons)) {
    case BoxAnswer::Yes:
        return SaveTree();
    case BoxAnswer::No:
        return true;
    default:
        return false;
    }
}

bool CMainFrame::AskAboutScan() {
    return AskToSave(tr("Do you want to save scan information?"), BoxButtons::YesNoCancel);
}

// To be called before another medium or volume takes the place of what the views show. False where the user
// would rather keep that.
bool CMainFrame::GiveUpScan() {
    if (scanInfo_.HasUnsavedScan() && !treeView_->IsEmpty() && !AskAboutScan()) {
        return false;
    }
    ClearViews();
    return true;
}

// Turbo Scan takes the place of the Basic Scan before it.
bool CMainFrame::MayOverwriteScan() {
    return !scanInfo_.HasUnsavedScan() || treeView_->IsEmpty() ||
           AskToSave(tr("Save the result of the Basic Scan first?"), BoxButtons::SaveCancel);
}

bool CMainFrame::MayClose() {
    if (Desktop.WaitDialog != nullptr || previews_.CloseOne()) {
        return false;
    }
    if (Engine.ScanRunFlag != 0) {
        ShowBox(tr("Please stop running process"), tr("Warning"), BoxIcon::Warning);
        return false;
    }
    if (job_.JobBusy()) {
        ShowBox(tr("Please wait..."), tr("Information"), BoxIcon::Warning);
        return false;
    }
    return scanInfo_.MayForgetCatalogue() || AskAboutScan();
}

void CMainFrame::closeEvent(QCloseEvent* event) {
    if (!ending_ && !MayClose()) {
        event->ignore();
        return;
    }
    endTimer_.stop();
    SaveSettings();
    ResetEngineState();
    event->accept();
    QCoreApplication::quit(); // a help window may still stand
}

// From the wish on, the window looks again and again what still stands in the way of its end.
void CMainFrame::WatchForEnd() {
    constexpr int kEndLookMilliseconds = 100;
    connect(&endTimer_, &QTimer::timeout, this, [this] { EndIfAsked(); });
    if (InterruptDescriptor() < 0) {
        endTimer_.start(kEndLookMilliseconds);
        return;
    }
    auto* wish = new QSocketNotifier(InterruptDescriptor(), QSocketNotifier::Read, this);
    connect(wish, &QSocketNotifier::activated, this, [this, wish] {
        wish->setEnabled(false);
        endTimer_.start(kEndLookMilliseconds);
        EndIfAsked();
    });
}

// The program was told to end, by its desktop session or by a signal: nobody is asked anything, the worker
// comes to its end, and then the window goes.
void CMainFrame::EndIfAsked() {
    if (!WasInterrupted()) {
        return;
    }
    ending_ = true;
    Engine.ScanRunFlag = 0;
    RefuseBoxes(true);
    if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
        dialog->done(QDialog::Rejected);
    } else if (!job_.JobBusy() && Desktop.WaitDialog == nullptr && !EscapeWatch::Stands()) {
        close();
    }
}

} // namespace thntfs
