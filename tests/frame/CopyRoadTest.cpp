// Imaging and cloning from the wizard to the end, with loop devices for disks: what the main window allows
// meanwhile.

#include "FrameFixture.h"
#include "platform/system/Interrupt.h"
#include "shell/DesktopState.h"
#include "support/LoopDevice.h"
#include "support/desktop/Widgets.h"
#include "wizard/WizardSheet.h"

#include <QDialog>
#include <QTreeWidget>
#include <csignal>
#include <filesystem>
#include <fstream>

namespace thntfs::test {
namespace {

class CopyRoad : public FrameFixture {
protected:
    CopyRoad() {
        OnInterrupt(Engine.ScanRunFlag);
        std::filesystem::copy_file(Volume("basic.img"), Folder / "disk");
        Source = LoopDevice::Attach(Folder / "disk", "--read-only");
    }
    ~CopyRoad() override { OnInterrupt(Engine.ScanRunFlag); }

    static void ChooseDevice(const CWizardSheet& sheet, const std::string& path, int tree = 0) {
        auto& shown = *sheet.ActivePage().findChildren<QTreeWidget*>().at(tree);
        const QString name = QString::fromStdString(path.substr(5));
        for (int row = 0; row < shown.topLevelItem(0)->childCount(); ++row) {
            if (shown.topLevelItem(0)->child(row)->text(0) == name) {
                shown.setCurrentItem(shown.topLevelItem(0)->child(row));
            }
        }
    }

    /// Leads the wizard through the page of images; the copy then runs.
    void BeginImage() {
        Answers.When<CWizardSheet>([this](CWizardSheet& sheet) {
            Press(sheet, "Create disk Image");
            Press(sheet, "Next >");
            ChooseDevice(sheet, Source->Path());
            Answers.AnswerFile(QString::fromStdString(Folder / "disk.th2"));
            Press(sheet, "Select destination path");
            Press(sheet, "Finish");
        });
        PressKey(Qt::Key_W, Qt::ControlModifier);
        EXPECT_TRUE(Answers.AllDone());
    }

    bool WaitForEnd() {
        return WaitUntil([] { return Desktop.CopyDialog == nullptr; }) && WaitForIdle();
    }

    std::unique_ptr<LoopDevice> Source;
};

TEST_F(CopyRoad, AnImageWhileTheWindowWaits) {
    if (Source == nullptr) {
        GTEST_SKIP() << "no loop devices here";
    }
    LoadByMenu(SavedScanOf(Volume("names.img")));
    const std::string device = Source->Path();
    const auto isQuestion = [](const QMessageBox& box) { return box.icon() == QMessageBox::Question; };
    Answers.MayAnswer = [&](const QMessageBox& box) {
        if (isQuestion(box)) { // the copy stands still
            EXPECT_FALSE(IsOffered("Wizard") || IsOffered("Stop Current Process") ||
                         IsOffered("Load Tree Info"));
        } else if (box.text().startsWith(QStringLiteral("Disk"))) {
            EXPECT_FALSE(IsOffered("Wizard")) << "the end is still being told";
        }
        return true;
    };
    BeginImage();
    ASSERT_NE(Desktop.CopyDialog, nullptr);
    EXPECT_TRUE(TreeIsEmpty());
    Frame->close();
    EXPECT_TRUE(Frame->isVisible());
    EXPECT_EQ(Answers.Boxes.back().Text, QStringLiteral("Please stop running process"));
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(Answers.Boxes.back().Text, QStringLiteral("Disk Imaging Completed"));
    EXPECT_EQ(LogRows().back(),
              "Completed Disk Imaging | " + device + " to " + Folder.Path() + "/disk.th2 | 2");
    EXPECT_EQ(ReadWholeFile(Folder / "disk.th2").size(), std::filesystem::file_size(Folder / "disk"));
    EXPECT_FALSE(IsOffered("Open found Logical Drive")) << "all media are closed";
}

TEST_F(CopyRoad, AnEndFromOutsideStopsTheCopyAndAsksNothing) {
    if (Source == nullptr) {
        GTEST_SKIP() << "no loop devices here";
    }
    Answers.MayAnswer = [](const QMessageBox& /*box*/) { return false; }; // nobody sits there
    BeginImage();
    std::raise(SIGTERM);
    EXPECT_TRUE(WaitUntil([this] { return !Frame->isVisible(); }));
    EXPECT_EQ(Desktop.CopyDialog, nullptr);
    EXPECT_TRUE(LogRows().back().find(" Disk Imaging | ") != std::string::npos) << LogRows().back();
}

TEST_F(CopyRoad, ACloneIsToldToTheSystem) {
    std::ofstream(Folder / "target");
    std::filesystem::resize_file(Folder / "target", std::filesystem::file_size(Folder / "disk"));
    const auto target = LoopDevice::Attach(Folder / "target");
    if (Source == nullptr || target == nullptr) {
        GTEST_SKIP() << "no loop devices here";
    }
    Answers.Answer(QMessageBox::Yes);
    Answers.When<CWizardSheet>([&](CWizardSheet& sheet) {
        ChooseDevice(sheet, Source->Path());
        ChooseDevice(sheet, target->Path(), 1);
        Press(sheet, "Finish");
    });
    ChooseInMenu("File/Clone Disk");
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(Answers.Boxes.back().Text, QStringLiteral("Disk Cloning Completed"));
    EXPECT_EQ(LogRows(),
              (Texts{"The system has not read the new partitions of " + target->Path() +
                         " | The parameter is incorrect. | 0", // on such a device it looks for none
                     "Completed Disk Cloning | " + Source->Path() + " to " + target->Path() + " | 2"}));
    EXPECT_EQ(ReadWholeFile(Folder / "target").substr(512), ReadWholeFile(Folder / "disk").substr(512));
}

} // namespace
} // namespace thntfs::test
