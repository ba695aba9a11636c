#pragma once

#include <QSvgRenderer>
#include <QWidget>

namespace thntfs {

/// The picture across the top of the sheet, with the page's heading over it.
class CWizardHeader : public QWidget {
public:
    explicit CWizardHeader(QWidget* parent);

    void SetHeading(const QString& heading);
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QSvgRenderer picture_;
    QString heading_;
};

} // namespace thntfs
