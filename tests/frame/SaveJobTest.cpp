// Saving as a job: from the choice of files to the files in the target, and what goes wrong on the way.

#include "FrameFixture.h"
#include "dialogs/RenameFile.h"
#include "dialogs/SaveChoice.h"
#include "dialogs/SaveData.h"
#include "platform/system/Interrupt.h"
#include "shell/WindowMessages.h"
#include "support/FailingFileStore.h"
#include "support/LoopDevice.h"
#include "support/desktop/Widgets.h"

#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <csignal>
#include <filesystem>
#include <fstream>

namespace thntfs::test {
namespace {

class SaveJobs : public FrameFixture {
protected:
    SaveJobs() { KeepSaveWishes({}); } // of the test before

    void Load(const std::string& image) {
        LoadByMenu(SavedScanOf(Volume(image)));
        WatchMedium();
    }

    static void SetFolder(CSaveData& page, const std::string& folder) {
        page.findChild<QLineEdit*>(QStringLiteral("1092"))->setText(QString::fromStdString(folder));
    }

    /// No question for a name comes then.
    static void GivePrefix(CSaveData& page) {
        Press(page, "Default prefix to rename files");
        page.findChild<QLineEdit*>(QStringLiteral("1132"))->setText(QStringLiteral("again-"));
    }

    /// What is answered in the two dialogs; `more` acts in the second one before its OK.
    void AnswerDialogs(const std::string& folder, const std::function<void(CSaveData&)>& more = {}) {
        Answers.When<CSaveChoice>([](CSaveChoice& dialog) { Press(dialog, "OK"); });
        Answers.When<CSaveData>([folder, more](CSaveData& dialog) {
            SetFolder(dialog, folder);
            if (more) {
                more(dialog);
            }
            Press(dialog, "OK");
        });
    }

    void SaveAll(const std::string& folder, const std::function<void(CSaveData&)>& more = {}) {
        AnswerDialogs(folder, more);
        SaveAll();
    }
    void SaveAll() {
        PressKey(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_TRUE(WaitForIdle());
        EXPECT_TRUE(Answers.AllDone());
    }

    void SaveByTerminal(const std::string& image, const std::string& path = "/") {
        const std::string to = Folder / "terminal";
        EXPECT_LE(RunProgram(CliPath(), {"save", Volume(image), "--to", to, path}).Status, 3);
    }
    bool SavedTheSame() {
        return OutputOf("diff -r " + Target() + " " + (Folder / "terminal") + " && echo same") == "same";
    }
    int FilesIn(const std::string& folder) {
        return std::stoi(OutputOf("find " + folder + " -type f | wc -l"));
    }

    [[nodiscard]] std::string LastBox() const {
        return Answers.Boxes.empty() ? "" : Answers.Boxes.back().Text.toStdString();
    }

    void ExpectLogged(const std::string& front) const {
        EXPECT_TRUE(LogRows().back().starts_with(front)) << LogRows().back();
    }

    [[nodiscard]] std::string Target() const { return Folder / "new/target"; }
};

TEST_F(SaveJobs, SaveAllGivesWhatTheTerminalProgramGives) {
    Load("office.img");
    Engine.MarkedEntries = {7};
    std::string duringWork;
    AtRead(200, [&] {
        EXPECT_TRUE(IsOffered("Stop Current Process") && !IsOffered("Wizard"));
        EXPECT_FALSE(IsOffered("Save List As..."));
        WM_JOB_PROGRESS.Send(Frame.get());
        duringWork = Pane(0) + " | " + Pane(2);
    });
    SaveAll(Target());
    EXPECT_EQ(Engine.MarkedEntries, std::vector<std::uint32_t>{0});
    SaveByTerminal("office.img");
    EXPECT_TRUE(SavedTheSame());
    EXPECT_TRUE(duringWork.starts_with("Saving :")) << duringWork;
    EXPECT_NE(duringWork.find(" files, "), std::string::npos) << duringWork;
    EXPECT_TRUE(LastBox().starts_with("Saving data completed.")) << LastBox();
    EXPECT_EQ(Pane(2), "");
    ExpectLogged("Completed saving to " + Target() + " | Saved ");

    auto& log = Find<QTreeView>("LogList");
    ASSERT_TRUE(WaitUntil([&] { return log.model()->rowCount() == std::ssize(Log().Rows()); }));
    RunEvents();
    log.scrollToBottom();
    const QPoint last = log.visualRect(log.model()->index(log.model()->rowCount() - 1, 0)).center();
    QTest::mouseClick(log.viewport(), Qt::LeftButton, {}, last);
    QTest::mouseDClick(log.viewport(), Qt::LeftButton, {}, last);
    EXPECT_EQ(LastBox(), Target() + "\ncan't be opened from here.") << "there is no desktop";
}

TEST_F(SaveJobs, MarkedFoldersAndSelectedRows) {
    Load("basic.img");
    EXPECT_TRUE(Greyed().contains("")) << "nothing is marked";
    Tree().setFocus(); // the second folder below the root, and the first of those below the first one
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_Down, Qt::Key_Space}) {
        QTest::keyClick(&Tree(), key);
    }
    EXPECT_TRUE(Pane(2).starts_with("Marked ")) << Pane(2);
    EXPECT_FALSE(Greyed().contains(""));
    const std::string name = Tree().currentIndex().data().toString().toStdString();
    AnswerDialogs(Target());
    PressKey(Qt::Key_S, Qt::ControlModifier);
    ASSERT_TRUE(WaitForIdle());
    SaveByTerminal("basic.img", "/" + name);
    EXPECT_TRUE(SavedTheSame());

    QTest::keyClick(&Tree(), Qt::Key_Left);
    QTest::keyClick(&Tree(), Qt::Key_Return);
    Details().setFocus();
    Details().selectAll();
    const auto rows = static_cast<std::size_t>(Details().model()->rowCount());
    ASSERT_GT(rows, 2U);
    AnswerDialogs(Target() + "2", GivePrefix);
    QTest::keyClick(&Details(), Qt::Key_Menu);
    auto* menu = Find<QWidget>("ListView").findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Return);
    ASSERT_TRUE(
        WaitUntil([this] { return LogRows().back().starts_with("Completed saving to " + Target() + "2"); }));
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(Engine.MarkedEntries.size(), rows);
}

TEST_F(SaveJobs, NamesThatAreTakenAreAskedFor) {
    Load("basic.img");
    SaveByTerminal("basic.img");
    const int files = FilesIn(Folder / "terminal");
    fs::create_directories(Folder / "new");
    fs::copy(Folder / "terminal", Target(), fs::copy_options::recursive);
    const auto answer = [&](const char* button) {
        Answers.When<CRenameFile>([button](CRenameFile& dialog) {
            QTest::keyClicks(dialog.findChild<QLineEdit*>(QStringLiteral("1094")), QStringLiteral("mine"));
            Press(dialog, button);
        });
    };
    AnswerDialogs(Target());
    answer("Skip");
    answer("Rename");
    answer("Skip All");
    SaveAll();
    EXPECT_EQ(FilesIn(Target()), files + 1) << "one file, under the name that was typed";
    EXPECT_NE(LogRows().back().find(" skipped"), std::string::npos) << LogRows().back();
    AnswerDialogs(Target());
    answer("Rename All");
    SaveAll();
    EXPECT_EQ(FilesIn(Target()), 2 * files + 1);
    SaveAll(Target(), GivePrefix);
    EXPECT_EQ(FilesIn(Target()), 3 * files + 1);
    SaveAll(Target() + "2", [](CSaveData& page) { Press(page, "Compress Data"); });
    SaveAll(Target() + "2");
    EXPECT_EQ(FilesIn(Target() + "2"), 2) << "the second one under a number";
    EXPECT_EQ(OutputOf("head -qc2 " + Target() + "2/*.zip"), "PKPK");
    EXPECT_NE(LogRows().back().find(" (2).zip | Saved "), std::string::npos) << LogRows().back();
}

TEST_F(SaveJobs, AStopIsTold) {
    Load("office.img");
    AtRead(20, [this] {
        EXPECT_FALSE(Frame->close());
        EXPECT_EQ(LastBox(), "Please stop running process");
        Answers.Answer(QMessageBox::Yes);
        QTimer::singleShot(0, Frame.get(), [this] { PressKey(Qt::Key_F4); });
    });
    SaveAll(Target());
    EXPECT_TRUE(LastBox().starts_with("Saving data was stopped before its end.\nSaved ")) << LastBox();
    ExpectLogged("Aborted saving to ");
    EXPECT_EQ(Log().Rows().back().Status, kLogFailed);
}

TEST_F(SaveJobs, AnEndFromOutsideTakesTheQuestionForANameAlong) {
    Load("basic.img");
    OnInterrupt(Engine.ScanRunFlag);
    SaveByTerminal("basic.img");
    AnswerDialogs(Folder / "terminal");
    Answers.When<CRenameFile>([](CRenameFile&) { std::raise(SIGTERM); });
    PressKey(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(WaitUntil([this] { return !Frame->isVisible(); }));
    OnInterrupt(Engine.ScanRunFlag);
}

TEST_F(SaveJobs, FoldersThatWontDo) {
    Load("basic.img");
    std::ofstream(Folder / "file") << "x";
    AnswerDialogs(Volume("basic.img"), [this](CSaveData& page) {
        for (const std::string& folder :
             {Folder / "file", Folder / "file/below", std::string("/proc/none")}) {
            SetFolder(page, folder);
            Press(page, "OK");
            EXPECT_TRUE(LastBox().starts_with("Data can't be saved to " + folder)) << LastBox();
        }
        SetFolder(page, Volume("basic.img"));
        QTimer::singleShot(0, &page, &CSaveData::reject);
    });
    SaveAll();
    EXPECT_NE(LastBox().find("is the medium that is being read"), std::string::npos) << LastBox();
    ++Engine.VolumeInWork; // a click on another partition in a wizard that was cancelled
    SaveAll();
    EXPECT_TRUE(LastBox().starts_with("What the window shows belongs to another medium")) << LastBox();
}

TEST_F(SaveJobs, AMediumThatGoesAndATargetThatIsFullAreTold) {
    Load("office.img");
    AtRead(200, [this] { Plan->Rules = {{0, kForever, kErrorNotReady}}; });
    SaveAll(Folder / "cut");
    ExpectLogged("Aborted saving to ");
    EXPECT_EQ(Answers.Boxes.front().Caption, QStringLiteral("Error"));
    EXPECT_GT(FilesIn(Folder / "cut"), 0);

    Plan->Rules.clear();
    Plan->OnRead = nullptr;
    FailingFileStore store;
    SetFileStore(&store);
    store.FailAt(200, kErrorDiskFull, true);
    SaveAll(Folder / "full");
    SetFileStore(nullptr);
    EXPECT_NE(LogRows().back().find("could not be saved"), std::string::npos) << LogRows().back();
    EXPECT_NE(LastBox().find("could not be saved"), std::string::npos) << LastBox();
    EXPECT_GT(FilesIn(Folder / "full"), 0);

    SaveAll(Target());
    SaveByTerminal("office.img");
    EXPECT_TRUE(SavedTheSame()) << "nothing of the failures stays";
}

TEST_F(SaveJobs, TheMediumAsTargetIsAskedAbout) {
    Load("basic.img");
    const std::string image = Folder / "ext.img";
    std::ofstream(image).close();
    fs::resize_file(image, 16U << 20U);
    const auto loop = LoopDevice::Attach(image);
    fs::create_directory(Folder / "mount");
    if (loop == nullptr || !MountNewFileSystem(loop->Path(), Folder / "mount")) {
        GTEST_SKIP() << "no loop device here";
    }
    const auto asked = [this] {
        return LastBox().find("permanent data loss.\nDo you want to continue?") + 1;
    };
    const std::u16string description = Engine.SourceDisk.Description;
    Engine.SourceDisk.Description = QString::fromStdString(image).toStdU16String();
    const std::string inside = Folder / "mount/back";
    Answers.Answer(QMessageBox::No);
    AnswerDialogs(inside, [&](CSaveData& page) {
        Press(page, "OK");
        EXPECT_TRUE(asked());
        EXPECT_FALSE(fs::exists(inside));
        Answers.Answer(QMessageBox::Yes);
        GivePrefix(page);
    });
    SaveAll();
    EXPECT_TRUE(fs::exists(inside));
    for (const bool yes : {false, true}) {
        Answers.AnswerFile(QString::fromStdString(Folder / "mount/kept.tht"));
        Answers.Answer(yes ? QMessageBox::Yes : QMessageBox::No);
        ChooseInMenu(kSaveTree);
        EXPECT_TRUE(asked());
        EXPECT_EQ(fs::exists(Folder / "mount/kept.tht"), yes);
    }
    Engine.SourceDisk.Description = description;
    OutputOf("umount " + (Folder / "mount"));
}

} // namespace
} // namespace thntfs::test
