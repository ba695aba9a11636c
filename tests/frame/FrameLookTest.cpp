// What the window shows before anything has been opened, and how the user changes its look.

#include "FrameFixture.h"
#include "shell/ProgressBar.h"
#include "shell/WindowMessages.h"

#include <QAccessible>
#include <QApplication>
#include <QDialog>
#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QTest>
#include <QTextBrowser>
#include <QToolBar>

namespace thntfs::test {
namespace {

class FrameLook : public FrameFixture {
protected:
    QToolBar& Toolbar() { return Find<QToolBar>("ToolBar"); }

    void OpenAnew() {
        Frame->close();
        Frame = std::make_unique<CMainFrame>();
        Frame->show();
    }

    void ExpectView(const char* title, bool details) {
        EXPECT_TRUE(Command(title).isChecked()) << title;
        EXPECT_EQ(Command("Details").isChecked(), details) << title;
        EXPECT_EQ(Details().isVisible(), details) << title;
    }
};

TEST_F(FrameLook, AtTheStartNothingIsThereToWorkWith) {
    EXPECT_EQ(Frame->windowTitle().toStdString(), "Tarnholt Volume Salvage (NTFS)");
    EXPECT_EQ(Pane(0) + "|" + Pane(1) + "|" + Pane(2), "Ready|Total 0 KB in 0 Files in 0 Folders|");
    EXPECT_EQ(Greyed(), (std::set<std::string>{
                            "", "Open found Logical Drive", "Find", "Find Next", "Save All",
                            "Stop Current Process", "Save Partition Info", "Save Tree Info",
                            "Go to Parent Folder", "Turbo Scan", "Clear Process  Log", "Save Process Log",
                            "Copy Names", "Copy Paths", "Save List As...", "Path Line", "Open as Folder"}));
    for (const QAction* action : Toolbar().actions()) {
        EXPECT_TRUE(action->isSeparator() || !action->icon().pixmap(32, 32).isNull());
    }
    for (QWidget* bar : std::initializer_list<QWidget*>{Frame->menuBar(), Frame->statusBar(), &Toolbar(),
                                                        &Find<QWidget>("LogList")}) {
        EXPECT_FALSE(QAccessible::queryAccessibleInterface(bar)->text(QAccessible::Name).isEmpty());
    }
}

TEST_F(FrameLook, FocusPromptsAndHelpComeAndGo) {
    Tree().setFocus();
    QTest::keyClick(&Tree(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(Find<QWidget>("LogList").hasFocus());
    QTest::keyClick(&Find<QWidget>("LogList"), Qt::Key_Tab);
    EXPECT_TRUE(Tree().hasFocus());

    EXPECT_EQ(Command("Find Next").toolTip(), QStringLiteral("Find Next"));
    Command("Find Next").showStatusText(Frame.get());
    EXPECT_EQ(Pane(0), "Finds next matching files/folders");
    Command("About").showStatusText(Frame.get()); // has none
    EXPECT_EQ(Pane(0), "Ready");
    ChooseInMenu("Help/Update Wizard");
    EXPECT_EQ(Pane(0), "thupdate isn't installed beside this program.");
    Answers.When<QDialog>([](QDialog& tip) {
        EXPECT_EQ(tip.windowTitle(), QStringLiteral("Tip of the Day"));
        tip.accept();
    });
    ChooseInMenu("Help/Tip of the day");
    EXPECT_TRUE(Answers.AllDone());

    for (const auto& [title, page] :
         {std::pair{"FAQ", "faq.htm"}, {"Contact Us", "contact.htm"}, {"Software Feature", "features.htm"}}) {
        Command(title).trigger();
        EXPECT_EQ(Frame->findChild<QTextBrowser*>()->source().fileName(), QLatin1String(page));
    }
}

TEST_F(FrameLook, NarrowWindowLeavesRoomForTheProgressBar) {
    Frame->resize(800, 600);
    WM_UPDATE_TOTALS.Send(Frame.get(), Totals::All, 0);
    WM_UPDATE_TOTALS.Send(Frame.get(), Totals::Marked, 1);
    CProgressBar bar(&Find<QLabel>("StatusPane0"), QStringLiteral("Populating  :100%"), 100, 100);
    RunEvents();
    EXPECT_EQ(Frame->width(), 800);
    EXPECT_GT(bar.width(), 60);
    EXPECT_GT(Details().columnWidth(0), 150); // names can be read
    EXPECT_EQ(Details().header()->length(), Details().viewport()->width());
}

TEST_F(FrameLook, BarsAreHiddenAndShownAndTheirLinesMarked) {
    for (const auto& [title, bar] :
         {std::pair<const char*, QWidget*>{"ToolBar", &Toolbar()}, {"Status Bar", Frame->statusBar()}}) {
        for (const bool shown : {false, true}) {
            ChooseInMenu((std::string("View/") + title).c_str());
            EXPECT_EQ(bar->isVisible(), shown) << title;
            EXPECT_EQ(Command(title).isChecked(), shown) << title;
        }
    }
}

TEST_F(FrameLook, SizeOfTheToolbarAndViewModeAreChosenAndKept) {
    EXPECT_EQ(Toolbar().iconSize(), QSize(32, 32));
    ExpectView("Details", true);
    Q_EMIT Toolbar().customContextMenuRequested({10, 10});
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(menu->actions().back()).center());
    ChooseInMenu("View/Small Icons");
    Command("ToolBar").trigger();
    OpenAnew();
    EXPECT_EQ(Toolbar().iconSize(), QSize(48, 48));
    ExpectView("Small Icons", false);
    for (const char* title : {"Large Icons", "List"}) {
        ChooseInMenu((std::string("View/") + title).c_str());
        ExpectView(title, false);
        ChooseInMenu("View/Details");
        ExpectView("Details", true);
    }
    EXPECT_TRUE(Toolbar().isHidden());
    Command("ToolBar").trigger();
    Command("32x32 pixels").trigger();
    Frame->close();
}

} // namespace
} // namespace thntfs::test
