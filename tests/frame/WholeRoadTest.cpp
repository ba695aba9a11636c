// From Ctrl+W to a filled tree, by mouse and keys.

#include "FrameFixture.h"
#include "shell/DesktopHost.h"
#include "support/desktop/Widgets.h"
#include "wizard/WizardSheet.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
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

    void Drop(const std::string& path) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
        QDragEnterEvent enter({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(Frame.get(), &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent drop({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(Frame.get(), &drop);
    }

    /// The key leads to a wizard's run, and where that finishes to a scan.
    void RunWizard(Qt::Key key = Qt::Key_W, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
        PressKey(key, modifiers);
        EXPECT_TRUE(Answers.AllDone());
        EXPECT_TRUE(WaitForIdle());
    }

    /// What the terminal program saves of the same work.
    std::string TerminalScan(std::vector<std::string> words) {
        words.insert(words.begin(), {"scan", "--save-info", Folder / "terminal.tht"});
        const RunResult result = RunProgram(CliPath(), words);
        EXPECT_EQ(result.Status, 0) << result.Err;
        return ReadWholeFile(Folder / "terminal.tht");
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
    EXPECT_EQ(Details().model()->index(0, 0).data(), QStringLiteral(" Root"));
    EXPECT_EQ(DesktopScan("basic.tht"), TerminalScan({Image}));

    ASSERT_TRUE(WaitUntil([this] { return IsOffered("Turbo Scan"); }));
    PressKey(Qt::Key_T, Qt::ControlModifier);
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(LogRows().back(), "Completed turbo scan of logical drive 1" + kRule + " | 2");
    EXPECT_FALSE(IsOffered("Turbo Scan"));
    EXPECT_EQ(DesktopScan("turbo.tht"), TerminalScan({Image, "--turbo"}));

    TheDesktopHost().SetSearchDialog(Frame.get());
    EXPECT_FALSE(IsOffered("Open found Logical Drive")) << "a search's thread has the list";
    TheDesktopHost().SetSearchDialog(nullptr);
    TakeFirstRow();
    RunWizard(Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_FALSE(TreeIsEmpty());
    EXPECT_TRUE(IsOffered("Turbo Scan")) << "once for each volume";
    Answers.Boxes.clear();
    Frame->close();
    EXPECT_EQ(Answers.Boxes.size(), 1U) << "the scan is in no file";
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
    Answers.Boxes.clear();
    Frame->close();
    EXPECT_TRUE(Answers.Boxes.empty()); // no Basic Scan was ever begun
    EXPECT_FALSE(Frame->isVisible());
}

TEST_F(WholeRoad, FoundPartitionsGoBothWaysBetweenThePrograms) {
    const std::string terminalFile = Folder / "terminal.thd";
    const RunResult saved =
        RunProgram(CliPath(), {"partitions", Image, "--search", "thorough", "--save-info", terminalFile});
    ASSERT_EQ(saved.Status, 0) << saved.Err;

    Answers.AnswerFile(QString::fromStdString(terminalFile));
    AtSheet([](CWizardSheet& sheet) { EXPECT_EQ(ButtonOf(sheet, "< Back")->isEnabled(), false); });
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
    EXPECT_NE(TreeText().find("    Reused\n"), std::string::npos);

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
    const auto dropAndAnswer = [this](const std::string& path, QMessageBox::StandardButton answer) {
        Answers.Boxes.clear();
        Answers.Answer(answer);
        Drop(path);
        EXPECT_TRUE(WaitUntil([this] {
            return !Answers.Boxes.empty() && QApplication::activeModalWidget() == nullptr;
        })) << path;
        EXPECT_EQ(Answers.Boxes[0].Text, QStringLiteral("Do you want to save scan information?"));
    };
    const auto pressNextAndClose = [](CWizardSheet& sheet) {
        Press(sheet, "Next >");
        sheet.done(0);
    };
    AtSheet(pressNextAndClose);
    for (const std::string& path : {saved, partitions, other}) {
        dropAndAnswer(path, QMessageBox::Cancel);
        EXPECT_EQ(TreeText(), tree);
    }
    AtSheet(pressNextAndClose);
    Answers.AnswerFile(QString::fromStdString(Folder / "kept.tht"));
    dropAndAnswer(other, QMessageBox::Yes);
    EXPECT_TRUE(TreeIsEmpty());
    EXPECT_EQ(ReadWholeFile(Folder / "kept.tht"), TerminalScan({Image}));

    Drop(saved);
    EXPECT_TRUE(WaitUntil([this] { return !TreeIsEmpty(); }));
    Frame->BeginBasicScan();
    ASSERT_TRUE(WaitForIdle());
    dropAndAnswer(saved, QMessageBox::No);
    Answers.Boxes.clear();
    for (const char* volume : {"names.img", "basic.img"}) {
        Drop(SavedScanOf(Volume(volume)));
        EXPECT_TRUE(WaitUntil([this] { return !TreeIsEmpty(); }));
        EXPECT_TRUE(Answers.Boxes.empty()) << "it was in a file already";
    }
    for (const std::string& path : {Folder.Path(), Folder / "nowhere.img"}) {
        Answers.Boxes.clear();
        Drop(path);
        EXPECT_TRUE(WaitUntil([this] { return !Answers.Boxes.empty(); })) << path;
        EXPECT_EQ(Answers.Boxes[0].Icon, QMessageBox::Warning);
    }
}

} // namespace
} // namespace thntfs::test
