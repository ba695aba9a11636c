#include "dialogs/CopyAnimation.h"

#include "shell/Icons.h"

#include <QPainter>

namespace thntfs {

namespace {

constexpr int kHeight = 56;
constexpr int kWidth = 360;
constexpr int kIconPixels = 48;
constexpr int kBlockPixels = 8;
constexpr int kBlockDistance = 24; // from the start of one to that of the next
constexpr int kStepPixels = 2;
constexpr int kStepMilliseconds = 50;

} // namespace

CCopyAnimation::CCopyAnimation(QWidget* parent)
    : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    timer_.setInterval(kStepMilliseconds);
    connect(&timer_, &QTimer::timeout, this, [this] {
        step_ = (step_ + kStepPixels) % kBlockDistance;
        update();
    });
}

void CCopyAnimation::SetTargetIcon(const char* name) {
    targetIcon_ = name;
    update();
}

void CCopyAnimation::SetMoving(bool moving) {
    moving_ = moving;
    moving_&& isVisible() ? timer_.start() : timer_.stop();
}

QSize CCopyAnimation::sizeHint() const { return {kWidth, kHeight}; }

void CCopyAnimation::showEvent(QShowEvent* /*event*/) { SetMoving(moving_); }
void CCopyAnimation::hideEvent(QHideEvent* /*event*/) { timer_.stop(); }

void CCopyAnimation::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect source(0, (height() - kIconPixels) / 2, kIconPixels, kIconPixels);
    const QRect target = source.translated(width() - kIconPixels, 0);
    PaintBlocks(painter, QRect(source.topRight(), target.bottomLeft()));
    LoadIcon("disk").paint(&painter, source);
    LoadIcon(targetIcon_).paint(&painter, target);
}

// Each block shows first at one end and is gone at the other.
void CCopyAnimation::PaintBlocks(QPainter& painter, const QRect& way) const {
    painter.setClipRect(way);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().highlight());
    const int top = way.center().y() - kBlockPixels / 2;
    for (int left = way.left() - kBlockDistance + step_; left < way.right(); left += kBlockDistance) {
        painter.drawRoundedRect(QRect(left, top, kBlockPixels, kBlockPixels), 2, 2);
    }
    painter.setClipping(false);
}

} // namespace thntfs
