#include "wizard/ScanArea.h"

#include <QPainter>

namespace thntfs {

CScanArea::CScanArea(QWidget* parent)
    : QFrame(parent) {
    setFrameStyle(QFrame::Box | QFrame::Plain);
    setMinimumSize(14, 14);
}

void CScanArea::SetRange(int start, int end) {
    rangeStart_ = start;
    rangeEnd_ = end;
    update();
}

void CScanArea::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const QRect area = contentsRect();
    painter.fillRect(area, Qt::white);
    if (rangeStart_ <= rangeEnd_) {
        const int left = rangeStart_ * area.width() / 100;
        const int right = rangeEnd_ * area.width() / 100 + 1;
        const QRect stripe(area.left() + left, area.top(), right - left, area.height());
        painter.fillRect(stripe & area, palette().color(QPalette::Active, QPalette::Highlight));
    }
    QFrame::paintEvent(event);
}

} // namespace thntfs
