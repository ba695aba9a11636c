#include "wizard/ElidedLabel.h"

#include <QPainter>
#include <QStyle>

namespace thntfs {

CElidedLabel::CElidedLabel(const QString& text, QWidget* parent)
    : QLabel(text, parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

QSize CElidedLabel::minimumSizeHint() const { return {0, QLabel::minimumSizeHint().height()}; }

void CElidedLabel::paintEvent(QPaintEvent* /*event*/) {
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, width());
    QPainter painter(this);
    style()->drawItemText(&painter, rect(), Qt::AlignVCenter | Qt::AlignLeft, palette(), isEnabled(), shown,
                          foregroundRole());
}

} // namespace thntfs
