#pragma once

#include <QFrame>

namespace thntfs {

/// A white bar with a stripe over a part of its width.
class CScanArea : public QFrame {
public:
    explicit CScanArea(QWidget* parent);

    /// Both ends of the stripe in percent of the width. A start above the end leaves the bar white.
    void SetRange(int start, int end);

    [[nodiscard]] int RangeStart() const { return rangeStart_; }
    [[nodiscard]] int RangeEnd() const { return rangeEnd_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int rangeStart_ = 1;
    int rangeEnd_ = 0;
};

} // namespace thntfs
