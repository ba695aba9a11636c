#pragma once

#include "shell/WaitCursor.h"

#include <QElapsedTimer>
#include <QObject>

namespace thntfs {

/// A long work of the interface thread, from here to the end of the block: the hourglass shows, windows are
/// painted, what the user does with keys and mouse goes nowhere, and Escape asks for the work's end.
class EscapeWatch : private QObject {
public:
    EscapeWatch();
    ~EscapeWatch() override;
    EscapeWatch(const EscapeWatch&) = delete;
    EscapeWatch& operator=(const EscapeWatch&) = delete;

    /// To be called now and then. False once Escape was pressed or the program was told to end.
    bool MayGoOn();

    /// True while there is one.
    static bool Stands();

private:
    bool eventFilter(QObject* watched, QEvent* event) override;

    WaitCursor cursor_;
    QElapsedTimer sinceLook_;
    bool escaped_ = false;
};

} // namespace thntfs
