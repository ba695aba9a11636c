#include "views/ContextMenu.h"

#include <QMenu>
#include <utility>

namespace thntfs {

namespace {

bool previewWindowOpen = false;

} // namespace

void OpenContextMenu(QWidget* owner, const QPoint& at, const ContextMenuChoice& choice,
                     std::function<void(int command)> run) {
    auto* menu = new QMenu(owner);
    const auto add = [menu](const QString& text, int command, bool enabled) {
        QAction* action = menu->addAction(text);
        action->setData(command);
        action->setEnabled(enabled);
        return action;
    };
    menu->setDefaultAction(add(QStringLiteral("&Save"), kCommandSave, true));
    add(QStringLiteral("&Preview"), kCommandPreview, choice.Preview);
    add(QStringLiteral("S&earch"), kCommandSearch, choice.Search);
    menu->addSeparator();
    add(QStringLiteral("P&roperties"), kCommandProperties, choice.Properties);
    QObject::connect(menu, &QMenu::triggered, owner,
                     [run = std::move(run)](const QAction* action) { run(action->data().toInt()); });
    QObject::connect(menu, &QMenu::aboutToHide, menu, &QObject::deleteLater);
    menu->popup(at);
}

bool PreviewWindowOpen() { return previewWindowOpen; }
void SetPreviewWindowOpen(bool open) { previewWindowOpen = open; }

} // namespace thntfs
