// Scans as jobs: what they show and allow, the user's pause and stop, and what goes wrong on the way.

#include "FrameFixture.h"
#include "shell/DesktopState.h"
#include "shell/DlgWait.h"
#include "shell/PauseGate.h"
#include "shell/WindowMessages.h"
#include "support/FailingFileStore.h"

#include <filesystem>

namespace thntfs::test {
namespace {

using Titles = std::set<std::string>;
using Texts = std::vector<std::string>;

const std::string kPaused = "Internal File processing | Process Paused | 0";
const std::string kResumed = "Internal File processing | Process Resumed | 0";

class ScanJobs : public FrameFixture {
protected:
    void Load(const std::string& image = "basic.img") {
        LoadByMenu(SavedScanOf(Volume(image)));
        ClearLog();
        WatchMedium();
    }

    void ClearLog() { ChooseInMenu("Tools/Clear Process  Log"); }

    void Scan() {
        Frame->BeginBasicScan();
        ASSERT_TRUE(WaitForIdle());
    }

    /// Chooses a command as a key does that comes before its rule is looked at again; gives the boxes' texts.
    Texts Insist(const char* title) {
        Answers.Boxes.clear();
        Command(title).setEnabled(true);
        Command(title).trigger();
        return BoxTexts();
    }

    Texts Close() {
        Answers.Boxes.clear();
        Frame->close();
        EXPECT_TRUE(Frame->isVisible());
        return BoxTexts();
    }

    [[nodiscard]] Texts BoxTexts() const {
        Texts texts;
        for (const SeenBox& box : Answers.Boxes) {
            texts.push_back(box.Caption.toStdString() + ": " + box.Text.toStdString());
        }
        return texts;
    }
};

TEST_F(ScanJobs, ABasicScanFillsTheWindow) {
    Load();
    const std::string saved = TreeText();
    const std::string totals = Pane(1);
    EXPECT_EQ(Greyed(), (Titles{"", "Find Next", "Go to Parent Folder", "Stop Current Process", "Turbo Scan",
                                "Clear Process  Log", "Save Process Log", "Copy Names", "Copy Paths"}));
    AtRead(1, [this] {
        EXPECT_TRUE(TreeIsEmpty());
        EXPECT_EQ(Pane(1), "  0.000 KB in 0 Files in 0 Folders");
        EXPECT_EQ(Frame->centralWidget()->cursor().shape(), Qt::WaitCursor);
        Engine.ProgressTotal = 4;
        for (Engine.ProgressDone = 1; Engine.ProgressDone < 3; ++Engine.ProgressDone) {
            WM_JOB_PROGRESS.Send(Frame.get());
            EXPECT_EQ(Pane(0), "Scanning :" + std::to_string(Engine.ProgressDone * 25) + "%");
        }
        EXPECT_TRUE((", " + Pane(2)).ends_with(", 0 files and folders found")) << Pane(2);
        WM_PROGRESS_CAPTION.Send(Frame.get(), "Populating ");
        WM_JOB_PROGRESS.Send(Frame.get());
        Command("Save All").showStatusText(Frame.get());
        EXPECT_EQ(Pane(0), "Populating  :75%");
    });
    Answers.MayAnswer = [this](const QMessageBox& /*box*/) {
        EXPECT_FALSE(IsOffered("Load Tree Info")); // the job lasts until its end has been told
        EXPECT_EQ(Pane(0) + "|" + Pane(2), "Ready|") << "what was found at first says nothing any more";
        return true;
    };
    Scan();
    EXPECT_EQ(LogRows(), kBasicScanLines);
    ASSERT_EQ(Answers.Boxes.size(), 1U);
    EXPECT_TRUE(BoxTexts()[0].starts_with("Information: You have just completed Basic Scan of a logical"));
    EXPECT_EQ(TreeText(), saved);
    EXPECT_EQ(Pane(1), totals);
    EXPECT_EQ(Frame->centralWidget()->cursor().shape(), Qt::ArrowCursor);
    EXPECT_TRUE(Frame->isMaximized());
    EXPECT_TRUE(WaitUntil([this] { return IsOffered("Turbo Scan"); }));
}

// Between the stop and the worker's end the catalogue is being read, though no scan runs any more.
TEST_F(ScanJobs, WhatMayBeDoneMeanwhile) {
    Load("bigfolder.img");
    const auto startsWork = {
        "Wizard",         "Clone Disk",          "Open found Logical Drive", "Load Tree Info",
        "Save Tree Info", "Load Partition Info", "Save Partition Info",      "Turbo Scan"};
    const auto whileStopping = [&] {
        EXPECT_EQ(Greyed(),
                  (Titles{"", "Wizard", "Clone Disk", "Find", "Find Next", "Save All", "Save Tree Info",
                          "Stop Current Process", "Go to Parent Folder", "Turbo Scan", "Spoor Hound",
                          "Copy Names", "Copy Paths", "Save List As...", "Path Line", "Open as Folder"}));
        EXPECT_EQ(Close(), Texts{"Information: Please wait..."});
        for (const char* title : startsWork) {
            EXPECT_EQ(Insist(title), Texts{"Information: Please wait..."}) << title;
        }
        const CDlgWait wait(Frame.get());
        EXPECT_EQ(Close(), Texts{});
        EXPECT_EQ(Insist("Load Tree Info"), Texts{});
    };
    AtRead(1, [&] {
        Titles greyed = Greyed();
        for (const char* title : startsWork) {
            EXPECT_EQ(greyed.erase(title), 1U) << title;
            EXPECT_EQ(Insist(title), Texts{}) << title;
        }
        EXPECT_EQ(greyed,
                  (Titles{"", "Find", "Find Next", "Save All", "Go to Parent Folder", "Spoor Hound",
                          "Copy Names", "Copy Paths", "Save List As...", "Path Line", "Open as Folder"}));
        EXPECT_EQ(Close(), Texts{"Warning: Please stop running process"});
        Desktop.CopyDialog = reinterpret_cast<CVarientCloneImageDialog*>(Frame.get());
        EXPECT_FALSE(IsOffered("Stop Current Process")) << "a copy has its own";
        EXPECT_EQ(Insist("Stop Current Process"), Texts{});
        Desktop.CopyDialog = nullptr;
        EXPECT_FALSE(Drop(Folder / "saved.tht"));
        Answers.Answer(QMessageBox::Yes);
        PressKey(Qt::Key_F4);
        whileStopping();
    });
    Scan();
    EXPECT_EQ(LogRows(), (Texts{kBasicScanLines[0], kPaused,
                                "Aborted processing Internal File System Structure" + kRule + " | 1",
                                kBasicScanLines[2], kBasicScanLines[3]}));
    EXPECT_FALSE(TreeIsEmpty()) << "what was found till then";
    EXPECT_TRUE(WaitUntil([this] { return IsOffered("Turbo Scan"); }));
    EXPECT_EQ(Answers.SuggestedFiles.size(), 1U) << "no file dialog since the load";
}

TEST_F(ScanJobs, TheStopQuestionHoldsTheWorker) {
    Load();
    Answers.MayAnswer = [](const QMessageBox& box) {
        EXPECT_EQ(box.text().startsWith(QStringLiteral("Do you")), WorkerGate().IsClosed());
        return true;
    };
    Answers.Answer(QMessageBox::No);
    AtRead(1, [this] { PressKey(Qt::Key_F4); });
    Scan();
    EXPECT_EQ(BoxTexts().at(0), "Confirm: Do you want to stop process?");
    Texts expected = kBasicScanLines;
    expected.insert(expected.begin() + 1, {kPaused, kResumed});
    EXPECT_EQ(LogRows(), expected);

    Desktop.StructuresMissing = true;
    Answers.Boxes.clear();
    Answers.Answer(QMessageBox::Discard);
    Answers.Answer(QMessageBox::Yes);
    AtRead(Plan->Log.size() + 1, [this] { PressKey(Qt::Key_F4); });
    PressKey(Qt::Key_T, Qt::ControlModifier);
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(BoxTexts().at(2), "Information: Turbo Scan aborted");
    EXPECT_EQ(LogRows().back(), "Aborted turbo scan of logical drive 4" + kRule + " | 1");
    EXPECT_FALSE(Desktop.StructuresMissing);
}

TEST_F(ScanJobs, FilesOfAScanLieInAFolderOfTheUsersOwn) {
    Load();
    std::filesystem::create_directory(Folder / "shared");
    const EnvironmentVariable place("TMPDIR", Folder / "shared");
    Engine.CatalogueFolder.clear();
    Scan();
    EXPECT_EQ(LogRows(), kBasicScanLines);
    EXPECT_TRUE(Engine.CatalogueFolder.starts_with(Folder / "shared/th-ntfs-")) << Engine.CatalogueFolder;
    std::filesystem::remove_all(Engine.CatalogueFolder); // as who clears up temporary files does
    Scan();
    EXPECT_EQ(LogRows().back(), kBasicScanLines.back());
}

TEST_F(ScanJobs, AFullDiskEndsAScanWhereverItIs) {
    Load();
    FailingFileStore store;
    SetFileStore(&store);
    for (std::uint64_t call = 1; call < 30; ++call) {
        store.FailAt(call, kErrorDiskFull, true);
        ClearLog();
        Scan();
        if (call == 1) {
            EXPECT_EQ(LogRows(),
                      (Texts{kBasicScanLines[0], "Supporting Files couldn't be opened" + kRule + " | 2"}));
            EXPECT_EQ(Pane(0), "Ready");
            EXPECT_FALSE(IsOffered("Turbo Scan"));
        }
    }
    SetFileStore(nullptr);
    Scan();
    EXPECT_EQ(LogRows().back(), kBasicScanLines.back());
    EXPECT_FALSE(TreeIsEmpty());
}

TEST_F(ScanJobs, NamelessRecordsAreCountedOrListedAndLittleYieldIsTold) {
    Load("attrlist.img");
    Scan();
    const std::string leftOut = "1 record without a usable name left out" + kRule + " | 2";
    EXPECT_EQ(LogRows().at(2), leftOut);
    const std::uint32_t files = Desktop.TotalFiles;
    ChooseInMenu("Tools/List Nameless Records");
    EXPECT_TRUE(Command("List Nameless Records").isChecked());
    Scan();
    EXPECT_EQ(Desktop.TotalFiles, files + 1);
    EXPECT_EQ(std::ranges::count(LogRows(), leftOut), 1);
    EXPECT_TRUE(BoxTexts().back().ends_with("Go to Tools->TurboScan"));
    Engine.Yield = {.Met = 5, .Expected = 60};
    WM_JOB_FINISHED.Send(Frame.get(), FinishedJob::BasicScan);
    EXPECT_TRUE(BoxTexts().back().ends_with("should have about 60.\nTurbo Scan may find more."));
}

TEST_F(ScanJobs, ADiskThatGoesAwayEndsTheScanWithABox) {
    Load();
    Plan->Rules.push_back({0, kForever, kErrorNotReady});
    Scan();
    EXPECT_TRUE(BoxTexts().at(0).starts_with("Error: "));
    EXPECT_EQ(LogRows().back(), kBasicScanLines.back());
    EXPECT_TRUE(LogRows().at(3).starts_with("At least 172 records could not be read")) << LogRows().at(3);
}

} // namespace
} // namespace thntfs::test
