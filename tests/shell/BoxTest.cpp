#include "engine/Host.h"
#include "shell/Boxes.h"
#include "shell/ShellFixture.h"

#include <QTest>

namespace thntfs::test {

namespace {

TEST(BoxTest, ABoxBlocksTheWorkerThatShowsItAndNobodyElse) {
    TestTarget target;
    BoxAnswers user;
    std::atomic<bool> asksDone = false;
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] { ++ticks; });
    timer.start(1);
    // The box stands until everything else has gone on behind it.
    user.MayAnswer = [&](const QMessageBox&) {
        EXPECT_FALSE(asksDone);
        return target.Count(WM_APP + 1) == 100 && target.Count(WM_APP + 2) == 1 && ticks > 10;
    };
    TestWorker asks([&] {
        Host().MessageBox("A <b>text</b>", "Caption", BoxIcon::Warning);
        asksDone = true;
    });
    asks.AwaitSleep();
    TestWorker other([&] {
        for (int i = 0; i < 100; ++i) {
            SendWindowMessage(&target, WM_APP + 1);
        }
        PostWindowMessage(&target, WM_APP + 2);
    });
    EXPECT_TRUE(asks.Finishes() && other.Finishes());
    ASSERT_EQ(user.Boxes.size(), 1U);
    EXPECT_EQ(user.Boxes[0].Text, QStringLiteral("A <b>text</b>"));
    EXPECT_EQ(user.Boxes[0].Caption, QStringLiteral("Caption"));
    EXPECT_EQ(user.Boxes[0].Icon, QMessageBox::Warning);
}

TEST(BoxTest, AWorkerGetsTheAnswer) {
    BoxAnswers user;
    user.Answer(QMessageBox::Yes);
    user.Answer(QMessageBox::No);
    user.Answer(QMessageBox::Cancel);
    bool yes = false;
    bool no = true;
    auto cancel = BoxAnswer::Ok;
    TestWorker worker([&] {
        yes = AskYesNo(QStringLiteral("one"), QStringLiteral("Confirm"));
        no = AskYesNo(QStringLiteral("two"), QStringLiteral("Confirm"));
        cancel = ShowBox(QStringLiteral("three"), QStringLiteral("Confirm"), BoxIcon::Stop,
                         BoxButtons::YesNoCancel);
        Host().ErrorBox("four");
    });
    EXPECT_TRUE(worker.Finishes());
    EXPECT_TRUE(yes);
    EXPECT_FALSE(no);
    EXPECT_EQ(cancel, BoxAnswer::Cancel);
    ASSERT_EQ(user.Boxes.size(), 4U);
    EXPECT_EQ(user.Boxes[2].Icon, QMessageBox::Question);
    EXPECT_EQ(user.Boxes[3].Icon, QMessageBox::Critical);
    EXPECT_EQ(user.Boxes[3].Caption, QStringLiteral("Error"));
}

TEST(BoxTest, ClosingABoxMeansNo) {
    QTimer escape;
    QObject::connect(&escape, &QTimer::timeout, &escape, [] {
        if (QWidget* box = QApplication::activeModalWidget()) {
            box->close();
        }
    });
    escape.start(5);
    EXPECT_FALSE(AskYesNo(QStringLiteral("text"), QStringLiteral("Confirm")));
    EXPECT_EQ(
        ShowBox(QStringLiteral("text"), QStringLiteral("Confirm"), BoxIcon::Stop, BoxButtons::YesNoCancel),
        BoxAnswer::Cancel);
}

TEST(BoxTest, AtTheEndBoxesAnswerThemselves) {
    bool yes = true;
    bool later = true;
    TestWorker worker([&] {
        yes = AskYesNo(QStringLiteral("text"), QStringLiteral("Confirm"));
        later = AskYesNo(QStringLiteral("text"), QStringLiteral("Confirm"));
    });
    QTimer end;
    QObject::connect(&end, &QTimer::timeout, &end, [&] {
        if (QApplication::activeModalWidget() != nullptr) {
            end.stop();
            RefuseBoxes(true);
        }
    });
    end.start(5);
    EXPECT_TRUE(worker.Finishes());
    RefuseBoxes(false);
    EXPECT_FALSE(yes);
    EXPECT_FALSE(later);
}

} // namespace

} // namespace thntfs::test
