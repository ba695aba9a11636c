// Messages to the main window, and what its commands look like.

#include "frame/MainFrame.h"

#include "engine/EngineState.h"
#include "frame/CommandIds.h"
#include "frame/StatusTexts.h"
#include "shell/DesktopHost.h"
#include "shell/DesktopState.h"
#include "shell/WindowMessages.h"

#include <QMenuBar>
#include <QStatusBar>
#include <QStatusTipEvent>

namespace thntfs {

std::intptr_t CMainFrame::OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t lParam) {
    switch (message) {
    case WM_SHOW_TIPS:
        TellNotBuilt(QStringLiteral("Tip of the day"));
        break;
    case WM_LOG_EVENT:
        return WM_LOG_ADD.Send(LogList, WM_LOG_EVENT.First(wParam));
    case WM_COPY_EVENT:
        LogCopyEvent(WM_COPY_EVENT.First(wParam), WM_COPY_EVENT.Second(lParam));
        break;
    case WM_START_BASIC_SCAN:
        StartBasicScan();
        break;
    case WM_JOB_FINISHED:
        FinishJob(WM_JOB_FINISHED.First(wParam));
        break;
    case WM_JOB_FAILED:
        EndFailedJob();
        break;
    case WM_JOB_PROGRESS:
        ShowJobProgress();
        break;
    case WM_PROGRESS_CAPTION:
        if (ProgressBar) {
            ProgressBar->Label = QString::fromLatin1(WM_PROGRESS_CAPTION.First(wParam));
            TheDesktopHost().BeginProgress();
        }
        break;
    case WM_UPDATE_TOTALS:
        UpdateTotals(WM_UPDATE_TOTALS.First(wParam));
        break;
    case WM_SAVE_REQUEST:
        TellNotBuilt(QStringLiteral("Save"));
        break;
    case WM_SHOW_PROPERTIES:
        TellNotBuilt(QStringLiteral("Properties"));
        break;
    case WM_FIND_FROM_VIEW:
        TellNotBuilt(QStringLiteral("Search"));
        break;
    case WM_SHOW_PREVIEW:
        TellNotBuilt(QStringLiteral("Preview"));
        break;
    case WM_CLEAR_VIEWS:
        ClearViews();
        break;
    case WM_GIVE_UP_SCAN:
        return GiveUpScan() ? 0 : 1;
    default:
        break;
    }
    return 0;
}

FrameState CMainFrame::State() const {
    FrameState state;
    state.ScanRunning = Engine.ScanRunFlag != 0;
    state.JobBusy = JobBusy != 0;
    state.HasTree = !TreeView->IsEmpty();
    // A search changes the list of candidates on its own thread, to its very end.
    state.HasPartitions = !TheDesktopHost().IsSearching() && !Engine.SourceDisk.Partitions.empty();
    state.HasLog = !LogList->IsEmpty();
    state.HasFound = FoundEntry != kNoEntry;
    state.HasCopyDialog = Desktop.CopyDialog != nullptr;
    state.CurrentHasParent = TreeView->CurrentHasParent();
    state.StructuresMissing = Desktop.StructuresMissing;
    state.BasicScanDone = BasicScanDone != 0;
    state.TurboScanUsed = Desktop.TurboScanUsed;
    return state;
}

void CMainFrame::UpdateCommands() {
    const FrameState state = State();
    for (const auto& [command, action] : actions_) {
        action->setEnabled(CommandEnabled(command, state));
    }
    ActionOf(kCmdViewToolbar)->setChecked(!toolbar_->isHidden());
    ActionOf(kCmdViewStatusBar)->setChecked(!statusBar()->isHidden());
    ActionOf(ViewMode)->setChecked(true);
    const Qt::CursorShape shape = state.ScanRunning ? Qt::WaitCursor : Qt::ArrowCursor;
    if (splitter_->cursor().shape() != shape) {
        splitter_->setCursor(shape);
        logPane_->setCursor(shape);
    }
}

void CMainFrame::ClearViews() {
    TreeView->Clear();
    ListView->Clear();
    Desktop.TotalFiles = 0;
    Desktop.TotalFolders = 0;
    Desktop.TotalBytes = 0;
    Panes[1]->setText(QLatin1String(kNoTotalsText));
    Panes[2]->clear(); // the marks went with the folders
}

void CMainFrame::UpdateTotals(Totals what) {
    if (what == Totals::All) {
        Panes[1]->setText(
            QString::fromStdString(TotalsText(Desktop.TotalBytes, Desktop.TotalFiles, Desktop.TotalFolders)));
    } else {
        Panes[2]->setText(QString::fromStdString(
            MarkedText(Desktop.MarkedBytes, Desktop.MarkedFiles, Desktop.MarkedFolders)));
    }
}

// Prompts of commands go to pane 0 and leave the other panes and a running job's bar alone.
bool CMainFrame::event(QEvent* event) {
    if (event->type() != QEvent::StatusTip) {
        return QMainWindow::event(event);
    }
    const QString tip = static_cast<QStatusTipEvent*>(event)->tip();
    if (!ProgressBar) {
        const QString idle = notice_.isEmpty() ? QStringLiteral("Ready") : notice_;
        Panes[0]->setText(tip.isEmpty() ? idle : tip);
    }
    return true;
}

void CMainFrame::TellNotBuilt(const QString& what) {
    constexpr int kNoticeMilliseconds = 6000;
    notice_ =
        what.isEmpty() ? QString() : what + QStringLiteral(" is not built into the desktop program yet.");
    QStatusTipEvent idle{QString()};
    event(&idle);
    if (!what.isEmpty()) {
        noticeTimer_.start(kNoticeMilliseconds);
    }
}

void CMainFrame::focusInEvent(QFocusEvent* event) {
    QMainWindow::focusInEvent(event);
    TreeView->setFocus();
}

} // namespace thntfs
