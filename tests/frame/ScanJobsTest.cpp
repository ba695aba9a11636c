// Scans as jobs: their states, lines and boxes, the user's pause and stop, and what goes wrong on the way.

#include "FrameFixture.h"
#include "shell/DesktopState.h"
#include "shell/PauseGate.h"
#include "support/EnvironmentVariable.h"
#include "support/FailingFileStore.h"

#include <algorithm>
#include <filesystem>

namespace thntfs::test {
namespace {

const std::vector<std::string> kBasicScanLines{
    "Processing Internal File System Structure..." + kRule + " | 0",
    "Completed processing Internal File System Structure" + kRule + " | 2",
    "Populating Directory Structure..." + kRule + " | 0",
    "Completed Populating Directory Structure" + kRule + " | 2",
};

class ScanJobs : public FrameFixture {
protected:
    void Load(const std::string& image = "basic.img") {
        LoadByMenu(SavedScanOf(Volume(image)));
        Frame->RunCommand(kCmdClearLog);
        WatchMedium();
    }

    [[nodiscard]] std::string BoxText(std::size_t number) const {
        return Answers.Boxes.at(number).Text.toStdString();
    }
};

TEST_F(ScanJobs, BasicScanRunsFromIdleToIdle) {
    Load();
    const std::string saved = TreeText();
    const std::string totals = Pane(1);
    std::vector<std::string> statesInBox;
    Answers.MayAnswer = [&](const QMessageBox& /*box*/) {
        statesInBox.push_back(std::to_string(Engine.ScanRunFlag) + std::to_string(Frame->JobBusy));
        return true;
    };
    Frame->BeginBasicScan();
    EXPECT_EQ(Engine.ScanRunFlag, 1U);
    EXPECT_EQ(Frame->JobBusy, 1U);
    EXPECT_NE(Frame->WorkerThread, nullptr);
    EXPECT_TRUE(Frame->TreeView->IsEmpty());
    EXPECT_EQ(Pane(1), "  0.000 KB in 0 Files in 0 Folders");
    Frame->UpdateCommands();
    EXPECT_FALSE(Frame->ActionOf(kCmdLoadTreeInfo)->isEnabled());
    EXPECT_TRUE(Frame->ActionOf(kCmdStop)->isEnabled());

    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(LogRows(), kBasicScanLines);
    EXPECT_EQ(statesInBox, std::vector<std::string>{"11"});
    EXPECT_TRUE(BoxText(0).starts_with("You have just completed Basic Scan of a logical drive.\n\nPlease"));
    EXPECT_EQ(Answers.Boxes[0].Caption.toStdString(), "Information");
    EXPECT_EQ(TreeText(), saved);
    EXPECT_EQ(Pane(1), totals);
    EXPECT_EQ(Pane(0), "Ready");
    EXPECT_EQ(Frame->WorkerThread, nullptr);
    EXPECT_TRUE(Frame->isMaximized());
    EXPECT_TRUE(WaitUntil([this] { return Frame->BasicScanDone == 1; }));
}

TEST_F(ScanJobs, TurboScanIsOfferedOnceForEachBasicScan) {
    Load();
    Frame->BeginBasicScan();
    ASSERT_TRUE(WaitForIdle());
    ASSERT_TRUE(WaitUntil([this] { return Frame->BasicScanDone == 1; }));
    const std::string basicTree = TreeText();
    Frame->UpdateCommands();
    Frame->RunCommand(kCmdClearLog);
    Answers.Boxes.clear();
    ASSERT_TRUE(Frame->ActionOf(kCmdTurboScan)->isEnabled());

    PressKey(Qt::Key_T, Qt::ControlModifier);
    EXPECT_EQ(Pane(1), "Total 0 KB in 0 Files in 0 Folders");
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(LogRows(),
              (std::vector<std::string>{"Started turbo scan of logical drive 4" + kRule + " | 0",
                                        "Completed turbo scan of logical drive 4" + kRule + " | 2"}));
    ASSERT_EQ(Answers.Boxes.size(), 1U);
    EXPECT_EQ(BoxText(0), "Turbo Scan Completed");
    EXPECT_EQ(TreeText(), basicTree);
    Frame->UpdateCommands();
    EXPECT_FALSE(Frame->ActionOf(kCmdTurboScan)->isEnabled());
}

TEST_F(ScanJobs, AnsweringNoToTheStopQuestionGoesOn) {
    Load();
    AskForStopAtRead(1);
    bool stoodStill = false;
    Answers.MayAnswer = [&](const QMessageBox& box) {
        if (box.text() == QStringLiteral("Do you want to stop process?")) {
            stoodStill = WaitUntil([] { return WorkerGate().IsHolding(); });
        }
        return true;
    };
    Answers.Answer(QMessageBox::No);
    Frame->BeginBasicScan();
    ASSERT_TRUE(WaitForIdle());
    EXPECT_TRUE(stoodStill);
    EXPECT_EQ(BoxText(0), "Do you want to stop process?");
    EXPECT_EQ(Answers.Boxes[0].Caption.toStdString(), "Confirm");
    EXPECT_EQ(Answers.Boxes[0].Icon, QMessageBox::Question);
    std::vector<std::string> expected = kBasicScanLines;
    expected.insert(expected.begin() + 1, {"Internal File processing | Process Paused | 0",
                                           "Internal File processing | Process Resumed | 0"});
    EXPECT_EQ(LogRows(), expected);
}

TEST_F(ScanJobs, AStoppedScanShowsWhatItFound) {
    Load("bigfolder.img");
    AskForStopAtRead(1);
    Answers.Answer(QMessageBox::Yes);
    Frame->BeginBasicScan();
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(LogRows(),
              (std::vector<std::string>{kBasicScanLines[0], "Internal File processing | Process Paused | 0",
                                        "Aborted processing Internal File System Structure" + kRule + " | 1",
                                        kBasicScanLines[2], kBasicScanLines[3]}));
    EXPECT_FALSE(Frame->TreeView->IsEmpty());
    EXPECT_TRUE(WaitUntil([this] { return Frame->BasicScanDone == 1; }));
}

TEST_F(ScanJobs, AStoppedTurboScanSaysSo) {
    Load();
    Desktop.StructuresMissing = true;
    AskForStopAtRead(1);
    Answers.Answer(QMessageBox::Yes);
    PressKey(Qt::Key_T, Qt::ControlModifier);
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(BoxText(1), "Turbo Scan aborted");
    EXPECT_EQ(LogRows().back(), "Aborted turbo scan of logical drive 4" + kRule + " | 1");
    EXPECT_FALSE(Desktop.StructuresMissing);
}

TEST_F(ScanJobs, AFolderThatCannotBeWrittenEndsInIdle) {
    Load();
    Engine.CatalogueFolder = Folder / "nowhere";
    Frame->BeginBasicScan();
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(LogRows(), (std::vector<std::string>{kBasicScanLines[0],
                                                   "Supporting Files couldn't be opened" + kRule + " | 2"}));
    EXPECT_EQ(Frame->WorkerThread, nullptr);
    EXPECT_EQ(Pane(0), "Ready");
    EXPECT_EQ(Frame->BasicScanDone, 0U);
    Frame->UpdateCommands();
    EXPECT_TRUE(Frame->ActionOf(kCmdLoadTreeInfo)->isEnabled());
}

TEST_F(ScanJobs, FilesOfAScanLieInAFolderOfTheUsersOwn) {
    Load();
    std::filesystem::create_directory(Folder / "shared");
    std::filesystem::create_symlink(Folder / "precious", Folder / "shared/NST.THT");
    const EnvironmentVariable place("TMPDIR", Folder / "shared");
    Engine.CatalogueFolder.clear();
    Frame->BeginBasicScan();
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(LogRows(), kBasicScanLines);
    EXPECT_TRUE(Engine.CatalogueFolder.starts_with(Folder / "shared/th-ntfs-")) << Engine.CatalogueFolder;
    EXPECT_FALSE(std::filesystem::exists(Folder / "precious"));
}

TEST_F(ScanJobs, AFullFolderShowsItsBoxAndTheProgramLives) {
    Load();
    FailingFileStore store;
    SetFileStore(&store);
    for (std::uint64_t call = 1; call < 30; ++call) {
        store.FailAt(call, kErrorDiskFull, true);
        Frame->BeginBasicScan();
        ASSERT_TRUE(WaitForIdle()) << call;
        EXPECT_FALSE(LogRows().empty());
    }
    SetFileStore(nullptr);
    Frame->BeginBasicScan();
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(LogRows().back(), kBasicScanLines.back());
    EXPECT_FALSE(Frame->TreeView->IsEmpty());
}

TEST_F(ScanJobs, ADiskThatGoesAwayEndsTheScanWithABox) {
    Load();
    Plan->Rules.push_back({0, kForever, kErrorNotReady});
    Frame->BeginBasicScan();
    ASSERT_TRUE(WaitForIdle());
    ASSERT_GE(Answers.Boxes.size(), 2U);
    EXPECT_EQ(Answers.Boxes[0].Caption.toStdString(), "Error");
    EXPECT_EQ(Answers.Boxes[0].Icon, QMessageBox::Critical);
    EXPECT_EQ(LogRows().back(), kBasicScanLines.back());
}

// Between the stop and the worker's end the catalogue is being read, though no scan runs any more.
TEST_F(ScanJobs, CommandsThatStartWorkLookForThemselves) {
    Load();
    const std::size_t dialogs = Answers.SuggestedFiles.size();
    const std::vector<std::uint32_t> commands{kCmdWizard,       kCmdOpenFoundDrive,    kCmdLoadTreeInfo,
                                              kCmdSaveTreeInfo, kCmdLoadPartitionInfo, kCmdTurboScan};
    Frame->JobBusy = 1;
    for (const std::uint32_t command : commands) {
        Answers.Boxes.clear();
        Frame->RunCommand(command);
        ASSERT_EQ(Answers.Boxes.size(), 1U) << command;
        EXPECT_EQ(BoxText(0), "Please wait...");
    }
    Engine.ScanRunFlag = 1;
    Answers.Boxes.clear();
    for (const std::uint32_t command : commands) {
        Frame->RunCommand(command);
    }
    Frame->JobBusy = 0;
    EXPECT_TRUE(Answers.Boxes.empty());
    EXPECT_EQ(Answers.SuggestedFiles.size(), dialogs);
    EXPECT_TRUE(LogRows().empty());
}

} // namespace
} // namespace thntfs::test
