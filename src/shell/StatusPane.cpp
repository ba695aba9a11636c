#include "shell/StatusPane.h"

#include "shell/TipText.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>
#include <algorithm>

namespace thntfs {

namespace {

constexpr int kTextMargin = 3;

} // namespace

CStatusPane::CStatusPane(int wantedBlanks, int leastBlanks, QWidget* parent)
    : QLabel(parent)
    , wantedBlanks_(wantedBlanks)
    , leastBlanks_(leastBlanks) {
    setTextFormat(Qt::PlainText);
    setFrameStyle(QFrame::Panel | QFrame::Sunken);
}

QSize CStatusPane::sizeHint() const { return {WidthOf(wantedBlanks_), QLabel::sizeHint().height()}; }

QSize CStatusPane::minimumSizeHint() const {
    const int whole = fontMetrics().horizontalAdvance(text()) + Edges();
    return {std::min(whole, WidthOf(leastBlanks_)), QLabel::minimumSizeHint().height()};
}

int CStatusPane::WidthOf(int blanks) const {
    return fontMetrics().horizontalAdvance(QString(blanks, QLatin1Char(' ')));
}

int CStatusPane::Edges() const { return 2 * (frameWidth() + kTextMargin); }

bool CStatusPane::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const bool cut = fontMetrics().horizontalAdvance(text()) + Edges() > width();
        setToolTip(cut ? TipText(text()) : QString());
    }
    return QLabel::event(event);
}

void CStatusPane::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    drawFrame(&painter);
    const QRect room = contentsRect().adjusted(kTextMargin, 0, -kTextMargin, 0);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, room.width());
    style()->drawItemText(&painter, room, Qt::AlignVCenter | Qt::AlignLeft, palette(), isEnabled(), shown,
                          foregroundRole());
}

} // namespace thntfs
