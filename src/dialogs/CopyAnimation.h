#pragma once

#include <QTimer>
#include <QWidget>

namespace thntfs {

/// A small picture of blocks that wander from one disk to another, or to a file. It stands still while it is
/// told to, and while nobody sees it.
class CCopyAnimation : public QWidget {
public:
    explicit CCopyAnimation(QWidget* parent);

    /// The icon of what the blocks wander to.
    void SetTargetIcon(const char* name);
    void SetMoving(bool moving);
    [[nodiscard]] bool Moves() const { return timer_.isActive(); }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void PaintBlocks(QPainter& painter, const QRect& way) const;

    QTimer timer_;
    const char* targetIcon_ = "disk";
    bool moving_ = false;
    int step_ = 0;
};

} // namespace thntfs
