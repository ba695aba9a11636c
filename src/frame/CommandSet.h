#pragma once

#include "frame/CommandRules.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <map>

class QAction;
class QMainWindow;
class QPoint;
class QToolBar;

namespace thntfs {

/// The commands as a window shows them: an action each with its key, the menus, the toolbar, and what of it
/// is enabled and marked.
class CommandSet {
    Q_DECLARE_TR_FUNCTIONS(CommandSet)

public:
    using Runner = std::function<void(std::uint32_t command)>;

    /// All is made within the window and belongs to it; `run` is called with the number of what the user has
    /// chosen.
    CommandSet(QMainWindow& window, const Runner& run);

    /// Enables what the state allows; `viewMode` is the list's command that is marked.
    void Update(const FrameState& state, std::uint32_t viewMode);

    /// Offers what was opened before, newest first.
    void ShowRecent(const QStringList& paths);

    void ToggleToolbar();
    void ToggleStatusBar();

    /// Side of the toolbar's icons; a number that isn't offered means 32.
    void SetToolbarPixels(int pixels);
    void SetToolbarPixelsBy(std::uint32_t command);
    [[nodiscard]] int ToolbarPixels() const;

private:
    void CreateActions(const Runner& run);
    void CreateMenus();
    void CreateToolbar();
    void OfferToolbarSizes(const QPoint& at);

    QMainWindow& window_;
    std::map<std::uint32_t, QAction*> actions_;
    QToolBar* toolbar_ = nullptr;
};

} // namespace thntfs
