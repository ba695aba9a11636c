#include "engine/Host.h"
#include "shell/Boxes.h"
#include "shell/ShellFixture.h"

#include <QClipboard>
#include <QTest>

namespace thntfs::test {

namespace {

const QString kText = QStringLiteral("text");
const QString kCaption = QStringLiteral("Confirm");

TEST(BoxTest, ABoxBlocksTheWorkerThatShowsItAndNobodyElse) {
    TestTarget target;
    BoxAnswers user;
    std::atomic<bool> asksDone = false;
    // The box stands until everything else has gone on behind it.
    user.MayAnswer = [&](const QMessageBox& box) {
        EXPECT_FALSE(asksDone);
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        return target.Count(WM_APP + 1) == 100 && target.Count(WM_APP + 2) == 1;
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
    TestWorker worker([&] {
        EXPECT_TRUE(AskYesNo(kText, kCaption));
        EXPECT_FALSE(AskYesNo(kText, kCaption));
        EXPECT_EQ(ShowBox(kText, kCaption, BoxIcon::Stop, BoxButtons::YesNoCancel), BoxAnswer::Cancel);
        Host().ErrorBox("four");
    });
    EXPECT_TRUE(worker.Finishes());
    ASSERT_EQ(user.Boxes.size(), 4U);
    EXPECT_EQ(user.Boxes[2].Icon, QMessageBox::Question);
    EXPECT_EQ(user.Boxes[3].Icon, QMessageBox::Critical);
    EXPECT_EQ(user.Boxes[3].Caption, QStringLiteral("Error"));
}

/// Does something, again and again, with the box that stands.
class BoxTimer : public QTimer {
public:
    explicit BoxTimer(const std::function<void(QWidget& box)>& act) {
        connect(this, &QTimer::timeout, this, [act] {
            if (QWidget* box = QApplication::activeModalWidget()) {
                act(*box);
            }
        });
        start(5);
    }
};

TEST(BoxTest, ClosingABoxMeansNoAndEnterThePresetAnswer) {
    {
        const BoxTimer user([](QWidget& box) { box.close(); });
        EXPECT_FALSE(AskYesNo(kText, kCaption));
        EXPECT_EQ(ShowBox(kText, kCaption, BoxIcon::Stop, BoxButtons::YesNoCancel), BoxAnswer::Cancel);
    }
    const BoxTimer user([](QWidget& box) {
        EXPECT_TRUE(static_cast<QMessageBox&>(box).textInteractionFlags() & Qt::TextSelectableByMouse);
        QTest::keyClick(&box, Qt::Key_C, Qt::ControlModifier);
        EXPECT_EQ(QApplication::clipboard()->text(), kText);
        QTest::keyClick(&box, Qt::Key_Return);
    });
    EXPECT_TRUE(AskYesNo(kText, kCaption));
    EXPECT_FALSE(AskYesNo(kText, kCaption, BoxAnswer::No));
}

TEST(BoxTest, AtTheEndBoxesAnswerThemselves) {
    bool yes = true;
    TestWorker worker([&] { yes = AskYesNo(kText, kCaption) || AskYesNo(kText, kCaption); });
    int stood = 0;
    {
        const BoxTimer end([&](QWidget&) {
            ++stood;
            RefuseBoxes(true);
        });
        EXPECT_TRUE(worker.Finishes());
    }
    EXPECT_EQ(stood, 1);
    RefuseBoxes(false);
    EXPECT_FALSE(yes);
}

} // namespace

} // namespace thntfs::test
