// From Ctrl+W to a filled tree, by mouse and keys.

#include "FrameFixture.h"
#include "shell/DesktopHost.h"
#include "shell/DesktopState.h"
#include "support/BuildPaths.h"
#include "support/LoopDevice.h"
#include "support/desktop/ModalSteps.h"
#include "support/desktop/Widgets.h"
#include "wizard/ChooseSectorRange.h"
#include "wizard/DiskScanMode.h"
#include "wizard/WizardSheet.h"

#include <QAbstractButton>
#include <QDropEvent>
#include <QMimeData>
#include <QTableWidget>
#include <QTest>
#include <QTreeWidget>
#include <filesystem>
#include <fstream>

namespace thntfs::test {
namespace {

constexpr std::size_t kSector = 512;
constexpr std::size_t kStart = 2048; // of the volume on the image "basic"
constexpr std::size_t kClusterSectors = 8;
constexpr std::size_t kMftCluster = 4;
constexpr std::size_t kMirrorCluster = 3071;

class WholeRoad : public FrameFixture {
protected:
    /// The image "basic" with some of its sectors overwritten.
    std::string MakeWreck(const std::vector<std::pair<std::size_t, std::size_t>>& wiped) {
        std::string disk = ReadWholeFile(Volume("basic.img"));
        for (const auto& [sector, count] : wiped) {
            disk.replace(sector * kSector, count * kSector, count * kSector, '\0');
        }
        std::ofstream(Folder / "wreck.img", std::ios::binary) << disk;
        return Folder / "wreck.img";
    }

    template <typename Window>
    void When(std::function<void(Window&)> act) {
        Steps.When<Window>(std::move(act));
    }

    void AtSheet(std::function<void(CWizardSheet&)> act) { When<CWizardSheet>(std::move(act)); }

    /// Steps from the main page over the image page.
    void ChooseImage(const std::string& path, const char* mode) {
        AtSheet([this, path, mode](CWizardSheet& sheet) {
            Press(sheet, "Recover your data from disk image");
            Press(sheet, "Next >");
            Answers.AnswerFile(QString::fromStdString(path));
            Press(sheet, "Select Image File");
            Press(sheet, mode);
            Press(sheet, "Next >");
        });
    }

    void Search(const char* method) {
        When<CDiskScanMode>([method](CDiskScanMode& dialog) {
            Press(dialog, method);
            Press(dialog, "OK");
        });
        if (std::string(method) == "Thorough Scan") {
            When<CChooseSectorRange>([](CChooseSectorRange& dialog) { Press(dialog, "OK"); });
        }
    }

    void TakeRow(int row) {
        AtSheet([row](CWizardSheet& sheet) {
            auto& table = *sheet.ActivePage().findChild<QTableWidget*>();
            QTest::mouseClick(table.viewport(), Qt::LeftButton, {},
                              table.visualItemRect(table.item(row, 0)).center());
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

    void RunWizard() {
        PressKey(Qt::Key_W, Qt::ControlModifier);
        EXPECT_TRUE(Steps.AllDone());
        EXPECT_TRUE(WaitForIdle());
        EXPECT_TRUE(Frame->TreeView->IsEmpty() || WaitUntil([this] { return Frame->BasicScanDone == 1; }));
    }

    /// What the terminal program saves of the same work.
    std::string TerminalScan(const std::vector<std::string>& words) {
        std::vector<std::string> all{"scan", "--save-info", Folder / "terminal.tht"};
        all.insert(all.end(), words.begin(), words.end());
        const RunResult result = RunProgram(CliPath(), all);
        EXPECT_EQ(result.Status, 0) << result.Err;
        return ReadWholeFile(Folder / "terminal.tht");
    }

    std::string DesktopScan() {
        Answers.AnswerFile(QString::fromStdString(Folder / "desktop.tht"));
        ChooseInMenu({QStringLiteral("Tools"), QStringLiteral("Save Scan Information"),
                      QStringLiteral("Save Tree Info")});
        return ReadWholeFile(Folder / "desktop.tht");
    }

    ModalSteps Steps;
};

const std::vector<std::string> kScanLines{
    "Processing Internal File System Structure..." + kRule + " | 0",
    "Completed processing Internal File System Structure" + kRule + " | 2",
    "Populating Directory Structure..." + kRule + " | 0",
    "Completed Populating Directory Structure" + kRule + " | 2",
};

TEST_F(WholeRoad, AnImageWithItsTable) {
    const std::string image = Volume("basic.img");
    ChooseImage(image, "Display default partition(s)");
    TakeRow(0);
    RunWizard();

    std::vector<std::string> lines{
        "Selected: " + image + " | Image Processing Mode:Partition Table | 0",
        "Selected NTFS logical drive 1 | Starting Sector 2048, Size  24.000 MB | 0"};
    lines.insert(lines.end(), kScanLines.begin(), kScanLines.end());
    EXPECT_EQ(LogRows(), lines);
    ASSERT_EQ(Answers.Boxes.size(), 1U);
    EXPECT_TRUE(Answers.Boxes[0].Text.startsWith(QStringLiteral("You have just completed Basic Scan")));
    EXPECT_NE(TreeText().find("    Reused\n"), std::string::npos) << TreeText();
    EXPECT_EQ(ListNames().at(0), " Root");
    EXPECT_TRUE(Pane(1).ends_with(" Folders")) << Pane(1);
    EXPECT_EQ(Frame->LogicalDriveNumber, 1);
    EXPECT_EQ(DesktopScan(), TerminalScan({image}));
}

TEST_F(WholeRoad, ALostTableByBothSearches) {
    const std::string wreck = MakeWreck({{0, 1}, {kStart, 1}});
    ChooseImage(wreck, "Search for lost partition(s)");
    Search("Thorough Scan");
    TakeRow(0);
    RunWizard();
    EXPECT_EQ(LogRows().at(1), "Searching Logical Volumes | Sectors Range 0 to 51200 | 0");
    EXPECT_EQ(LogRows().at(2), "Completed Searching partitions | ----------------- | 2");
    EXPECT_NE(TreeText().find("    Reused\n"), std::string::npos) << TreeText();
    EXPECT_EQ(DesktopScan(), TerminalScan({wreck, "--search", "thorough", "--partition", "1"}));
}

TEST_F(WholeRoad, AQuickSearchThatFindsNothingListsNothing) {
    ChooseImage(MakeWreck({{0, 1}}), "Search for lost partition(s)");
    Search("Quick Scan");
    AtSheet([](CWizardSheet& sheet) {
        EXPECT_EQ(RowsShown(sheet).at(0).substr(0, 23), "No Logical Drives Found");
        EXPECT_FALSE(ButtonOf(sheet, "Finish")->isEnabled());
        sheet.done(0);
    });
    RunWizard();
    EXPECT_EQ(Answers.Boxes.at(0).Text.toStdString(),
              "Quick scan of drives completed.\nNo logical drive(s) found.\nPlease use thorough scan.");
    EXPECT_TRUE(Frame->TreeView->IsEmpty());
    EXPECT_FALSE(Frame->ActionOf(kCmdOpenFoundDrive)->isEnabled());
}

TEST_F(WholeRoad, MissingStructuresAndThenTurboScan) {
    const std::string wreck = MakeWreck({{kStart + kMftCluster * kClusterSectors, kClusterSectors},
                                         {kStart + kMirrorCluster * kClusterSectors, kClusterSectors}});
    ChooseImage(wreck, "Display default partition(s)");
    TakeRow(0);
    AtSheet([this](CWizardSheet& sheet) {
        EXPECT_EQ(Answers.Boxes.back().Icon, QMessageBox::Warning);
        Answers.Answer(QMessageBox::Yes);
        Press(sheet, "Cancel");
    });
    RunWizard();
    EXPECT_TRUE(Desktop.StructuresMissing);
    EXPECT_TRUE(Frame->TreeView->IsEmpty());

    PressKey(Qt::Key_T, Qt::ControlModifier);
    ASSERT_TRUE(WaitForIdle());
    EXPECT_FALSE(Frame->TreeView->IsEmpty());
    EXPECT_EQ(LogRows().back(), "Completed turbo scan of logical drive 0" + kRule + " | 2");
    EXPECT_EQ(DesktopScan(), TerminalScan({wreck, "--turbo"}));
    Answers.Boxes.clear();
    Frame->ScanInfoDirty = 1;
    Frame->close();
    EXPECT_TRUE(Answers.Boxes.empty()); // no Basic Scan was ever begun
}

TEST_F(WholeRoad, FoundPartitionsGoBothWaysBetweenThePrograms) {
    const std::string wreck = MakeWreck({{0, 1}});
    const std::string terminalFile = Folder / "terminal.thd";
    const RunResult saved =
        RunProgram(CliPath(), {"partitions", wreck, "--search", "thorough", "--save-info", terminalFile});
    ASSERT_EQ(saved.Status, 0) << saved.Err;

    Answers.AnswerFile(QString::fromStdString(terminalFile));
    AtSheet([](CWizardSheet& sheet) { EXPECT_EQ(ButtonOf(sheet, "< Back")->isEnabled(), false); });
    TakeRow(0);
    ChooseInMenu({QStringLiteral("File"), QStringLiteral("Open Saved Scan Info"),
                  QStringLiteral("Load Partition Info")});
    EXPECT_TRUE(Steps.AllDone());
    ASSERT_TRUE(WaitForIdle());
    const auto rows = LogRows();
    EXPECT_EQ(rows.at(0), "Processing Scan Info File : terminal.thd | Location : " + Folder.Path() + " | 0");
    EXPECT_TRUE(rows.at(1).starts_with("Selected NTFS logical drive 1 | Starting Sector 2048")) << rows.at(1);
    EXPECT_NE(std::find(rows.begin(), rows.end(),
                        "Disk scan information opened successfully. | " + terminalFile + " | 2"),
              rows.end());
    EXPECT_NE(TreeText().find("    Reused\n"), std::string::npos);

    Answers.AnswerFile(QString::fromStdString(Folder / "desktop"));
    ChooseInMenu({QStringLiteral("Tools"), QStringLiteral("Save Scan Information"),
                  QStringLiteral("Save Partition Info")});
    EXPECT_EQ(ReadWholeFile(Folder / "desktop.thd"), ReadWholeFile(terminalFile));
    const RunResult listed = RunProgram(CliPath(), {"list", Folder / "desktop.thd"});
    EXPECT_NE(listed.Out.find("/Reused"), std::string::npos) << listed.Out << listed.Err;
}

TEST_F(WholeRoad, AFoundDriveIsOpenedAgain) {
    ChooseImage(Volume("basic.img"), "Display default partition(s)");
    AtSheet([this](CWizardSheet& sheet) {
        Answers.Answer(QMessageBox::Yes);
        Press(sheet, "Cancel");
    });
    RunWizard();
    EXPECT_TRUE(Frame->TreeView->IsEmpty());
    TheDesktopHost().SetSearchDialog(Frame.get());
    EXPECT_FALSE(Frame->State().HasPartitions) << "a search's thread has the list";
    TheDesktopHost().SetSearchDialog(nullptr);
    TakeRow(0);
    PressKey(Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(Steps.AllDone());
    ASSERT_TRUE(WaitForIdle());
    EXPECT_FALSE(Frame->TreeView->IsEmpty());
}

TEST_F(WholeRoad, AnUnsavedScanIsAskedAboutBeforeAnythingTakesItsPlace) {
    const std::string image = Volume("basic.img");
    const std::string partitions = Folder / "found.thd";
    const std::string saved = SavedScanOf(Volume("names.img"));
    ASSERT_EQ(RunProgram(CliPath(), {"partitions", image, "--save-info", partitions}).Status, 0);
    ChooseImage(image, "Display default partition(s)");
    TakeRow(0);
    RunWizard();
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
    for (const std::string& path : {saved, partitions, Volume("names.img")}) {
        dropAndAnswer(path, QMessageBox::Cancel);
        EXPECT_EQ(TreeText(), tree);
    }
    AtSheet(pressNextAndClose);
    Answers.AnswerFile(QString::fromStdString(Folder / "kept.tht"));
    dropAndAnswer(Volume("names.img"), QMessageBox::Yes);
    EXPECT_EQ(ReadWholeFile(Folder / "kept.tht"), TerminalScan({image}));
    Frame->close();
    EXPECT_EQ(Answers.Boxes.size(), 1U) << "what is gone can't be saved";
}

TEST_F(WholeRoad, ADroppedImageOpensTheImagePage) {
    AtSheet([](CWizardSheet& sheet) {
        EXPECT_EQ(sheet.ActivePage().Heading(), QStringLiteral("Select image to recover data"));
        Press(sheet, "Next >");
    });
    TakeRow(0);
    Drop(Volume("basic.img"));
    EXPECT_TRUE(WaitUntil([this] { return Steps.AllDone(); }));
    ASSERT_TRUE(WaitForIdle());
    EXPECT_FALSE(Frame->TreeView->IsEmpty());
}

TEST_F(WholeRoad, ADroppedSavedScanIsLoaded) {
    Drop(SavedScanOf(Volume("basic.img")));
    EXPECT_TRUE(WaitUntil([this] { return !Frame->TreeView->IsEmpty(); }));
    Drop(Folder.Path()); // is refused
    EXPECT_TRUE(WaitUntil([this] { return !Answers.Boxes.empty(); }));
}

TEST_F(WholeRoad, ADiskOfTheMachine) {
    const auto twin =
        LoopDevice::Attach(Volume("basic.img"), "--read-only"); // the log must not name this one
    const auto loop = LoopDevice::Attach(Volume("basic.img"), "--read-only");
    if (loop == nullptr) {
        GTEST_SKIP() << "no loop devices here";
    }
    const QString name = QString::fromStdString(std::filesystem::path(loop->Path()).filename());
    AtSheet([name](CWizardSheet& sheet) {
        Press(sheet, "Recover your Data");
        Press(sheet, "Next >");
        auto& tree = *sheet.ActivePage().findChild<QTreeWidget*>();
        const auto items = tree.findItems(name, Qt::MatchExactly | Qt::MatchRecursive);
        ASSERT_EQ(items.size(), 1) << name.toStdString();
        tree.scrollToItem(items.front());
        QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, tree.visualItemRect(items.front()).center());
        Press(sheet, "Next >");
    });
    TakeRow(0);
    RunWizard();
    EXPECT_TRUE(LogRows().at(0).starts_with(name.toStdString() + ",  ")) << LogRows().at(0);
    EXPECT_EQ(DesktopScan(), TerminalScan({loop->Path()}));
}

} // namespace
} // namespace thntfs::test
