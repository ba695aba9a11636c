#include "dialogs/AboutBox.h"

#include "dialogs/ProgramPicture.h"

#include <QDialog>
#include <QMouseEvent>
#include <QPainter>

namespace thntfs {

namespace {

class CAboutBox : public QDialog {
public:
    explicit CAboutBox(QWidget* owner)
        : QDialog(owner, Qt::Dialog | Qt::FramelessWindowHint) {
        setWindowTitle(QStringLiteral("About"));
        setFixedSize(kProgramPictureSize);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        PaintProgramPicture(painter);
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
