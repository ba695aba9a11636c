#pragma once

#include <QPoint>
#include <QString>
#include <cstdint>
#include <functional>
#include <vector>

class QWidget;

namespace thntfs {

inline constexpr int kCommandSave = 32825;
inline constexpr int kCommandPreview = 32826;
inline constexpr int kCommandProperties = 32827;
inline constexpr int kCommandSearch = 32828;

/// Which commands of the context menu can be chosen. "Save" always can.
struct ContextMenuChoice {
    bool Preview = false;
    bool Search = true;
    bool Properties = true;
};

/// A line below those that every menu has.
struct ContextMenuLine {
    QString Text;
    std::function<void()> Act;
};

/// Opens the context menu of an entry at a place of the screen and returns. What is chosen later goes to the
/// main frame, but for "Save", which calls `save`. The menu belongs to `owner` and goes when it closes.
void OpenContextMenu(QWidget* owner, const QPoint& at, const ContextMenuChoice& choice, std::uint32_t entryId,
                     std::function<void()> save, const std::vector<ContextMenuLine>& more = {});

/// True while a window shows the content of a file; one at a time is enough.
bool PreviewWindowOpen();
void SetPreviewWindowOpen(bool open);

} // namespace thntfs
