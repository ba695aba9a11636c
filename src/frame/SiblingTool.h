#pragma once

#include "frame/SiblingSocket.h"

#include <QObject>
#include <QPointer>

class QProcess;
class QWidget;

namespace thntfs {

/// The name that the sibling tool gets to find the main window by: that of its socket.
// NOLINTNEXTLINE(readability-identifier-naming): so both programs call it
inline constexpr const char* FrameClassName = "THNTFSMainFrame";

/// Starts the program for updates, beside this one, and leaves it alone. Gives what to tell the user where
/// that fails, empty where not.
QString StartUpdate();

/// The sibling tool, a program of its own beside this one. The frame is hidden while it runs and comes back
/// when it calls back, or when it ends without having done so.
class SiblingTool {
public:
    /// The frame is the caller's and lives longer.
    explicit SiblingTool(QWidget& frame);
    /// Tells the tool to close, if it has told its name.
    ~SiblingTool();
    SiblingTool(const SiblingTool&) = delete;
    SiblingTool& operator=(const SiblingTool&) = delete;

    /// Starts it and hides the frame. Gives what to tell the user where that fails, empty where not.
    QString Start();

private:
    void TakeRecord(const SiblingRecord& record);
    void TakeEnd(const QProcess* process);
    void BringFrameBack();

    QWidget& frame_;
    // NOLINTNEXTLINE(readability-identifier-naming)
    QString SiblingClassName; ///< what the tool listens under; empty until it has told so, then never again
    SiblingSocket socket_;
    QPointer<QProcess> latest_;
    bool frameIsAway_ = false;
    QObject context_; ///< goes first, and with it what would call back
};

} // namespace thntfs
