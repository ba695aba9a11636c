#include "dialogs/AboutBox.h"

#include "dialogs/ProgramPicture.h"

#include <QCoreApplication>
#include <QDialog>
#include <QMouseEvent>
#include <QPainter>

namespace thntfs {

namespace {

class CAboutBox : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(CAboutBox)

public:
    explicit CAboutBox(QWidget* owner)
        : QDialog(owner, Qt::Dialog | Qt::FramelessWindowHint) {
        setWindowTitle(tr("About"));
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
