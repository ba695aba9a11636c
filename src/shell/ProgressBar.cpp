#include "shell/ProgressBar.h"

#include <QEvent>
#include <algorithm>

namespace thntfs {

CProgressBar::CProgressBar(QLabel* pane, const QString& message, int percentOfPane, int maximum)
    : QProgressBar(pane)
    , percentOfPane_(percentOfPane) {
    setAccessibleName(tr("Progress"));
    setRange(0, maximum);
    setValue(0);
    setTextVisible(false); // the percent stands in the pane
    setMinimumSize(0, 0);  // the room of the pane counts, not what the style would like
    pane->installEventFilter(this);
    show();
    SetText(message);
}

CProgressBar::~CProgressBar() {
    if (QLabel* pane = Pane()) {
        hide();
        pane->setText(tr("Ready"));
    }
}

void CProgressBar::SetText(const QString& message) {
    message_ = message;
    Pane()->setText(message);
    Place();
}

void CProgressBar::SetPos(int position) {
    show();
    setValue(position);
    Pane()->repaint(); // a job on the interface thread runs no event loop
}

bool CProgressBar::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (watched == parent() && (type == QEvent::Resize || type == QEvent::FontChange)) {
        Place();
    }
    return QProgressBar::eventFilter(watched, event);
}

void CProgressBar::Place() { setGeometry(FreeRoom()); }

QRect CProgressBar::FreeRoom() const {
    const QFontMetrics metrics = Pane()->fontMetrics();
    QRect room = Pane()->contentsRect();
    if (!message_.isEmpty()) {
        const int text =
            metrics.horizontalAdvance(message_) + 4 * metrics.horizontalAdvance(QLatin1Char(' '));
        room.setLeft(room.left() + Pane()->margin() + text);
    }
    const int width = std::max(0, room.width());
    room.setWidth(width - width * (100 - percentOfPane_) / 100);
    const int edge = room.height() / 10;
    return room.adjusted(0, edge, 0, -edge);
}

} // namespace thntfs
