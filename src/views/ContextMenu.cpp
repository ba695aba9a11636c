#include "views/ContextMenu.h"

#include "shell/WindowMessages.h"

#include <QCoreApplication>
#include <QMenu>
#include <QTimer>
#include <utility>

namespace thntfs {

namespace {

bool previewWindowOpen = false;

const WindowMessage<std::uint32_t>& MessageOf(int command) {
    switch (command) {
    case kCommandPreview:
        return WM_SHOW_PREVIEW;
    case kCommandSearch:
        return WM_FIND_FROM_VIEW;
    default:
        return WM_SHOW_PROPERTIES;
    }
}

// A dialog may follow, in which the menu goes: it must have ended before.
void Order(QWidget* owner, int command, std::uint32_t entryId, const std::function<void()>& save) {
    QTimer::singleShot(0, owner, [command, entryId, save] {
        if (command == kCommandSave) {
            save();
        } else {
            MessageOf(command).Send(MainWindow(), entryId);
        }
    });
}

} // namespace

void OpenContextMenu(QWidget* owner, const QPoint& at, const ContextMenuChoice& choice, std::uint32_t entryId,
                     std::function<void()> save, const std::vector<ContextMenuLine>& more) {
    auto* menu = new QMenu(owner);
    const auto add = [menu](const QString& text, int command, bool enabled) {
        QAction* action = menu->addAction(text);
        action->setData(command);
        action->setEnabled(enabled);
        return action;
    };
    menu->setDefaultAction(add(QCoreApplication::translate("ContextMenu", "&Save"), kCommandSave, true));
    add(QCoreApplication::translate("ContextMenu", "&Preview"), kCommandPreview, choice.Preview);
    add(QCoreApplication::translate("ContextMenu", "S&earch"), kCommandSearch, choice.Search);
    menu->addSeparator();
    add(QCoreApplication::translate("ContextMenu", "P&roperties"), kCommandProperties, choice.Properties);
    QObject::connect(menu, &QMenu::triggered, owner,
                     [owner, entryId, save = std::move(save)](const QAction* action) {
                         if (action->data().isValid()) {
                             Order(owner, action->data().toInt(), entryId, save);
                         }
                     });
    if (!more.empty()) {
        menu->addSeparator();
    }
    for (const ContextMenuLine& line : more) {
        QObject::connect(menu->addAction(line.Text), &QAction::triggered, owner, line.Act);
    }
    QObject::connect(menu, &QMenu::aboutToHide, menu, &QObject::deleteLater);
    menu->popup(at);
}

bool PreviewWindowOpen() { return previewWindowOpen; }
void SetPreviewWindowOpen(bool open) { previewWindowOpen = open; }

} // namespace thntfs
