#include "shell/ColorLabel.h"
#include "shell/DesktopState.h"
#include "shell/DlgWait.h"
#include "shell/ProgressBar.h"
#include "shell/ShellFixture.h"

#include <QMainWindow>
#include <QPointer>
#include <QStatusBar>
#include <QTest>
#include <memory>

namespace thntfs::test {

namespace {

class ProgressBarTest : public testing::Test {
protected:
    void SetUp() override {
        Pane = new QLabel(QStringLiteral("Ready"));
        Window.statusBar()->addWidget(Pane, 1);
        Window.resize(600, 200);
        Window.show();
        RunEvents();
    }

    QMainWindow Window;
    QLabel* Pane = nullptr;
};

TEST_F(ProgressBarTest, StandsRightOfThePanesText) {
    auto bar = std::make_unique<CProgressBar>(Pane, QStringLiteral("        "), 100, 100);
    EXPECT_EQ(bar->LastPercent, 0);
    bar->Label = QStringLiteral("Scanning");
    bar->SetText(QStringLiteral("Scanning :37%"));
    bar->SetPos(37);
    EXPECT_EQ(Pane->text(), QStringLiteral("Scanning :37%"));
    EXPECT_EQ(bar->value(), 37);
    EXPECT_TRUE(bar->isVisible());
    const int text = Pane->fontMetrics().horizontalAdvance(QStringLiteral("Scanning :37%    "));
    EXPECT_NEAR(bar->geometry().left(), text, 4);
    EXPECT_EQ(bar->geometry().right(), Pane->rect().right());
    EXPECT_EQ(bar->height(), Pane->height() - 2 * (Pane->height() / 10));

    Window.resize(900, 200);
    RunEvents();
    EXPECT_EQ(bar->geometry().right(), Pane->rect().right());
    bar->SetText({});
    EXPECT_EQ(bar->geometry().left(), 0);
    bar.reset();
    EXPECT_EQ(Pane->text(), QStringLiteral("Ready"));
}

TEST_F(ProgressBarTest, TakesItsPartOfTheRoomAndNoMore) {
    const CProgressBar half(Pane, {}, 50, 100);
    EXPECT_NEAR(half.width(), Pane->width() / 2, 1);
    const CProgressBar none(Pane, QString(1000, QLatin1Char('w')), 100, 100);
    EXPECT_EQ(none.width(), 0);
}

TEST_F(ProgressBarTest, MayGoWithItsPane) {
    const QPointer<CProgressBar> bar = new CProgressBar(Pane, QStringLiteral("text"), 100, 100);
    delete Pane;
    EXPECT_TRUE(bar.isNull());
}

TEST(WaitWindowTest, ComesWhenTheFillTakesLongAndLetsNothingElseHappen) {
    QWidget owner;
    owner.resize(600, 400);
    owner.show();
    RunEvents();
    TestTarget target;
    EXPECT_EQ(Desktop.WaitDialog, nullptr);
    {
        CDlgWait wait(&owner);
        EXPECT_EQ(Desktop.WaitDialog, &wait);
        wait.Waiting();
        EXPECT_FALSE(wait.isVisible());

        PostWindowMessage(&target, WM_APP + 1);
        TestWorker worker([&] { SendWindowMessage(&target, WM_APP + 2); });
        worker.AwaitSleep();
        bool timerRan = false;
        QTimer::singleShot(0, &owner, [&] { timerRan = true; });
        QElapsedTimer since;
        since.start();
        while (since.elapsed() < 300) {
            wait.Waiting();
        }
        EXPECT_TRUE(wait.isVisible());
        EXPECT_FALSE(wait.isModal());
        EXPECT_TRUE(wait.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        EXPECT_EQ(wait.windowTitle(), QStringLiteral("Please wait..."));
        EXPECT_TRUE(owner.geometry().contains(wait.geometry()));
        EXPECT_TRUE(target.Numbers.empty());
        EXPECT_FALSE(timerRan);
    }
    EXPECT_EQ(Desktop.WaitDialog, nullptr);
    RunEvents();
}

TEST(ColorLabelTest, TakesColoursAndFonts) {
    CColorLabel label(QStringLiteral("<b>A</b>"));
    label.SetBackColour(Qt::yellow);
    label.SetTextColour(Qt::red);
    QFont font = label.font();
    font.setPixelSize(30);
    label.SetFont(font);
    label.SetBold(true);
    EXPECT_TRUE(label.font().bold());
    EXPECT_EQ(label.font().pixelSize(), 30);
    EXPECT_GT(label.sizeHint().width(), label.fontMetrics().horizontalAdvance(QStringLiteral("<b>A")))
        << "no markup";
    const QImage shot = label.grab().toImage();
    EXPECT_EQ(shot.pixelColor(0, 0), QColor(Qt::yellow));
    label.SetBold(false);
    EXPECT_FALSE(label.font().bold());
}

} // namespace

} // namespace thntfs::test
