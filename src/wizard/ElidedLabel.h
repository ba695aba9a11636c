#pragma once

#include <QLabel>

namespace thntfs {

/// A line of text that may hold a long path: what has no room is left out in its middle and shown as a tip.
class CElidedLabel : public QLabel {
public:
    CElidedLabel(const QString& text, QWidget* parent);

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace thntfs
