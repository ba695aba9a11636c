#pragma once

#include <QCursor>
#include <QGuiApplication>

namespace thntfs {

/// The hourglass from here to the end of the block, for what keeps the interface thread from its windows.
class WaitCursor {
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

} // namespace thntfs
