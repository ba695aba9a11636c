#include "frame/CommandSet.h"

#include "frame/CommandIds.h"
#include "frame/CommandTable.h"
#include "shell/Icons.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>
#include <algorithm>
#include <array>

namespace thntfs {

namespace {

constexpr std::array<int, 4> kToolbarPixels{16, 24, 32, 48};
constexpr int kUsualPixels = 32;

// A text of the command table in the user's language; many are empty.
QString Translated(const char* text) {
    return *text == '\0' ? QString() : QCoreApplication::translate("CommandTable", text);
}

// A text and its key, as a menu line has them. Keys are the same in all languages.
QString MenuPart(const char* text) {
    return *text == '\t' ? QString() : Translated(text).section(QLatin1Char('\t'), 0, 0);
}
QString KeyPart(const char* text) { return QString::fromLatin1(text).section(QLatin1Char('\t'), 1); }

bool IsViewMode(std::uint32_t command) { return command >= kCmdLargeIcons && command <= kCmdDetails; }

bool IsSizeForm(std::uint32_t command) { return command == kCmdSizesInBytes || command == kCmdSizesInUnits; }

bool IsChecked(std::uint32_t command) {
    return command == kCmdViewToolbar || command == kCmdViewStatusBar || command == kCmdListNameless ||
           IsViewMode(command) || IsSizeForm(command);
}

// The number is the line's key; a path may have the sign of one in it.
QString RecentText(std::size_t number, QString path) {
    constexpr qsizetype kMostLetters = 60;
    if (path.size() > kMostLetters) {
        path = path.left(kMostLetters / 3) + QStringLiteral("…") + path.right(kMostLetters * 2 / 3);
    }
    return QStringLiteral("&%1 ").arg(number + 1) + path.replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

CommandSet::CommandSet(QMainWindow& window, const Runner& run)
    : window_(window) {
    CreateActions(run);
    CreateMenus();
    CreateToolbar();
}

void CommandSet::CreateActions(const Runner& run) {
    auto* viewModes = new QActionGroup(&window_);
    auto* sizeForms = new QActionGroup(&window_);
    for (const CommandText& text : AllCommands()) {
        auto* action = new QAction(MenuPart(text.Menu), &window_);
        action->setShortcut(QKeySequence::fromString(KeyPart(text.Menu), QKeySequence::PortableText));
        action->setStatusTip(Translated(text.Prompt));
        action->setToolTip(Translated(text.ToolTip));
        action->setCheckable(IsChecked(text.Id));
        action->setData(text.Id);
        if (*text.Icon != '\0') {
            action->setIcon(LoadIcon(text.Icon));
        }
        if (IsViewMode(text.Id)) {
            viewModes->addAction(action);
        } else if (IsSizeForm(text.Id)) {
            sizeForms->addAction(action);
        }
        QObject::connect(action, &QAction::triggered, &window_, [run, id = text.Id] { run(id); });
        window_.addAction(action); // its key works though it may stand in no menu
        actions_[text.Id] = action;
    }
}

void CommandSet::CreateMenus() {
    window_.menuBar()->setAccessibleName(tr("Menu bar"));
    for (const MenuText& text : AllMenus()) {
        QMenu* top = window_.menuBar()->addMenu(Translated(text.Title));
        QMenu* menu = top;
        for (const MenuLine& line : text.Lines) {
            switch (line.What) {
            case MenuLine::Kind::Command:
                menu->addAction(actions_.at(line.Command));
                break;
            case MenuLine::Kind::Separator:
                menu->addSeparator();
                break;
            case MenuLine::Kind::Submenu:
                menu = top->addMenu(Translated(line.Title));
                menu->menuAction()->setStatusTip(Translated(line.Prompt));
                break;
            case MenuLine::Kind::EndSubmenu:
                menu = top;
                break;
            }
        }
    }
}

void CommandSet::CreateToolbar() {
    toolbar_ = window_.addToolBar(tr("ToolBar"));
    toolbar_->setObjectName(QStringLiteral("ToolBar"));
    toolbar_->setAccessibleName(tr("Toolbar"));
    toolbar_->setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(toolbar_, &QToolBar::customContextMenuRequested, &window_,
                     [this](const QPoint& at) { OfferToolbarSizes(toolbar_->mapToGlobal(at)); });
    for (const std::uint32_t command : ToolbarCommands()) {
        if (command == 0) {
            toolbar_->addSeparator();
        } else {
            toolbar_->addAction(actions_.at(command));
        }
    }
    SetToolbarPixels(kUsualPixels);
}

void CommandSet::OfferToolbarSizes(const QPoint& at) {
    auto* menu = new QMenu(&window_);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (std::uint32_t command = kCmdToolbar16; command <= kCmdToolbar48; ++command) {
        menu->addAction(actions_.at(command));
    }
    menu->popup(at);
}

void CommandSet::Update(const FrameState& state, std::uint32_t viewMode) {
    for (const auto& [command, action] : actions_) {
        action->setEnabled(CommandEnabled(command, state));
    }
    actions_.at(kCmdViewToolbar)->setChecked(!toolbar_->isHidden());
    actions_.at(kCmdViewStatusBar)->setChecked(!window_.statusBar()->isHidden());
    actions_.at(kCmdListNameless)->setChecked(state.ListsNameless);
    actions_.at(state.SizesInUnits ? kCmdSizesInUnits : kCmdSizesInBytes)->setChecked(true);
    actions_.at(viewMode)->setChecked(true);
}

void CommandSet::ShowRecent(const QStringList& paths) {
    for (std::uint32_t i = 0; i < kRecentCommands; ++i) {
        QAction* action = actions_.at(kCmdRecent + i);
        const QString path = paths.value(i);
        action->setText(path.isEmpty() ? QString() : RecentText(i, path));
        action->setStatusTip(path);
        action->setVisible(!path.isEmpty());
    }
}

void CommandSet::ToggleToolbar() { toolbar_->setVisible(toolbar_->isHidden()); }

void CommandSet::ToggleStatusBar() { window_.statusBar()->setVisible(window_.statusBar()->isHidden()); }

void CommandSet::SetToolbarPixels(int pixels) {
    const bool offered =
        std::find(kToolbarPixels.begin(), kToolbarPixels.end(), pixels) != kToolbarPixels.end();
    const int size = offered ? pixels : kUsualPixels;
    toolbar_->setIconSize(QSize(size, size));
}

void CommandSet::SetToolbarPixelsBy(std::uint32_t command) {
    SetToolbarPixels(kToolbarPixels.at(command - kCmdToolbar16));
}

int CommandSet::ToolbarPixels() const { return toolbar_->iconSize().width(); }

} // namespace thntfs
