#include "WizardFixture.h"
#include "engine/EngineState.h"
#include "support/BuildPaths.h"
#include "wizard/ImageFileName.h"
#include "wizard/InfoListBox.h"

#include <QCheckBox>
#include <QRadioButton>
#include <QSettings>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>
#include <filesystem>
#include <fstream>
#include <map>

namespace thntfs::test {

namespace {

// The file has a line a row, under the list's name; '_' at a line's end is a blank.
std::map<std::string, Texts> ToldTexts() {
    std::map<std::string, Texts> told;
    std::ifstream file(ManifestFolder() + "/../../wizard/ListTexts.txt");
    std::string name;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('[')) {
            name = line.substr(1, line.size() - 2);
            continue;
        }
        if (line.ends_with('_')) {
            line.back() = ' ';
        }
        told[name].push_back(line);
    }
    return told;
}

class PagesTest : public WizardTest {
protected:
    [[nodiscard]] Texts InfoShown() const {
        const auto& list = OnPage<CInfoListBox>();
        Texts rows;
        for (int row = 0; row < list.count(); ++row) {
            const bool bullet = list.item(row)->data(Qt::UserRole).toBool();
            rows.push_back((bullet ? "* " : "") + list.item(row)->text().toStdString());
        }
        return rows;
    }

    /// To the clone page, which has no button that shows.
    void GoToClonePage() {
        Press("Create disk Image");
        OnPage<QToolButton>().parentWidget()->findChildren<QToolButton*>().at(kTaskClone)->setEnabled(true);
        OnPage<QToolButton>().parentWidget()->findChildren<QToolButton*>().at(kTaskClone)->click();
        Press("Next >");
    }

    [[nodiscard]] QTreeWidget& TreeAt(int position) const {
        return *Sheet->ActivePage().findChildren<QTreeWidget*>().at(position);
    }
    static void Choose(QTreeWidget& tree, int disk) {
        QTreeWidgetItem* root = tree.topLevelItem(0);
        tree.setCurrentItem(disk < 0 ? root : root->child(disk));
    }
};

TEST_F(PagesTest, ListsSayWhatIsTold) {
    std::map<std::string, Texts> shown;
    AtSheet([&] {
        shown["main"] = InfoShown();
        for (int task : {0, 1, 3, 2}) {
            auto* button = Sheet->ActivePage().findChildren<QToolButton*>().at(task);
            button->setEnabled(true);
            button->click();
            shown["task " + std::to_string(task)] = InfoShown();
        }
        Press("Next >");
        shown["clone steps"] = InfoShown();
        Choose(TreeAt(0), 1);
        shown["clone source"] = InfoShown();
        Choose(TreeAt(1), 1);
        shown["clone target"] = InfoShown();
        Press("< Back");
        Press("Create disk Image");
        Press("Next >");
        shown["imaging steps"] = InfoShown();
        ChooseDisk(1);
        shown["imaging properties"] = InfoShown();
        Press("< Back");
        Press("Recover your Data");
        Press("Next >");
        shown["disk steps"] = InfoShown();
        ChooseDisk(1);
        shown["disk properties"] = InfoShown();
        Press("< Back");
        Press("Recover your data from disk image");
        Press("Next >");
        shown["image"] = InfoShown();
        Close();
    });
    Run();
    EXPECT_EQ(shown, ToldTexts());
}

TEST_F(PagesTest, KeysLeadPastUnreadableDisksThroughThePages) {
    std::vector<DiskInfo> disks = MadeUpDisks();
    disks[0].OpenError = kErrorAccessDenied;
    disks[1].AccessError = kErrorNotReady;
    MakeSheet(disks);
    const auto key = [this](Qt::Key pressed) { QTest::keyClick(Sheet->focusWidget(), pressed); };
    const auto tabs = [&] {
        std::string order;
        do {
            const auto* button = qobject_cast<QAbstractButton*>(Sheet->focusWidget());
            order += (button != nullptr ? button->text().trimmed().toStdString() : "view") + "|";
            key(Qt::Key_Tab);
        } while (!order.ends_with("Help|"));
        return order;
    };
    AtSheet([&] {
        EXPECT_TRUE(QTest::qWaitForWindowActive(Sheet.get()));
        EXPECT_EQ(tabs(), "Recover &your Data|view|&Run wizard on startup|Cancel|Help|");
        key(Qt::Key_Return); // chooses
        key(Qt::Key_Return);
        ChooseDisk(0);
        EXPECT_EQ(tabs(), "view|&Display default partition(s)|view|&Run wizard on startup|< &Back|&Next >|"
                          "Cancel|Help|");
        ButtonOf(*Sheet, "Cancel")->setFocus();
        key(Qt::Key_Return);
        key(Qt::Key_Escape);
        const std::string close = "Confirm: Do you want to close wizard?";
        EXPECT_EQ(BoxTexts(Answers), (Texts{"Information: Disk Opening Error #5",
                                            "Error: Error accessing device 21", close, close}));
        ButtonOf(*Sheet, "< Back")->setFocus();
        key(Qt::Key_Return);
        GoToImagePage(VolumePath("basic"));
        key(Qt::Key_Return);
        key(Qt::Key_Down);
        EXPECT_EQ(Buttons(), "< Back Finish");
        Close();
    });
    Run();
}

struct TaskCase {
    const char* Button;
    const char* HelpAtMain;
    const char* Heading;
    const char* Help;
    const char* Buttons;
};

TEST_F(PagesTest, TaskLeadsToItsPage) {
    const TaskCase cases[] = {{"Recover your Data", "ntfsrecoverdata.htm",
                               "Step 1: Select Hard Drive\nStep 2: Select Appropriate Option",
                               "ntfsrecoverdata.htm", "< Back (Next >)"},
                              {"Create disk Image", "ntfsdiskimaging.htm",
                               "Step 1: Select source drive\nStep 2: Select destination path",
                               "ntfsdiskimaging2.htm", "< Back (Finish)"},
                              {"Recover your data from disk image", "ntfsrecoverfromimage.htm",
                               "Select image to recover data", "ntfsselectanimagefileforproce.htm",
                               "(< Back) Next >"}};
    AtSheet([&] {
        EXPECT_EQ(Buttons(), "(< Back) (Next >)");
        EXPECT_EQ(Sheet->ActivePage().HelpTopic(), QStringLiteral("ntfswizardwin.htm"));
        EXPECT_EQ(ButtonOf(*Sheet, "Clone disk"), nullptr);
        for (const TaskCase& task : cases) {
            Press(task.Button);
            EXPECT_EQ(Buttons(), "(< Back) Next >");
            EXPECT_EQ(Sheet->ActivePage().HelpTopic(), QLatin1String(task.HelpAtMain));
            Press("Next >");
            EXPECT_EQ(Heading(), task.Heading);
            EXPECT_EQ(Sheet->ActivePage().HelpTopic(), QLatin1String(task.Help));
            EXPECT_EQ(Buttons(), task.Buttons);
            Press("< Back");
        }
        Close();
    });
    Run();
}

TEST_F(PagesTest, KeysChooseATaskAndGoOn) {
    AtSheet([&] {
        ASSERT_TRUE(QTest::qWaitForWindowActive(Sheet.get()));
        QTest::keyClick(Sheet.get(), Qt::Key_Y, Qt::AltModifier);
        EXPECT_TRUE(WaitUntil([&] { return Sheet->State().WizardTask == kTaskRecoverDisk; }));
        QTest::keyClick(Sheet.get(), Qt::Key_Return);
        QTest::keyClick(Sheet->focusWidget(), Qt::Key_Down);
        EXPECT_EQ(Buttons(), "< Back Next >");
        QTest::keyClick(Sheet.get(), Qt::Key_S, Qt::AltModifier);
        EXPECT_TRUE(WaitUntil([&] { return Sheet->State().ProcessingMode == 1; }));
        Close();
    });
    Run();
}

TEST_F(PagesTest, DiskPageStartsAfreshFromTheMainPage) {
    AtSheet([&] {
        Press("Recover your Data");
        Press("Next >");
        EXPECT_FALSE(ButtonOf(*Sheet, "Search for lost partition(s)")->isEnabled());
        ChooseDisk(1);
        EXPECT_EQ(Buttons(), "< Back Next >");
        Press("Search for lost partition(s)");
        ChooseDisk(-1);
        EXPECT_EQ(Buttons(), "< Back (Next >)");
        EXPECT_FALSE(ButtonOf(*Sheet, "Search for lost partition(s)")->isEnabled());
        ChooseDisk(1);
        EXPECT_EQ(Sheet->State().ProcessingMode, 1);
        Press("< Back");
        EXPECT_EQ(Buttons(), "(< Back) Next >");
        Press("Next >");
        EXPECT_EQ(Buttons(), "< Back (Next >)");
        EXPECT_EQ(Sheet->State().ProcessingMode, 0);
        EXPECT_TRUE(
            static_cast<QRadioButton*>(ButtonOf(*Sheet, "Display default partition(s)"))->isChecked());
        Close();
    });
    Run();
}

TEST_F(PagesTest, ClosingIsAskedForEachWay) {
    AtSheet([&] {
        Press("Cancel");
        QTest::keyClick(Sheet.get(), Qt::Key_Escape);
        Sheet->close();
        EXPECT_TRUE(Sheet->isVisible());
        Answers.Answer(QMessageBox::Yes);
        Press("Cancel");
    });
    EXPECT_NE(Run(), kWizardFinished);
    EXPECT_EQ(BoxTexts(Answers), Texts(4, "Confirm: Do you want to close wizard?"));
    EXPECT_EQ(Answers.Boxes[0].Icon, QMessageBox::Question);
}

TEST_F(PagesTest, StartUpChoiceIsKeptThoughCancelled) {
    QSettings settings(QStringLiteral("Tarnholt Works Inc."),
                       QStringLiteral("Tarnholt Volume Salvage (NTFS)"));
    settings.setValue(QStringLiteral("Wizard/StartUp"), 0);
    for (const int wanted : {1, 0}) {
        MakeSheet();
        AtSheet([&] {
            Press("Recover your Data");
            Press("Next >");
            Press("Run wizard on startup");
            Answers.Answer(QMessageBox::Yes);
            Press("Cancel");
        });
        Run();
        Sheet.reset();
        settings.sync();
        EXPECT_EQ(settings.value(QStringLiteral("Wizard/StartUp")).toInt(), wanted);
    }
}

TEST_F(PagesTest, ImagingWantsADiskAndAPath) {
    Answers.AnswerFile(QString::fromStdString(Scratch / "it's a disk"));
    AtSheet([&] {
        Press("Create disk Image");
        Press("Next >");
        EXPECT_FALSE(ButtonOf(*Sheet, "Select destination path")->isEnabled());
        ChooseDisk(0);
        EXPECT_EQ(Buttons(), "< Back (Finish)");
        Press("Select destination path");
        EXPECT_EQ(Sheet->State().ImageDestination.toStdString(), Scratch / "it's a disk.th2");
        EXPECT_EQ(Buttons(), "< Back Finish");
        ChooseDisk(-1);
        EXPECT_EQ(Buttons(), "< Back (Finish)");
        ChooseDisk(0);
        Press("Finish");
        Press("< Back");
        Press("Next >");
        EXPECT_EQ(Buttons(), "< Back (Finish)");
        EXPECT_EQ(Sheet->State().SourceDiskIndex, kNoDisk);
        Close();
    });
    Run();
    EXPECT_EQ(
        BoxTexts(Answers),
        Texts{"Information: Creating a disk image is not built into the desktop program yet; the terminal "
              "program does it:\n\n./run image '/dev/sdx' '" +
              Scratch.Path() + "/it'\\''s a disk.th2'"});
    EXPECT_EQ(ImageFileName(QDate(2026, 9, 6)),
              QStringLiteral("Tarnholt Volume Salvage (NTFS) Image # Sun, 06-Sept-2026"));
    EXPECT_EQ(Answers.SuggestedFiles.at(0), ImageFileName(QDate::currentDate()));
}

TEST_F(PagesTest, CloningWantsBothDisks) {
    AtSheet([&] {
        GoToClonePage();
        EXPECT_EQ(Buttons(), "< Back (Finish)");
        EXPECT_FALSE(TreeAt(1).isEnabled());
        Choose(TreeAt(0), 0);
        EXPECT_EQ(Buttons(), "< Back (Finish)");
        Choose(TreeAt(1), 1);
        EXPECT_EQ(Buttons(), "< Back Finish");
        Choose(TreeAt(0), 2);
        EXPECT_EQ(Sheet->State().TargetDiskIndex, 1);
        Press("Finish");
        Close();
    });
    Run();
    EXPECT_EQ(
        BoxTexts(Answers),
        Texts{"Information: Cloning a disk is not built into the desktop program yet; the terminal program "
              "does it:\n\n./run clone '/dev/no-such-disk' '/dev/sdy'"});
}

} // namespace

} // namespace thntfs::test
