#include "wizard/WizardHeader.h"

#include <QFontMetrics>
#include <QPainter>

namespace thntfs {

namespace {

constexpr QSize kPictureSize{520, 58};
constexpr int kMargin = 14;

} // namespace

CWizardHeader::CWizardHeader(QWidget* parent)
    : QWidget(parent)
    , picture_(QStringLiteral(":/icons/wizard-header.svg")) {
    QFont bold = font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.2);
    setFont(bold);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void CWizardHeader::SetHeading(const QString& heading) {
    heading_ = heading;
    setAccessibleName(heading);
    update();
}

// Room for two lines on every page, so that the pages don't jump.
QSize CWizardHeader::sizeHint() const {
    const int lines = 2 * fontMetrics().lineSpacing() + kMargin;
    return {kPictureSize.width(), std::max(kPictureSize.height(), lines)};
}

void CWizardHeader::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    picture_.render(&painter, rect());
    painter.setPen(Qt::white);
    painter.drawText(rect().adjusted(kMargin, 0, -kMargin, 0), Qt::AlignVCenter | Qt::AlignLeft, heading_);
}

} // namespace thntfs
