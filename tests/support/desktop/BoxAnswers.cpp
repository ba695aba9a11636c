#include "support/desktop/BoxAnswers.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileDialog>
#include <QLineEdit>
#include <QTest>

namespace thntfs::test {

namespace {

QMessageBox::StandardButton DefaultAnswer(const QMessageBox& box) {
    for (const auto button : {QMessageBox::Ok, QMessageBox::No, QMessageBox::Cancel}) {
        if (box.standardButtons().testFlag(button)) {
            return button;
        }
    }
    return QMessageBox::Ok;
}

} // namespace

BoxAnswers::BoxAnswers() {
    timer_.setInterval(5);
    QObject::connect(&timer_, &QTimer::timeout, this, [this] { Look(); });
    timer_.start();
}

void BoxAnswers::Look() {
    QWidget* modal = QApplication::activeModalWidget();
    auto* box = qobject_cast<QMessageBox*>(modal);
    if (box != nullptr && !Passed.isEmpty() && box->text().startsWith(Passed)) {
        box->accept();
    } else if (box != nullptr) {
        AnswerBox(*box);
    } else if (auto* dialog = qobject_cast<QFileDialog*>(modal)) {
        AnswerFileDialog(*dialog);
    }
}

// The answer may bring up the next box, which this timer's turn must not wait for.
void BoxAnswers::AnswerBox(QMessageBox& box) {
    if (answered_ == &box) {
        return;
    }
    if (recorded_ != &box) {
        recorded_ = &box;
        QObject::connect(&box, &QObject::destroyed, this, [this] { recorded_ = nullptr; });
        Boxes.push_back({box.text(), box.windowTitle(), box.icon(), box.standardButtons()});
    }
    if (MayAnswer && !MayAnswer(box)) {
        return;
    }
    QMessageBox::StandardButton answer = DefaultAnswer(box);
    if (!answers_.empty()) {
        answer = answers_.front();
        answers_.pop_front();
    }
    answered_ = &box;
    QObject::connect(&box, &QObject::destroyed, this, [this] { answered_ = nullptr; });
    QTimer::singleShot(0, &box, [&box, answer] { QTest::mouseClick(box.button(answer), Qt::LeftButton); });
}

void BoxAnswers::AnswerFileDialog(QFileDialog& dialog) {
    if (answered_ == &dialog) {
        return;
    }
    answered_ = &dialog;
    QObject::connect(&dialog, &QObject::destroyed, this, [this] { answered_ = nullptr; });
    auto* edit = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    SuggestedFiles.push_back(edit->text());
    FileFilters.push_back(dialog.nameFilters());
    if (files_.empty()) {
        dialog.reject();
        return;
    }
    edit->setText(files_.front());
    files_.pop_front();
    QTimer::singleShot(0, edit, [edit] { QTest::keyClick(edit, Qt::Key_Return); });
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
