#include "shell/ColorLabel.h"
#include "shell/DesktopState.h"
#include "shell/DlgWait.h"
#include "shell/ProgressBar.h"
#include "shell/ReadablePalette.h"
#include "shell/ShellFixture.h"
#include "shell/TipText.h"

#include <QMainWindow>
#include <QPointer>
#include <QStatusBar>
#include <QTest>
#include <memory>

namespace thntfs::test {

namespace {

TEST(ProgressBarTest, StandsRightOfThePanesTextInItsPartOfTheRoom) {
    QMainWindow window;
    auto* pane = new QLabel(QStringLiteral("Ready"));
    window.statusBar()->addWidget(pane, 1);
    window.resize(600, 200);
    window.show();
    RunEvents();
    auto bar = std::make_unique<CProgressBar>(pane, QStringLiteral("        "), 100, 100);
    EXPECT_EQ(bar->LastPercent, 0);
    bar->SetText(QStringLiteral("Scanning :37%"));
    bar->SetPos(37);
    EXPECT_EQ(pane->text(), QStringLiteral("Scanning :37%"));
    EXPECT_EQ(bar->value(), 37);
    EXPECT_TRUE(bar->isVisible());
    const int text = pane->fontMetrics().horizontalAdvance(QStringLiteral("Scanning :37%    "));
    EXPECT_NEAR(bar->geometry().left(), text, 4);
    EXPECT_EQ(bar->height(), pane->height() - 2 * (pane->height() / 10));
    window.resize(900, 200);
    RunEvents();
    EXPECT_EQ(bar->geometry().right(), pane->rect().right());
    bar->SetText({});
    EXPECT_EQ(bar->geometry().left(), 0);
    bar->SetText(QString(1000, QLatin1Char('w')));
    EXPECT_EQ(bar->width(), 0);
    bar.reset();
    EXPECT_EQ(pane->text(), QStringLiteral("Ready"));

    const QPointer<CProgressBar> half = new CProgressBar(pane, {}, 50, 100);
    EXPECT_NEAR(half->width(), pane->width() / 2, 1);
    delete pane;
    EXPECT_TRUE(half.isNull()) << "may go with its pane";
}

TEST(WaitWindowTest, ComesWhenTheFillTakesLongAndLetsNothingElseHappen) {
    QWidget owner;
    owner.resize(600, 400);
    owner.show();
    RunEvents();
    TestTarget target;
    {
        CDlgWait wait(&owner);
        EXPECT_EQ(Desktop.WaitDialog, &wait);
        wait.Waiting(0, 0);
        EXPECT_FALSE(wait.isVisible());
        WorkTime time;
        time.Begin();
        EXPECT_EQ(time.Text(), QString()) << "a second's work";
        PostWindowMessage(&target, WM_APP + 1);
        TestWorker worker([&] { SendWindowMessage(&target, WM_APP + 2); });
        worker.AwaitSleep();
        QElapsedTimer since;
        since.start();
        while (since.elapsed() < 300) {
            wait.Waiting(0, 0);
        }
        EXPECT_TRUE(wait.isVisible());
        EXPECT_FALSE(wait.isModal());
        EXPECT_EQ(wait.windowTitle(), QStringLiteral("Please wait..."));
        EXPECT_TRUE(owner.geometry().contains(wait.geometry()));
        EXPECT_TRUE(target.Messages.empty());
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
    EXPECT_EQ(label.grab().toImage().pixelColor(0, 0), QColor(Qt::yellow));
    EXPECT_EQ(label.palette().color(label.foregroundRole()), QColor(Qt::red));
}

TEST(ReadablePaletteTest, MendsWhatDarkGroundsSwallowAndNothingElse) {
    const QPalette light(QColor(239, 239, 239));
    EXPECT_EQ(ReadablePalette(light), light);
    const QColor ground(45, 45, 48);
    const QPalette mended = ReadablePalette(QPalette(ground));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        const int lightness = mended.color(QPalette::Disabled, role).lightness();
        EXPECT_TRUE(lightness > 100 && lightness < 200) << role;
    }
    EXPECT_GT(mended.color(QPalette::Link).lightness(), 150);
}

TEST(TipTextTest, IsPlainAndInShortLines) {
    const QString line(80, QLatin1Char('a'));
    EXPECT_TRUE(TipText(line + line + QStringLiteral("<b>"))
                    .contains(line + QStringLiteral("\n") + line + QStringLiteral("\n&lt;b&gt;")));
}

} // namespace

} // namespace thntfs::test
