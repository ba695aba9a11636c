#include "shell/EscapeWatch.h"

#include "platform/system/Interrupt.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace thntfs {

namespace {

constexpr int kLookMilliseconds = 50;
int watchesStanding = 0;

bool IsOfTheUser(QEvent::Type type) {
    switch (type) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::ShortcutOverride:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::DragEnter:
    case QEvent::Drop:
    case QEvent::Close:
        return true;
    default:
        return false;
    }
}

} // namespace

EscapeWatch::EscapeWatch() {
    ++watchesStanding;
    sinceLook_.start();
    QCoreApplication::instance()->installEventFilter(this);
}

EscapeWatch::~EscapeWatch() { --watchesStanding; }

bool EscapeWatch::MayGoOn() {
    if (sinceLook_.elapsed() >= kLookMilliseconds) {
        QCoreApplication::processEvents();
        sinceLook_.start();
    }
    return !escaped_ && !WasInterrupted();
}

bool EscapeWatch::Stands() { return watchesStanding != 0; }

bool EscapeWatch::eventFilter(QObject* /*watched*/, QEvent* event) {
    if (!IsOfTheUser(event->type())) {
        return false;
    }
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        escaped_ = true;
    }
    event->ignore(); // a window that is to close stays
    return true;
}

} // namespace thntfs
