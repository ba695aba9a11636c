#include "support/desktop/BoxAnswers.h"

#include <QAbstractButton>
#include <QApplication>
#include <QEventLoop>
#include <QFileDialog>
#include <QLineEdit>
#include <QTest>
#include <gtest/gtest.h>

namespace thntfs::test {

namespace {

constexpr int kPatienceMs = 20000;

} // namespace

BoxAnswers::BoxAnswers() {
    sinceStep_.start();
    QObject::connect(&timer_, &QTimer::timeout, this, [this] { Look(); });
    timer_.start(2);
}

// A timer isn't run again as long as its own call lasts: what may bring up the next window must not be in it.
void BoxAnswers::Look() {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr || modal == answered_ || stepQueued_) {
        return;
    }
    if (auto* box = qobject_cast<QMessageBox*>(modal)) {
        AnswerBox(*box);
    } else if (auto* dialog = qobject_cast<QFileDialog*>(modal)) {
        AnswerFileDialog(*dialog);
    } else if (!steps_.empty() && steps_.front()(modal)) {
        stepQueued_ = true;
        QTimer::singleShot(0, this, [this] { DoStep(); });
    } else if (sinceStep_.elapsed() > kPatienceMs) {
        GiveUp(*modal);
    }
}

void BoxAnswers::AnswerBox(QMessageBox& box) {
    if (!Passed.isEmpty() && box.text().startsWith(Passed)) {
        box.accept();
        return;
    }
    if (recorded_ != &box) {
        recorded_ = &box;
        Boxes.push_back(
            {box.text(), box.windowTitle(), box.icon(), box.standardButtons(), box.informativeText()});
    }
    if (MayAnswer && !MayAnswer(box)) {
        return;
    }
    answered_ = &box;
    QWidget* answer = nullptr;
    if (!answers_.empty()) {
        answer = box.button(answers_.front());
        ASSERT_NE(answer, nullptr) << box.text().toStdString();
        answers_.pop_front();
    }
    QTimer::singleShot(0, &box, [&box, answer] {
        answer == nullptr ? QTest::keyClick(&box, Qt::Key_Escape) : QTest::mouseClick(answer, Qt::LeftButton);
    });
}

void BoxAnswers::AnswerFileDialog(QFileDialog& dialog) {
    answered_ = &dialog;
    auto* edit = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    SuggestedFiles.push_back(edit->text());
    FileFilters.push_back(dialog.nameFilters());
    FileFolders.push_back(dialog.directory().absolutePath());
    if (files_.empty()) {
        dialog.reject();
        return;
    }
    edit->setText(files_.front());
    files_.pop_front();
    QTimer::singleShot(0, edit, [edit] { QTest::keyClick(edit, Qt::Key_Return); });
}

// Between the look and this call the window may have gone, or another one come over it.
void BoxAnswers::DoStep() {
    stepQueued_ = false;
    if (const Act act = steps_.front()(QApplication::activeModalWidget())) {
        steps_.pop_front();
        sinceStep_.restart();
        act();
    }
}

void BoxAnswers::GiveUp(QWidget& window) {
    ADD_FAILURE() << "no step for \"" << window.windowTitle().toStdString() << "\", " << steps_.size()
                  << " to go";
    if (auto* dialog = qobject_cast<QDialog*>(&window)) {
        dialog->done(-1);
    }
}

bool WaitUntil(const std::function<bool()>& condition, int milliseconds) {
    QElapsedTimer since;
    since.start();
    while (!condition()) {
        if (since.elapsed() > milliseconds) {
            return false;
        }
        RunEvents();
    }
    return true;
}

// What a window does before it waits is done too.
void RunEvents() {
    QEventLoop loop;
    QTimer::singleShot(1, &loop, &QEventLoop::quit);
    loop.exec();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace thntfs::test
