// The making of the main window, and the way of messages through it.

#include "frame/MainFrame.h"

#include "content/TargetRules.h"
#include "engine/EngineState.h"
#include "properties/PropertiesSheet.h"
#include "shell/DesktopState.h"
#include "shell/Icons.h"
#include "shell/ProcessLogList.h"
#include "shell/Settings.h"
#include "views/ContextMenu.h"
#include "views/ListPane.h"
#include "views/THNTFSListView.h"
#include "views/THNTFSTreeView.h"

#include <QAbstractEventDispatcher>
#include <QDockWidget>
#include <QSplitter>
#include <QStatusBar>
#include <QStatusTipEvent>
#include <utility>

namespace thntfs {

namespace {

constexpr int kTreeWidth = 250;
constexpr int kListWidth = 650;
constexpr int kLogHeight = 120;
constexpr int kSplitterWidth = 4;

} // namespace

CMainFrame::CMainFrame()
    : splitter_(new QSplitter(Qt::Horizontal, this))
    , treeView_(new CTHNTFSTreeView(splitter_))
    , listPane_(new CListPane(splitter_, *treeView_))
    , listView_(listPane_->List())
    , logList_(new CProcessLogList(this))
    , logPane_(new QDockWidget(tr("Process Log"), this))
    , commands_(*this, [this](std::uint32_t command) { RunCommand(command); })
    , panes_(statusBar())
    , find_(*treeView_, *listView_)
    , scanInfo_(*this, recent_)
    , job_(*this, panes_)
    , previews_([this] { SetPreviewWindowOpen(previews_.AnyOpen()); })
    , scans_(job_, *this, *treeView_, panes_)
    , saves_(job_, *this, panes_, *this)
    , lists_(job_, *this, panes_, *this) {
    SetMainWindow(this);
    setWindowTitle(QLatin1String(kProgramName));
    setWindowIcon(LoadIcon("app"));
    setFocusPolicy(Qt::StrongFocus);
    setAcceptDrops(true);
    LayOutViews();
    LayOutLog();
    UseTheme(themeIndex_);
    RestoreSettings();
    WatchForEnd();
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            [this] { UpdateCommands(); });
    UpdateCommands();
}

CMainFrame::~CMainFrame() {
    job_.WaitForWorker();
    SetMainWindow(nullptr);
}

void CMainFrame::LayOutViews() {
    treeView_->setObjectName(QStringLiteral("TreeView"));
    listView_->setObjectName(QStringLiteral("ListView"));
    splitter_->setHandleWidth(kSplitterWidth);
    splitter_->setChildrenCollapsible(false);
    treeView_->SetListView(listView_);
    listView_->SetTreeView(treeView_);
    splitter_->setStretchFactor(1, 1);
    splitter_->setSizes({kTreeWidth, kListWidth});
    setCentralWidget(splitter_);
}

void CMainFrame::LayOutLog() {
    logList_->setObjectName(QStringLiteral("LogList"));
    logList_->SetTabTarget(treeView_);
    treeView_->SetBackTabTarget(logList_);
    logPane_->setObjectName(QStringLiteral("ProcessLog"));
    logPane_->setFeatures(QDockWidget::NoDockWidgetFeatures);
    logPane_->setWidget(logList_);
    addDockWidget(Qt::BottomDockWidgetArea, logPane_);
    resizeDocks({logPane_}, {kLogHeight}, Qt::Vertical);
}

void CMainFrame::RestoreSettings() {
    const QSettings settings = OpenSettings();
    restoreGeometry(settings.value(QStringLiteral("Window/Geometry")).toByteArray());
    restoreState(settings.value(QStringLiteral("Window/State")).toByteArray());
    splitter_->restoreState(settings.value(QStringLiteral("Window/Splitter")).toByteArray());
    commands_.SetToolbarPixels(settings.value(QStringLiteral("Window/ToolbarIcons")).toInt());
    SetViewMode(settings.value(QStringLiteral("Window/ViewMode"), kCmdDetails).toUInt());
    listView_->SetSizesInUnits(settings.value(QStringLiteral("Window/SizesInUnits")).toBool());
}

void CMainFrame::SaveSettings() const {
    QSettings settings = OpenSettings();
    settings.setValue(QStringLiteral("Window/Geometry"), saveGeometry());
    settings.setValue(QStringLiteral("Window/State"), saveState());
    settings.setValue(QStringLiteral("Window/Splitter"), splitter_->saveState());
    settings.setValue(QStringLiteral("Window/ToolbarIcons"), commands_.ToolbarPixels());
    settings.setValue(QStringLiteral("Window/ViewMode"), viewMode_);
    settings.setValue(QStringLiteral("Window/SizesInUnits"), listView_->SizesInUnits());
}

std::intptr_t CMainFrame::OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t lParam) {
    switch (message) {
    case WM_SHOW_TIPS:
        ShowTip();
        break;
    case WM_LOG_EVENT:
        return WM_LOG_ADD.Send(logList_, WM_LOG_EVENT.First(wParam));
    case WM_COPY_POSITION:
        PassCopyPosition(WM_COPY_POSITION.First(wParam), WM_COPY_POSITION.Second(lParam));
        break;
    case WM_COPY_EVENT:
        WM_LOG_ADD.Send(logList_, job_.EntryOf(WM_COPY_EVENT.First(wParam), WM_COPY_EVENT.Second(lParam)));
        break;
    case WM_START_BASIC_SCAN:
        StartBasicScan();
        break;
    case WM_JOB_FINISHED:
        FinishJob(WM_JOB_FINISHED.First(wParam));
        break;
    case WM_JOB_FAILED:
        job_.EndFailed();
        scans_.NoteEnd();
        UpdateCommands();
        break;
    case WM_JOB_PROGRESS:
        panes_.ShowProgress();
        scans_.ShowProgress();
        saves_.ShowProgress();
        break;
    case WM_PROGRESS_CAPTION:
        panes_.SetPhase(WM_PROGRESS_CAPTION.First(wParam));
        break;
    case WM_UPDATE_TOTALS:
        TakeTotals(WM_UPDATE_TOTALS.First(wParam));
        break;
    case WM_SAVE_REQUEST:
        saves_.Begin();
        break;
    case WM_SAVE_NAME:
        saves_.AskName(WM_SAVE_NAME.First(wParam));
        break;
    case WM_SHOW_PROPERTIES:
        if (job_.MayStartWork()) {
            CPropertiesSheet(this, WM_SHOW_PROPERTIES.First(wParam)).exec();
        }
        break;
    case WM_FIND_FROM_VIEW:
        SearchFrom(WM_FIND_FROM_VIEW.First(wParam));
        break;
    case WM_SHOW_PREVIEW:
        if (job_.MayStartWork()) {
            previews_.ShowPreview(WM_SHOW_PREVIEW.First(wParam));
        }
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

// Prompts of commands go to pane 0 and leave the other panes and a running job's bar alone.
bool CMainFrame::event(QEvent* event) {
    if (event->type() != QEvent::StatusTip) {
        return QMainWindow::event(event);
    }
    panes_.ShowPrompt(static_cast<QStatusTipEvent*>(event)->tip());
    return true;
}

void CMainFrame::focusInEvent(QFocusEvent* event) {
    QMainWindow::focusInEvent(event);
    treeView_->setFocus();
}

void CMainFrame::ClearViews() {
    folder_.End(); // it shows the catalogue that goes
    find_.Forget();
    treeView_->Clear();
    listView_->Clear();
    Desktop.TotalFiles = 0;
    Desktop.TotalFolders = 0;
    Desktop.TotalBytes = 0;
    panes_.ForgetTotals();
    panes_.ClearMarked(); // the marks went with the folders
}

// Those of all come with the folders of another volume.
void CMainFrame::TakeTotals(Totals what) {
    panes_.ShowTotals(what);
    if (what == Totals::All) {
        listPane_->TakeVolume();
    }
}

void CMainFrame::BeginBasicScan() {
    ClearViews();
    panes_.ShowTotals(Totals::All);
    find_.Forget();
    cataloguePlace_.KeepAwayFrom(SourceMediumPath());
    job_.SetRunning();
    scanInfo_.NoteBasicScan();
    StartBasicScan();
}

void CMainFrame::StartBasicScan() {
    scans_.StartBasicScan();
    UpdateCommands();
}

void CMainFrame::StartTurboScan() {
    cataloguePlace_.KeepAwayFrom(SourceMediumPath());
    job_.SetRunning();
    scanInfo_.NoteTurboScan();
    panes_.ForgetTotals();
    find_.Forget();
    scans_.StartTurboScan(logicalDriveNumber_);
    UpdateCommands();
}

void CMainFrame::SaveEntries(std::vector<std::uint32_t> entryIds) {
    if (Desktop.WaitDialog == nullptr) {
        Engine.MarkedEntries = std::move(entryIds);
        saves_.Begin();
    }
}

void CMainFrame::FinishJob(FinishedJob kind) {
    job_.TellFinished(kind == FinishedJob::Save ? saves_.EndText() : FinishedText(kind));
    if (kind == FinishedJob::List) {
        panes_.ShowNotice(lists_.EndText());
    }
    if (!ending_) {
        showMaximized();
    }
    job_.ReturnToIdle();
    scans_.NoteEnd();
    UpdateCommands();
    panes_.ClearMarked();
}

} // namespace thntfs
