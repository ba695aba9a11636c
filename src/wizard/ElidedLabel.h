#pragma once

#include <QLabel>

namespace thntfs {

/// A line of text that may hold a long path: where there is no room its middle is left out.
class CElidedLabel : public QLabel {
public:
    CElidedLabel(const QString& text, QWidget* parent);

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace thntfs
