// The making of the main window, and what it keeps from run to run.

#include "frame/CommandIds.h"
#include "frame/CommandTable.h"
#include "frame/MainFrame.h"
#include "frame/StatusTexts.h"
#include "shell/Icons.h"
#include "shell/Settings.h"
#include "shell/StatusPane.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QMenuBar>
#include <QStatusBar>

namespace thntfs {

namespace {

constexpr int kTreeWidth = 250;
constexpr int kListWidth = 650;
constexpr int kLogHeight = 120;
constexpr int kSplitterWidth = 4;
constexpr int kToolbarIcon = 32;

// Widths of the status panes in blanks. The first one stretches, and always has room for a job's text and
// bar.
constexpr std::array<int, CMainFrame::kPanes> kPaneBlanks{58, 92, 117};
constexpr std::array<int, CMainFrame::kPanes> kLeastPaneBlanks{58, 78, 62};

// A text and its key, as a menu line has them.
QString MenuPart(const char* text) { return QString::fromLatin1(text).section(QLatin1Char('\t'), 0, 0); }
QString KeyPart(const char* text) { return QString::fromLatin1(text).section(QLatin1Char('\t'), 1); }

bool IsChecked(std::uint32_t command) {
    return command == kCmdViewToolbar || command == kCmdViewStatusBar ||
           (command >= kCmdLargeIcons && command <= kCmdDetails);
}

} // namespace

CMainFrame::CMainFrame() {
    SetMainWindow(this);
    setWindowTitle(QLatin1String(kProgramName));
    setWindowIcon(LoadIcon("app"));
    setFocusPolicy(Qt::StrongFocus);
    setAcceptDrops(true);
    CreateViews();
    CreateActions();
    CreateMenus();
    CreateToolbar();
    CreateStatusBar();
    CreateLogPane();
    SetTheme(kCmdThemeOffice2003);
    RestoreSettings();
    noticeTimer_.setSingleShot(true);
    connect(&noticeTimer_, &QTimer::timeout, this, [this] { TellNotBuilt({}); });
    WatchForEnd();
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            [this] { UpdateCommands(); });
    UpdateCommands();
}

CMainFrame::~CMainFrame() {
    worker_.reset();
    SetMainWindow(nullptr);
}

void CMainFrame::CreateViews() {
    splitter_ = new QSplitter(Qt::Horizontal, this);
    splitter_->setHandleWidth(kSplitterWidth);
    splitter_->setChildrenCollapsible(false);
    TreeView = new CTHNTFSTreeView(splitter_);
    ListView = new CTHNTFSListView(splitter_);
    TreeView->SetListView(ListView);
    ListView->SetTreeView(TreeView);
    splitter_->setStretchFactor(1, 1);
    splitter_->setSizes({kTreeWidth, kListWidth});
    setCentralWidget(splitter_);
}

void CMainFrame::CreateActions() {
    auto* viewModes = new QActionGroup(this);
    for (const CommandText& text : AllCommands()) {
        auto* action = new QAction(MenuPart(text.Menu), this);
        action->setShortcut(QKeySequence(KeyPart(text.Menu)));
        action->setStatusTip(QLatin1String(text.Prompt));
        action->setToolTip(QLatin1String(text.ToolTip));
        action->setCheckable(IsChecked(text.Id));
        action->setData(text.Id);
        if (*text.Icon != '\0') {
            action->setIcon(LoadIcon(text.Icon));
        }
        if (text.Id >= kCmdLargeIcons && text.Id <= kCmdDetails) {
            viewModes->addAction(action);
        }
        connect(action, &QAction::triggered, this, [this, id = text.Id] { RunCommand(id); });
        addAction(action); // its key works though it may stand in no menu
        actions_[text.Id] = action;
    }
}

void CMainFrame::CreateMenus() {
    menuBar()->setAccessibleName(QStringLiteral("Menu bar"));
    for (const MenuText& text : AllMenus()) {
        QMenu* top = menuBar()->addMenu(QLatin1String(text.Title));
        QMenu* menu = top;
        for (const MenuLine& line : text.Lines) {
            switch (line.What) {
            case MenuLine::Kind::Command:
                menu->addAction(ActionOf(line.Command));
                break;
            case MenuLine::Kind::Separator:
                menu->addSeparator();
                break;
            case MenuLine::Kind::Submenu:
                menu = top->addMenu(QLatin1String(line.Title));
                menu->menuAction()->setStatusTip(QLatin1String(line.Prompt));
                break;
            case MenuLine::Kind::EndSubmenu:
                menu = top;
                break;
            }
        }
    }
}

void CMainFrame::CreateToolbar() {
    toolbar_ = addToolBar(QStringLiteral("ToolBar"));
    toolbar_->setObjectName(QStringLiteral("ToolBar"));
    toolbar_->setAccessibleName(QStringLiteral("Toolbar"));
    toolbar_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(toolbar_, &QToolBar::customContextMenuRequested, this,
            [this](const QPoint& at) { OfferToolbarSizes(toolbar_->mapToGlobal(at)); });
    for (const std::uint32_t command : ToolbarCommands()) {
        if (command == 0) {
            toolbar_->addSeparator();
        } else {
            toolbar_->addAction(ActionOf(command));
        }
    }
    SetToolbarSize(kToolbarIcon);
}

void CMainFrame::OfferToolbarSizes(const QPoint& at) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (std::uint32_t command = kCmdToolbar16; command <= kCmdToolbar48; ++command) {
        menu->addAction(ActionOf(command));
    }
    menu->popup(at);
}

void CMainFrame::CreateStatusBar() {
    statusBar()->setAccessibleName(QStringLiteral("Status bar"));
    for (std::size_t i = 0; i < kPanes; ++i) {
        Panes[i] = new CStatusPane(kPaneBlanks[i], kLeastPaneBlanks[i], statusBar());
        statusBar()->addPermanentWidget(Panes[i], i == 0 ? 1 : 0);
    }
    Panes[0]->setMinimumWidth(Panes[0]->sizeHint().width());
    Panes[0]->setText(QStringLiteral("Ready"));
    Panes[1]->setText(QLatin1String(kNoTotalsText));
}

void CMainFrame::CreateLogPane() {
    LogList = new CProcessLogList(this);
    LogList->SetTabTarget(TreeView);
    TreeView->SetBackTabTarget(LogList);
    logPane_ = new QDockWidget(QStringLiteral("Process Log"), this);
    logPane_->setObjectName(QStringLiteral("ProcessLog"));
    logPane_->setFeatures(QDockWidget::NoDockWidgetFeatures);
    logPane_->setWidget(LogList);
    addDockWidget(Qt::BottomDockWidgetArea, logPane_);
    resizeDocks({logPane_}, {kLogHeight}, Qt::Vertical);
}

QAction* CMainFrame::ActionOf(std::uint32_t command) const {
    const auto found = actions_.find(command);
    return found == actions_.end() ? nullptr : found->second;
}

void CMainFrame::RestoreSettings() {
    const QSettings settings = OpenSettings();
    restoreGeometry(settings.value(QStringLiteral("Window/Geometry")).toByteArray());
    restoreState(settings.value(QStringLiteral("Window/State")).toByteArray());
    splitter_->restoreState(settings.value(QStringLiteral("Window/Splitter")).toByteArray());
    const int pixels = settings.value(QStringLiteral("Window/ToolbarIcons"), kToolbarIcon).toInt();
    SetToolbarSize(pixels);
    SetViewMode(settings.value(QStringLiteral("Window/ViewMode"), kCmdDetails).toUInt());
}

void CMainFrame::SaveSettings() const {
    QSettings settings = OpenSettings();
    settings.setValue(QStringLiteral("Window/Geometry"), saveGeometry());
    settings.setValue(QStringLiteral("Window/State"), saveState());
    settings.setValue(QStringLiteral("Window/Splitter"), splitter_->saveState());
    settings.setValue(QStringLiteral("Window/ToolbarIcons"), toolbar_->iconSize().width());
    settings.setValue(QStringLiteral("Window/ViewMode"), ViewMode);
}

} // namespace thntfs
