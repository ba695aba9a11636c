#include "WizardFixture.h"
#include "shell/Settings.h"
#include "wizard/ImageFileName.h"

#include <QRadioButton>
#include <QToolButton>

namespace thntfs::test {

namespace {

class PagesTest : public WizardTest {
protected:
    /// As a click on the button of a task, which the clone task has but doesn't show.
    void ChooseTask(int task) {
        auto* button = Sheet->ActivePage().findChildren<QToolButton*>().at(task);
        button->setEnabled(true);
        button->click();
    }
    /// Heights that the list gives its first two rows, "20 18".
    [[nodiscard]] std::string InfoHeights() const {
        const auto& list = OnPage<CInfoListBox>();
        return std::to_string(list.item(0)->sizeHint().height()) + " " +
               std::to_string(list.item(1)->sizeHint().height());
    }
    /// Names of the disks in the first tree that have a USB disk's icon, a blank behind each.
    [[nodiscard]] std::string UsbDisks() const {
        const auto picture = [](const QIcon& icon) { return icon.pixmap(16).toImage(); };
        const auto* tree = Sheet->ActivePage().findChild<QTreeWidget*>();
        std::string names;
        for (int row = 0; tree != nullptr && row < tree->topLevelItem(0)->childCount(); ++row) {
            const QTreeWidgetItem& disk = *tree->topLevelItem(0)->child(row);
            const bool usb = picture(disk.icon(0)) == picture(LoadIcon("disk-usb"));
            names += usb ? disk.text(0).toStdString() + " " : "";
        }
        return names;
    }
    [[nodiscard]] std::string Help() const { return Sheet->ActivePage().HelpTopic().toStdString(); }
};

struct TaskCase {
    int Task;
    const char* TaskInfo;
    const char* HelpAtMain;
    const char* Heading;
    const char* PageInfo; ///< the third row
    const char* Help;
    const char* Buttons;
    const char* UsbDisks;
};

TEST_F(PagesTest, TaskLeadsToItsPage) {
    const TaskCase cases[] = {
        {kTaskRecoverDisk, "HDRRecover your data from disk", "ntfsrecoverdata.htm",
         "Step 1: Select Hard Drive\nStep 2: Select Appropriate Option", "Select the NTFS drive from which",
         "ntfsrecoverdata.htm", "< Back (Next >)", ""},
        {kTaskClone, "HDRClone Disk", "ntfsclonedisk.htm", "Select Source and Destination Disk(s)",
         "* Select source drive, the drive", "ntfsclonewindow.htm", "< Back (Finish)", "sdy "},
        {kTaskImage, "HDRCreate disk Image", "ntfsdiskimaging.htm",
         "Step 1: Select source drive\nStep 2: Select destination path",
         "* Select source drive, the drive whose", "ntfsdiskimaging2.htm", "< Back (Finish)", "sdy gone "},
        {kTaskRecoverImage, "HDRRecover data from disk image", "ntfsrecoverfromimage.htm",
         "Select image to recover data", "* Select the image file from which",
         "ntfsselectanimagefileforproce.htm", "(< Back) Next >", ""}};
    RunWith([&] {
        EXPECT_EQ(Buttons(), "(< Back) (Next >)");
        EXPECT_EQ(Help(), "ntfswizardwin.htm");
        EXPECT_EQ(Info().at(0), "HDRPlease Select Appropriate Option");
        EXPECT_EQ(ButtonOf(*Sheet, "Clone disk"), nullptr);
        for (const TaskCase& task : cases) {
            ChooseTask(task.Task);
            EXPECT_EQ(Buttons(), "(< Back) Next >");
            EXPECT_EQ(Info().at(0), task.TaskInfo);
            EXPECT_EQ(InfoHeights(), "16 14");
            EXPECT_EQ(Help(), task.HelpAtMain);
            Press("Next >");
            EXPECT_EQ(Heading(), task.Heading);
            EXPECT_EQ(Info().at(2), task.PageInfo);
            EXPECT_EQ(InfoHeights(), "18 18");
            EXPECT_EQ(Help(), task.Help);
            EXPECT_EQ(Buttons(), task.Buttons);
            EXPECT_EQ(UsbDisks(), task.UsbDisks);
            Press("< Back");
        }
    });
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
    RunWith([&] {
        Sheet->activateWindow(); // which a box was before
        EXPECT_TRUE(QTest::qWaitForWindowActive(Sheet.get()));
        EXPECT_EQ(tabs(), "Recover &your Data|view|&Run wizard on startup|Cancel|Help|");
        key(Qt::Key_Return); // chooses
        key(Qt::Key_Return);
        key(Qt::Key_Down);
        EXPECT_EQ(tabs(), "view|&Display default partition(s)|view|&Run wizard on startup|< &Back|&Next >|"
                          "Cancel|Help|");
        QTest::keyClick(Sheet.get(), Qt::Key_S, Qt::AltModifier);
        EXPECT_TRUE(WaitUntil([&] { return Sheet->State().ProcessingMode == 1; }));
        EXPECT_EQ(Boxes(), (Texts{"Information: Disk Opening Error #5", "Error: Error accessing device 21"}));
        ButtonOf(*Sheet, "< Back")->setFocus();
        key(Qt::Key_Return);
        GoToImagePage(VolumePath("basic"));
        key(Qt::Key_Return);
        key(Qt::Key_Down);
        EXPECT_EQ(Buttons(), "< Back Finish");
    });
}

TEST_F(PagesTest, DisksFollowWhatComesAndGoes) {
    const std::vector<DiskInfo> all = MadeUpDisks();
    const auto shownAfter = [this](const std::vector<DiskInfo>& disks) {
        Disks = disks;
        QTest::keyClick(Sheet.get(), Qt::Key_F5);
        const auto& tree = OnPage<QTreeWidget>();
        return tree.currentItem()->text(0).toStdString() + " of " +
               std::to_string(tree.topLevelItem(0)->childCount()) + Buttons();
    };
    RunWith([&] {
        Press("Create disk Image"); // its page follows unseen
        Press("Recover your Data");
        Press("Next >");
        EXPECT_TRUE(QTest::qWaitForWindowActive(Sheet.get()));
        ChooseDisk(1);
        EXPECT_EQ(shownAfter({all[2], all[0], all[1]}), "sdy of 3< Back Next >");
        EXPECT_EQ(Info().at(0), "HDRInformation: sdy") << "at its new place";
        Answers.Answer(QMessageBox::No);
        Answers.MayAnswer = [&](const QMessageBox&) {
            EXPECT_EQ(shownAfter({all[0]}), "sdy of 3< Back Next >") << "not behind a box";
            return true;
        };
        Press("Cancel");
        Sheet->activateWindow(); // which a box was before
        EXPECT_TRUE(QTest::qWaitForWindowActive(Sheet.get()));
        EXPECT_EQ(shownAfter({all[0]}), "My Computer of 1< Back (Next >)");
    });
}

TEST_F(PagesTest, DiskPageStartsAfreshFromTheMainPage) {
    MakeSheet(std::vector<DiskInfo>(300, MadeUpDisks()[1]));
    EXPECT_EQ(Sheet->State().Disks.size(), 255U) << "number 255 means none";
    RunWith([&] {
        Press("Recover your Data");
        Press("Next >");
        EXPECT_FALSE(ButtonOf(*Sheet, "Search for lost partition(s)")->isEnabled());
        ChooseDisk(1);
        EXPECT_EQ(Buttons(), "< Back Next >");
        EXPECT_EQ(
            Info(),
            (Texts{"HDRInformation: sdy", "* Name: Some Disk", "* Size: 465.76 GB", "* Serial Number: WX11",
                   "* Interface Type: USB", "* Media Type: Fixed hard disk media", "* Firmware: 01.01",
                   "* Total Cylinders: 60801", "* Total Heads: 255", "* Total Sectors: 976773168"}));
        EXPECT_EQ(InfoHeights(), "20 18");
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
        EXPECT_EQ(OnPage<QTreeWidget>().currentItem()->text(0), QStringLiteral("My Computer"));
        EXPECT_EQ(Sheet->State().ProcessingMode, 0);
        EXPECT_TRUE(
            static_cast<QRadioButton*>(ButtonOf(*Sheet, "Display default partition(s)"))->isChecked());
    });
}

TEST_F(PagesTest, ClosingIsAskedForEachWayAndKeepsTheStartUpChoice) {
    OpenSettings().setValue(QStringLiteral("Wizard/StartUp"), 0);
    for (const int wanted : {1, 0}) {
        MakeSheet();
        AtSheet([&] {
            Press("Run wizard on startup");
            QTest::keyClick(Sheet.get(), Qt::Key_Escape);
            Sheet->close();
            EXPECT_TRUE(Sheet->isVisible());
            Answers.Answer(QMessageBox::Yes);
            Press("Cancel");
        });
        EXPECT_NE(Run(), kWizardFinished);
        Sheet.reset();
        EXPECT_EQ(OpenSettings().value(QStringLiteral("Wizard/StartUp")).toInt(), wanted);
    }
    EXPECT_EQ(Boxes(), Texts(6, "Confirm: Do you want to close wizard?"));
}

TEST_F(PagesTest, ImagingWantsADiskAndAPath) {
    Answers.AnswerFile(QString::fromStdString(Scratch / "it's a disk"));
    RunWith([&] {
        Press("Create disk Image");
        Press("Next >");
        EXPECT_FALSE(ButtonOf(*Sheet, "Select destination path")->isEnabled());
        ChooseDisk(1);
        EXPECT_EQ(Info().at(0), "HDRInformation: sdy");
        EXPECT_EQ(Buttons(), "< Back (Finish)");
        Press("Select destination path");
        EXPECT_EQ(Labels().at(0), "Destination path :" + (Scratch / "it's a disk.th2"));
        EXPECT_EQ(Buttons(), "< Back Finish");
        Answers.AnswerFile(QString::fromStdString(Scratch / "it's a disk.th2"));
        Press("Select destination path");
        EXPECT_EQ(Labels().at(0), "Destination path :" + (Scratch / "it's a disk.th2"));
        ChooseDisk(-1);
        EXPECT_EQ(Buttons(), "< Back (Finish)") << "without a source";
        ChooseDisk(1);
        Press("Finish");
        Press("< Back");
        Press("Next >");
        EXPECT_EQ(Buttons(), "< Back (Finish)");
        EXPECT_EQ(Labels().at(0), "File Path :");
        ChooseDisk(1);
        EXPECT_EQ(Buttons(), "< Back (Finish)") << "with the path of before";
    });
    EXPECT_EQ(Boxes(),
              Texts{"Warning: Cannot open /dev/path of sdy: The system cannot find the file specified."});
    EXPECT_EQ(ImageFileName(QDate(2026, 9, 6)),
              QStringLiteral("Tarnholt Volume Salvage (NTFS) Image # Sun, 06-Sept-2026"));
    EXPECT_EQ(Answers.SuggestedFiles.at(0), ImageFileName(QDate::currentDate()));
}

TEST_F(PagesTest, CloningWantsBothDisks) {
    RunWith([&] {
        ChooseTask(kTaskClone);
        Press("Next >");
        EXPECT_FALSE(Sheet->ActivePage().findChildren<QTreeWidget*>().at(1)->isEnabled());
        ChooseDisk(0);
        EXPECT_EQ(Buttons(), "< Back (Finish)");
        EXPECT_EQ(Info().size(), 10U);
        EXPECT_EQ(Info().at(0), "HDRInformationSource Disk :sdx");
        EXPECT_EQ(Info().at(3), "* Serial Number: WX11") << "a blank row, no size";
        ChooseDisk(1, 1);
        EXPECT_EQ(Buttons(), "< Back Finish");
        EXPECT_EQ(Info().at(0), "HDRInformationDestination Disk :sdy");
        ChooseDisk(-1);
        EXPECT_EQ(Buttons(), "< Back (Finish)") << "without a source";
        ChooseDisk(2);
        EXPECT_EQ(Buttons(), "< Back Finish") << "the destination is kept";
        EXPECT_EQ(Labels().at(0), "Source Disk # gone");
        EXPECT_EQ(Labels().at(1), "Destination Disk # sdy");
        Press("Finish");
        Press("< Back");
        Press("Next >");
        EXPECT_EQ(Labels().at(1), "Destination Disk # ");
        ChooseDisk(0);
        EXPECT_EQ(Buttons(), "< Back (Finish)") << "with the destination of before";
    });
    EXPECT_EQ(Boxes(),
              Texts{"Warning: Cannot open /dev/path of sdy: The system cannot find the file specified."});
}

} // namespace

} // namespace thntfs::test
