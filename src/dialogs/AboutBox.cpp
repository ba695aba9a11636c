#include "dialogs/AboutBox.h"

#include "shell/Icons.h"

#include <QDialog>
#include <QMouseEvent>
#include <QPainter>

namespace thntfs {

namespace {

constexpr QSize kPicture(480, 280);
constexpr QRect kNameArea(20, 50, 230, 110);
constexpr QRect kVersionArea(20, 165, 230, 40);
constexpr int kNamePixels = 22;
constexpr int kVersionPixels = 13;

class CAboutBox : public QDialog {
public:
    explicit CAboutBox(QWidget* owner)
        : QDialog(owner, Qt::Dialog | Qt::FramelessWindowHint) {
        setWindowTitle(QStringLiteral("About"));
        setFixedSize(kPicture);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        LoadIcon("splash").paint(&painter, rect());
        painter.setPen(Qt::white);
        QFont font = painter.font();
        font.setPixelSize(kNamePixels);
        font.setBold(true);
        painter.setFont(font);
        painter.drawText(kNameArea, Qt::AlignLeft | Qt::AlignBottom | Qt::TextWordWrap,
                         QStringLiteral("Tarnholt Volume Salvage (NTFS)"));
        font.setPixelSize(kVersionPixels);
        font.setBold(false);
        painter.setFont(font);
        painter.drawText(kVersionArea, Qt::AlignLeft | Qt::AlignTop, QStringLiteral("Version 2.0.1"));
    }

    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton) {
            accept();
        }
    }
};

} // namespace

void ShowAboutBox(QWidget* owner) {
    CAboutBox box(owner);
    box.exec();
}

} // namespace thntfs
