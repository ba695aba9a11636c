// What the window shows before anything has happened: menus, toolbar, panes, prompts.

#include "FrameFixture.h"
#include "frame/StatusTexts.h"

#include <QAccessible>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QStatusTipEvent>
#include <QTest>
#include <clocale>
#include <cstdlib>

namespace thntfs::test {
namespace {

std::string TextOf(const QAction& action) {
    if (action.isSeparator()) {
        return "-";
    }
    std::string text = action.text().toStdString();
    if (!action.shortcut().isEmpty()) {
        text += " [" + action.shortcut().toString().toStdString() + "]";
    }
    return text;
}

void AppendMenu(const QMenu& menu, const std::string& indent, std::string& text) {
    for (const QAction* action : menu.actions()) {
        text += indent + TextOf(*action) + "\n";
        if (action->menu() != nullptr) {
            AppendMenu(*action->menu(), indent + "  ", text);
        }
    }
}

using FrameLook = FrameFixture;

TEST_F(FrameLook, MenusHoldAllCommandsInTheirOrder) {
    std::string text;
    for (const QAction* action : Frame->menuBar()->actions()) {
        text += TextOf(*action) + "\n";
        AppendMenu(*action->menu(), "  ", text);
    }
    EXPECT_EQ(text, R"(&File
  &Wizard [Ctrl+W]
  Open found &Logical Drive [Ctrl+Shift+O]
  Open Saved Scan Info
    Load &Partition Info
    Load &Tree Info [Ctrl+O]
  -
  E&xit [Alt+F4]
&Tools
  &Find [Ctrl+F]
  Find Next [F3]
  Save All [Ctrl+Shift+S]
  Stop Current Process [F4]
)"
                    "  Save Scan Information\tCtrl+I\n"
                    R"(    Save &Partition Info
    Save &Tree Info
  &Go to Parent Folder
  -
  Turbo Scan [Ctrl+T]
  Spoor Hou&nd
  -
  Cl&ear Process  Log
  Sa&ve Process Log
&View
  ToolBar
  &Status Bar
  -
  &Large Icons
  S&mall Icons
  L&ist
  &Details
&Help
  &Contents [F1]
  &Tip of the day
  -
  Software Feature
  Contact Us
  FAQ
  &Update Wizard
  -
  &About  [Ctrl+B]
)");
}

TEST_F(FrameLook, ToolbarShowsTitlesPromptsAndIcons) {
    const auto* toolbar = Frame->findChild<QToolBar*>();
    std::string text;
    for (const QAction* action : toolbar->actions()) {
        text += action->isSeparator()
                    ? "-"
                    : action->toolTip().toStdString() + ": " + action->statusTip().toStdString();
        text += "\n";
        EXPECT_TRUE(action->isSeparator() || !action->icon().pixmap(32, 32).isNull()) << text;
    }
    EXPECT_EQ(text, R"(Wizard: Click here to launch wizard
-
Spoor Hound : Performs search of known file types in physical media
Turbo Scan: Searches for lost files/folders
-
Find: Finds specified files/folders
Find Next: Finds next matching files/folders
-
Save All: Saves all recovered data
-
Stop Current Process: Stops any disk/file scanning process.
-
Goto Parent: Return to the parent folder
-
Update Wizard: Check for software updates
-
 Help: Lists help topics
)");
    EXPECT_EQ(toolbar->iconSize(), QSize(32, 32));
}

TEST_F(FrameLook, PanesStandAsAtTheStart) {
    EXPECT_EQ(Pane(0), "Ready");
    EXPECT_EQ(Pane(1), "Total 0 KB in 0 Files in 0 Folders");
    EXPECT_EQ(Pane(2), "");
    EXPECT_EQ(Frame->windowTitle().toStdString(), "Tarnholt Volume Salvage (NTFS)");
    EXPECT_TRUE(Frame->TreeView->IsEmpty());
}

TEST_F(FrameLook, PromptsComeAndGo) {
    QStatusTipEvent prompt(QStringLiteral("Saves all recovered data"));
    QCoreApplication::sendEvent(Frame.get(), &prompt);
    EXPECT_EQ(Pane(0), "Saves all recovered data");
    QStatusTipEvent nothing{QString()};
    QCoreApplication::sendEvent(Frame.get(), &nothing);
    EXPECT_EQ(Pane(0), "Ready");
}

TEST_F(FrameLook, SubmenuHasAPromptAndBarsHaveNames) {
    const auto submenus = Frame->menuBar()->actions()[1]->menu()->actions();
    EXPECT_EQ(submenus[4]->statusTip().toStdString(), "Saves scanned information");
    for (QWidget* bar : std::initializer_list<QWidget*>{Frame->menuBar(), Frame->statusBar(), Frame->LogList,
                                                        Frame->findChild<QToolBar*>()}) {
        EXPECT_FALSE(QAccessible::queryAccessibleInterface(bar)->text(QAccessible::Name).isEmpty());
    }
}

TEST_F(FrameLook, BackTabGoesRoundByTheLog) {
    Frame->TreeView->setFocus();
    for (QWidget* pane : std::initializer_list<QWidget*>{Frame->LogList, Frame->ListView, Frame->TreeView}) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
        EXPECT_TRUE(pane == QApplication::focusWidget() || pane->isAncestorOf(QApplication::focusWidget()));
    }
}

TEST_F(FrameLook, NarrowWindowLeavesRoomForTheProgressBar) {
    Frame->resize(800, 600);
    WM_UPDATE_TOTALS.Send(Frame.get(), Totals::All, 0);
    WM_UPDATE_TOTALS.Send(Frame.get(), Totals::Marked, 1);
    CProgressBar bar(Frame->Panes[0], QStringLiteral("Populating  :100%"), 100, 100);
    RunEvents();
    EXPECT_EQ(Frame->width(), 800);
    EXPECT_GT(bar.width(), 60);
    EXPECT_GT(Frame->ListView->findChild<QTreeView*>()->columnWidth(0), 150); // names can be read
}

TEST_F(FrameLook, CommandsToComeSaySo) {
    ChooseInMenu({QStringLiteral("Tools"), QStringLiteral("Spoor Hound")});
    EXPECT_EQ(Pane(0), "Spoor Hound is not built into the desktop program yet.");
    ChooseInMenu({QStringLiteral("Help"), QStringLiteral("Tip of the day")});
    EXPECT_EQ(Pane(0), "Tip of the day is not built into the desktop program yet.");
}

TEST_F(FrameLook, BarsAreHiddenAndShownAndTheirLinesMarked) {
    ChooseInMenu({QStringLiteral("View"), QStringLiteral("ToolBar")});
    ChooseInMenu({QStringLiteral("View"), QStringLiteral("Status Bar")});
    EXPECT_TRUE(Frame->findChild<QToolBar*>()->isHidden());
    EXPECT_TRUE(Frame->statusBar()->isHidden());
    EXPECT_FALSE(Frame->ActionOf(kCmdViewToolbar)->isChecked());
    ChooseInMenu({QStringLiteral("View"), QStringLiteral("ToolBar")});
    EXPECT_FALSE(Frame->findChild<QToolBar*>()->isHidden());
    EXPECT_TRUE(Frame->ActionOf(kCmdViewToolbar)->isChecked());
}

TEST_F(FrameLook, ToolbarOffersItsSizesAndKeepsTheChoice) {
    auto* toolbar = Frame->findChild<QToolBar*>();
    Q_EMIT toolbar->customContextMenuRequested({10, 10});
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 4);
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(menu->actions().back()).center());
    EXPECT_EQ(toolbar->iconSize(), QSize(48, 48));
    Frame->close();
    Frame = std::make_unique<CMainFrame>();
    EXPECT_EQ(Frame->findChild<QToolBar*>()->iconSize(), QSize(48, 48));
    Frame->RunCommand(kCmdToolbar16 + 2);
    Frame->close();
}

TEST_F(FrameLook, ViewModeIsOneOfFourAndIsKept) {
    EXPECT_TRUE(Frame->ActionOf(kCmdDetails)->isChecked());
    ChooseInMenu({QStringLiteral("View"), QStringLiteral("Small Icons")});
    EXPECT_TRUE(Frame->ActionOf(kCmdSmallIcons)->isChecked());
    EXPECT_FALSE(Frame->ActionOf(kCmdDetails)->isChecked());
    Frame->close();
    Frame = std::make_unique<CMainFrame>();
    EXPECT_EQ(Frame->ViewMode, kCmdSmallIcons);
    Frame->RunCommand(kCmdDetails);
    Frame->close();
}

TEST(StatusTexts, SwitchUnitAtTheirBoundsInAnyLanguage) {
    ScratchFolder folder;
    RunProgram("/usr/bin/localedef", {"-i", "de_DE", "-f", "UTF-8", folder / "de_DE.UTF-8"});
    ::setenv("LOCPATH", folder.Path().c_str(), 1);
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8"); // where the system has the means to make it
    EXPECT_EQ(TotalsText(512, 3, 4), "  0.500 KB in 3 Files in 4 Folders");
    EXPECT_EQ(TotalsText(1048575, 1, 0), "1023.999 KB in 1 Files in 0 Folders");
    EXPECT_EQ(TotalsText(1048576, 1, 0), "  1.000 MB in 1 Files in 0 Folders");
    EXPECT_EQ(TotalsText(1073741823, 1, 0), "1024.000 MB in 1 Files in 0 Folders");
    EXPECT_EQ(MarkedText(1073741824, 2, 1), "Marked   1.000 GB in 2 Files in 1 Folders");
    std::setlocale(LC_NUMERIC, "C");
    ::unsetenv("LOCPATH");
}

} // namespace
} // namespace thntfs::test
