// From Ctrl+W to a filled tree, by mouse and keys.

#include "FrameFixture.h"
#include "shell/DesktopHost.h"
#include "support/desktop/Widgets.h"
#include "wizard/WizardSheet.h"

#include <QApplication>
#include <QTableWidget>
#include <QTest>
#include <algorithm>
#include <fstream>

namespace thntfs::test {
namespace {

class WholeRoad : public FrameFixture {
protected:
    void AtSheet(std::function<void(CWizardSheet&)> act) { Answers.When<CWizardSheet>(std::move(act)); }

    /// Steps from the main page over the image page to the volumes of its table.
    void ChooseImage(const std::string& path) {
        AtSheet([this, path](CWizardSheet& sheet) {
            Press(sheet, "Recover your data from disk image");
            Press(sheet, "Next >");
            Answers.AnswerFile(QString::fromStdString(path));
            Press(sheet, "Select Image File");
            Press(sheet, "Display default partition(s)");
            Press(sheet, "Next >");
        });
    }

    void TakeFirstRow() {
        AtSheet([](CWizardSheet& sheet) {
            auto& table = *sheet.ActivePage().findChild<QTableWidget*>();
            QTest::mouseClick(table.viewport(), Qt::LeftButton, {},
                              table.visualItemRect(table.item(0, 0)).center());
            Press(sheet, "Finish");
        });
    }

    /// Drops a file where a scan is in no file, and answers the question.
    void DropAndAnswer(const std::string& path, QMessageBox::StandardButton answer) {
        Answers.Boxes.clear();
        Answers.Answer(answer);
        EXPECT_TRUE(Drop(path));
        EXPECT_TRUE(WaitUntil([this] {
            return !Answers.Boxes.empty() && QApplication::activeModalWidget() == nullptr;
        })) << path;
        EXPECT_EQ(Answers.Boxes[0].Text, QStringLiteral("Do you want to save scan information?"));
    }

    /// Drops a saved scan, which is loaded without a question.
    void DropSaved(const std::string& path) {
        Answers.Boxes.clear();
        const std::size_t lines = LogRows().size();
        EXPECT_TRUE(Drop(path));
        EXPECT_TRUE(WaitUntil([&] { return LogRows().size() == lines + 2; }));
        EXPECT_TRUE(Answers.Boxes.empty());
        EXPECT_FALSE(TreeIsEmpty());
    }

    /// The key leads to a wizard's run, and where that finishes to a scan.
    void RunWizard(Qt::Key key = Qt::Key_W, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
        PressKey(key, modifiers);
        EXPECT_TRUE(Answers.AllDone());
        EXPECT_TRUE(WaitForIdle());
    }

    std::string DesktopScan(const std::string& name) {
        Answers.AnswerFile(QString::fromStdString(Folder / name));
        ChooseInMenu(kSaveTree);
        return ReadWholeFile(Folder / name);
    }

    const std::string Image = Volume("basic.img");
};

TEST_F(WholeRoad, AnImageBothScansAndTheNextVolume) {
    ChooseImage(Image);
    TakeFirstRow();
    RunWizard();
    std::vector<std::string> lines{
        "Selected: " + Image + " | Image Processing Mode:Partition Table | 0",
        "Selected NTFS logical drive 1 | Starting Sector 2048, Size  24.000 MB | 0"};
    lines.insert(lines.end(), kBasicScanLines.begin(), kBasicScanLines.end());
    EXPECT_EQ(LogRows(), lines);
    EXPECT_NE(TreeText().find("    Reused\n"), std::string::npos) << TreeText();
    ASSERT_TRUE(WaitUntil([this] { return IsOffered("Turbo Scan"); }));
    const std::string tree = TreeText();
    PressKey(Qt::Key_T, Qt::ControlModifier); // Cancel
    Answers.Answer(QMessageBox::Save);        // and no file
    PressKey(Qt::Key_T, Qt::ControlModifier);
    EXPECT_TRUE(Answers.Boxes.back().Text.startsWith(QStringLiteral("Save the result of the Basic Scan")));
    EXPECT_EQ(Answers.Boxes.size(), 3U);
    EXPECT_EQ(LogRows(), lines) << "the scan stays";
    EXPECT_EQ(DesktopScan("basic.tht"), ReadWholeFile(SavedScanOf(Image)));
    WatchMedium();
    AtRead(0, [this] {
        EXPECT_TRUE(TreeIsEmpty());
        EXPECT_EQ(Pane(1), "Total 0 KB in 0 Files in 0 Folders");
    });
    PressKey(Qt::Key_T, Qt::ControlModifier);
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(LogRows().end()[-2], "Started turbo scan of logical drive 1" + kRule + " | 0");
    EXPECT_EQ(LogRows().back(), "Completed turbo scan of logical drive 1" + kRule + " | 2");
    EXPECT_EQ(Answers.Boxes.back().Text, QStringLiteral("Turbo Scan Completed"));
    EXPECT_EQ(TreeText(), tree);
    EXPECT_FALSE(IsOffered("Turbo Scan"));
    EXPECT_EQ(DesktopScan("turbo.tht"), ReadWholeFile(SavedScanOf(Image, {"--turbo"})));

    TheDesktopHost().SetSearchDialog(Frame.get());
    EXPECT_FALSE(IsOffered("Open found Logical Drive")) << "a search's thread has the list";
    TheDesktopHost().SetSearchDialog(nullptr);
    TakeFirstRow();
    RunWizard(Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(IsOffered("Turbo Scan")) << "once for each volume";
    Answers.Boxes.clear();
    Answers.Answer(QMessageBox::No);
    Frame->close();
    EXPECT_EQ(Answers.Boxes.size(), 1U) << "the scan is in no file";
    EXPECT_FALSE(Frame->isVisible());
}

TEST_F(WholeRoad, MissingStructuresAndThenTurboScan) {
    constexpr std::size_t kStart = 2048 * 512;
    constexpr std::size_t kCluster = 4096;
    std::string disk = ReadWholeFile(Image);
    for (const std::size_t cluster : {4, 3071}) { // of the table and of its mirror
        disk.replace(kStart + cluster * kCluster, kCluster, kCluster, '\0');
    }
    std::ofstream(Folder / "wreck.img", std::ios::binary) << disk;
    ChooseImage(Folder / "wreck.img");
    TakeFirstRow();
    AtSheet([this](CWizardSheet& sheet) {
        EXPECT_EQ(Answers.Boxes.back().Icon, QMessageBox::Warning);
        Answers.Answer(QMessageBox::Yes);
        Press(sheet, "Cancel");
    });
    RunWizard();
    EXPECT_TRUE(TreeIsEmpty());
    EXPECT_FALSE(IsOffered("Spoor Hound"));

    PressKey(Qt::Key_T, Qt::ControlModifier);
    ASSERT_TRUE(WaitForIdle());
    EXPECT_FALSE(TreeIsEmpty());
    EXPECT_EQ(LogRows().back(), "Completed turbo scan of logical drive 0" + kRule + " | 2");
    DropAndAnswer(SavedScanOf(Image), QMessageBox::Cancel);
    Answers.Boxes.clear();
    Frame->close();
    EXPECT_FALSE(Frame->isVisible()) << "no Basic Scan was ever begun, so nothing is asked";
}

TEST_F(WholeRoad, FoundPartitionsGoBothWaysBetweenThePrograms) {
    const std::string terminalFile = Folder / "terminal.thd";
    const RunResult saved =
        RunProgram(CliPath(), {"partitions", Image, "--search", "thorough", "--save-info", terminalFile});
    ASSERT_EQ(saved.Status, 0) << saved.Err;

    Answers.AnswerFile(QString::fromStdString(terminalFile));
    TakeFirstRow();
    ChooseInMenu("File/Open Saved Scan Info/Load Partition Info");
    EXPECT_TRUE(Answers.AllDone());
    ASSERT_TRUE(WaitForIdle());
    const auto rows = LogRows();
    EXPECT_EQ(rows.at(0), "Processing Scan Info File : terminal.thd | Location : " + Folder.Path() + " | 0");
    EXPECT_TRUE(rows.at(1).starts_with("Selected NTFS logical drive 1 | Starting Sector 2048")) << rows.at(1);
    EXPECT_EQ(std::count(rows.begin(), rows.end(),
                         "Disk scan information opened successfully. | " + terminalFile + " | 2"),
              1);
    EXPECT_FALSE(TreeIsEmpty());

    Answers.AnswerFile(QString::fromStdString(Folder / "desktop"));
    ChooseInMenu(kSavePartitions);
    EXPECT_EQ(ReadWholeFile(Folder / "desktop.thd"), ReadWholeFile(terminalFile));
}

TEST_F(WholeRoad, AnUnsavedScanIsAskedAboutBeforeADropTakesItsPlace) {
    const std::string partitions = Folder / "found.thd";
    const std::string other = Volume("names.img");
    const std::string saved = SavedScanOf(other);
    ASSERT_EQ(RunProgram(CliPath(), {"partitions", Image, "--save-info", partitions}).Status, 0);
    AtSheet([](CWizardSheet& sheet) {
        EXPECT_EQ(sheet.ActivePage().Heading(), QStringLiteral("Select image to recover data"));
        Press(sheet, "Next >");
    });
    TakeFirstRow();
    Drop(Image);
    EXPECT_TRUE(WaitUntil([this] { return Answers.AllDone(); }));
    ASSERT_TRUE(WaitForIdle());
    const std::string tree = TreeText();
    const auto pressNextAndClose = [](CWizardSheet& sheet) {
        Press(sheet, "Next >");
        sheet.done(0);
    };
    Answers.AnswerFile(QString::fromStdString(Folder / "nowhere/kept.tht"));
    DropAndAnswer(saved, QMessageBox::Yes); // which fails, so that it is asked about again
    EXPECT_EQ(TreeText(), tree);
    AtSheet(pressNextAndClose);
    for (const std::string& path : {partitions, other}) {
        DropAndAnswer(path, QMessageBox::Cancel);
        EXPECT_EQ(TreeText(), tree);
    }
    AtSheet(pressNextAndClose);
    Answers.AnswerFile(QString::fromStdString(Folder / "kept.tht"));
    DropAndAnswer(other, QMessageBox::Yes);
    EXPECT_TRUE(TreeIsEmpty());
    EXPECT_EQ(ReadWholeFile(Folder / "kept.tht"), ReadWholeFile(SavedScanOf(Image)));

    DropSaved(saved);
    Frame->BeginBasicScan();
    ASSERT_TRUE(WaitForIdle());
    DropAndAnswer(saved, QMessageBox::No);
    DropSaved(saved);
    for (const std::string& path : {Folder.Path(), Folder / "nowhere.img"}) {
        Answers.Boxes.clear();
        Drop(path);
        EXPECT_TRUE(WaitUntil([this] { return !Answers.Boxes.empty(); })) << path;
        EXPECT_EQ(Answers.Boxes[0].Icon, QMessageBox::Warning);
    }
}

} // namespace
} // namespace thntfs::test
