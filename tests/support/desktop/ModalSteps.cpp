#include "support/desktop/ModalSteps.h"

#include <QDialog>
#include <gtest/gtest.h>

namespace thntfs::test {

namespace {

constexpr int kPatienceMs = 20000;

} // namespace

ModalSteps::ModalSteps() {
    since_.start();
    timer_.setInterval(2);
    QObject::connect(&timer_, &QTimer::timeout, this, [this] { Look(); });
    timer_.start();
}

// A timer isn't run again as long as its own call lasts, so a step that opens a window must not be in it.
void ModalSteps::Look() {
    QWidget* active = QApplication::activeModalWidget();
    if (active == nullptr || queued_) {
        return;
    }
    if (!steps_.empty() && steps_.front().Fits(active)) {
        queued_ = true;
        QTimer::singleShot(0, this, [this] { DoNext(); });
    } else if (since_.elapsed() > kPatienceMs) {
        GiveUp(*active);
    }
}

// Between the look and this call the window may have gone, or another one come over it.
void ModalSteps::DoNext() {
    queued_ = false;
    QWidget* active = QApplication::activeModalWidget();
    if (active == nullptr || !steps_.front().Fits(active)) {
        return;
    }
    const Step step = steps_.front();
    steps_.pop_front();
    since_.restart();
    step.Act(active);
}

void ModalSteps::GiveUp(QWidget& active) {
    ADD_FAILURE() << "no step for \"" << active.windowTitle().toStdString() << "\", " << steps_.size()
                  << " to go";
    if (auto* dialog = dynamic_cast<QDialog*>(&active)) {
        dialog->done(-1);
    }
}

} // namespace thntfs::test
