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

const QString kQuestion =
    QStringLiteral("Please ensure that you are not saving data to\nthe same location from where you are "
                   "recovering. \n\nSaving data to the same location would result in\npermanent data "
                   "loss.\nDo you want to continue?");

/// Paths of all files below a folder, with what is in them.
std::map<std::string, std::string> FilesBelow(const std::string& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            files[fs::relative(entry.path(), folder)] = ReadWholeFile(entry.path());
        }
    }
    return files;
}

class SaveJobs : public FrameFixture {
protected:
    SaveJobs() { KeepSaveWishes({}); } // of the test before

    void Load(const std::string& image) {
        LoadByMenu(SavedScanOf(Volume(image)));
        WatchMedium();
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
            dialog.findChild<QLineEdit*>(QStringLiteral("1092"))->setText(QString::fromStdString(folder));
            if (more) {
                more(dialog);
            }
            Press(dialog, "OK");
        });
    }

    void SaveAll() {
        PressKey(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_TRUE(WaitForIdle());
        EXPECT_TRUE(Answers.AllDone());
    }

    /// Saves with the terminal program and gives what it saved.
    std::map<std::string, std::string> SavedByTerminal(const std::string& image,
                                                       std::vector<std::string> paths = {}) {
        paths.insert(paths.begin(), {"save", Volume(image), "--to", Folder / "terminal"});
        EXPECT_LE(RunProgram(CliPath(), paths).Status, 3);
        return FilesBelow(Folder / "terminal");
    }

    void MarkByKeys(const std::vector<Qt::Key>& keys) {
        Tree().setFocus();
        for (const Qt::Key key : keys) {
            QTest::keyClick(&Tree(), key);
        }
    }

    [[nodiscard]] std::string LastBox() const {
        return Answers.Boxes.empty() ? "" : Answers.Boxes.back().Text.toStdString();
    }

    [[nodiscard]] std::string Target() const { return Folder / "new/target"; }
};

TEST_F(SaveJobs, SaveAllGivesWhatTheTerminalProgramGives) {
    Load("office.img");
    Engine.MarkedEntries = {7};
    std::string duringWork;
    AtRead(200, [&] {
        EXPECT_FALSE(IsOffered("Wizard"));
        EXPECT_TRUE(IsOffered("Stop Current Process"));
        WM_JOB_PROGRESS.Send(Frame.get());
        duringWork = Pane(0) + " | " + Pane(2);
    });
    AnswerDialogs(Target());
    SaveAll();
    EXPECT_EQ(Engine.MarkedEntries, std::vector<std::uint32_t>{0});
    EXPECT_EQ(FilesBelow(Target()), SavedByTerminal("office.img"));
    EXPECT_TRUE(duringWork.starts_with("Saving :")) << duringWork;
    EXPECT_NE(duringWork.find(" files, "), std::string::npos) << duringWork;
    EXPECT_EQ(Answers.Boxes.back().Caption, QStringLiteral("Information"));
    EXPECT_TRUE(LastBox().starts_with("Saving data completed.")) << LastBox();
    EXPECT_EQ(Pane(2), "");
    EXPECT_TRUE(LogRows().back().starts_with("Completed saving to " + Target() + " | Saved "))
        << LogRows().back();

    auto& log = Find<QTreeView>("LogList");
    ASSERT_TRUE(WaitUntil([&] { return log.model()->rowCount() == std::ssize(Log().Rows()); }));
    RunEvents();
    const QModelIndex last = log.model()->index(log.model()->rowCount() - 1, 0);
    log.scrollTo(last);
    QTest::mouseClick(log.viewport(), Qt::LeftButton, {}, log.visualRect(last).center());
    QTest::mouseDClick(log.viewport(), Qt::LeftButton, {}, log.visualRect(last).center());
    EXPECT_EQ(LastBox(), Target() + "\ncan't be opened from here.") << "there is no desktop";
}

TEST_F(SaveJobs, MarkedFoldersAndSelectedRows) {
    Load("basic.img");
    EXPECT_TRUE(Greyed().contains("")) << "nothing is marked";
    // The second folder below the root, and the first of those below the first one.
    MarkByKeys({Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_Down, Qt::Key_Space});
    EXPECT_TRUE(Pane(2).starts_with("Marked ")) << Pane(2);
    EXPECT_FALSE(Greyed().contains(""));
    const std::string name = Tree().currentIndex().data().toString().toStdString();
    AnswerDialogs(Target());
    PressKey(Qt::Key_S, Qt::ControlModifier);
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(FilesBelow(Target()), SavedByTerminal("basic.img", {"/" + name}));

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
    QTimer::singleShot(0, menu, [menu] {
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(menu->actions()[0]).center());
    });
    ASSERT_TRUE(
        WaitUntil([this] { return LogRows().back().starts_with("Completed saving to " + Target() + "2"); }));
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(Engine.MarkedEntries.size(), rows);
}

TEST_F(SaveJobs, NamesThatAreTakenAreAskedFor) {
    Load("basic.img");
    const auto first = SavedByTerminal("basic.img");
    fs::create_directories(Folder / "new");
    fs::copy(Folder / "terminal", Target(), fs::copy_options::recursive);
    std::vector<std::string> asked;
    const auto answer = [&](const char* button, const char* name = nullptr) {
        Answers.When<CRenameFile>([&asked, button, name](CRenameFile& dialog) {
            asked.push_back(dialog.findChild<QLabel*>(QStringLiteral("1095"))->text().toStdString());
            if (name != nullptr) {
                QTest::keyClicks(dialog.findChild<QLineEdit*>(QStringLiteral("1094")), QLatin1String(name));
            }
            Press(dialog, button);
        });
    };
    AnswerDialogs(Target());
    answer("Skip");
    answer("Rename", "mine");
    answer("Skip All");
    SaveAll();
    EXPECT_EQ(asked.size(), 3U);
    const auto second = FilesBelow(Target());
    EXPECT_EQ(second.size(), first.size() + 1) << "one file, under the name that was typed";
    EXPECT_NE(LogRows().back().find(" skipped"), std::string::npos) << LogRows().back();

    AnswerDialogs(Target());
    answer("Rename All", "mine too");
    SaveAll();
    const auto third = FilesBelow(Target());
    EXPECT_EQ(third.size(), second.size() + first.size());

    AnswerDialogs(Target(), GivePrefix);
    SaveAll();
    EXPECT_EQ(FilesBelow(Target()).size(), third.size() + first.size());
}

TEST_F(SaveJobs, CompressedIntoOneFile) {
    Load("basic.img");
    for (int i = 0; i < 2; ++i) {
        AnswerDialogs(Target(), [i](CSaveData& page) {
            if (i == 0) {
                Press(page, "Compress Data");
            }
        });
        Answers.When<CRenameFile>([](CRenameFile& dialog) { Press(dialog, "Skip All"); });
        SaveAll();
    }
    const auto files = FilesBelow(Target());
    ASSERT_EQ(files.size(), 2U) << "the second one under a number";
    EXPECT_TRUE(files.begin()->second.starts_with("PK\3\4"));
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
    AnswerDialogs(Target());
    SaveAll();
    EXPECT_TRUE(LastBox().starts_with("Saving data was stopped before its end.\nSaved ")) << LastBox();
    EXPECT_TRUE(LogRows().back().starts_with("Aborted saving to ")) << LogRows().back();
    EXPECT_EQ(Log().Rows().back().Status, kLogFailed);
}

TEST_F(SaveJobs, AnEndFromOutsideTakesTheQuestionForANameAlong) {
    Load("basic.img");
    OnInterrupt(Engine.ScanRunFlag);
    SavedByTerminal("basic.img");
    AnswerDialogs(Folder / "terminal");
    Answers.When<CRenameFile>([](CRenameFile&) { std::raise(SIGTERM); });
    PressKey(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(WaitUntil([this] { return !Frame->isVisible(); }));
    OnInterrupt(Engine.ScanRunFlag);
}

TEST_F(SaveJobs, FoldersThatWontDo) {
    Load("basic.img");
    std::ofstream(Folder / "file") << "x";
    Answers.When<CSaveChoice>([](CSaveChoice& dialog) { Press(dialog, "OK"); });
    Answers.When<CSaveData>([this](CSaveData& dialog) {
        auto& edit = *dialog.findChild<QLineEdit*>(QStringLiteral("1092"));
        for (const std::string& folder :
             {Folder / "file", Folder / "file/below", std::string("/proc/none")}) {
            edit.setText(QString::fromStdString(folder));
            Press(dialog, "OK");
            EXPECT_TRUE(LastBox().starts_with("Data can't be saved to " + folder)) << LastBox();
        }
        edit.setText(QString::fromStdString(Volume("basic.img")));
        Press(dialog, "OK");
        EXPECT_NE(LastBox().find("is the medium that is being read"), std::string::npos) << LastBox();
        dialog.reject();
    });
    SaveAll();
    ++Engine.VolumeInWork; // a click on another partition in a wizard that was cancelled
    SaveAll();
    EXPECT_TRUE(LastBox().starts_with("What the window shows belongs to another medium")) << LastBox();
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
    const std::u16string description = Engine.SourceDisk.Description;
    Engine.SourceDisk.Description = QString::fromStdString(image).toStdU16String();
    const std::string inside = Folder / "mount/back";
    Answers.Answer(QMessageBox::No);
    Answers.When<CSaveChoice>([](CSaveChoice& dialog) { Press(dialog, "OK"); });
    Answers.When<CSaveData>([&](CSaveData& dialog) {
        dialog.findChild<QLineEdit*>(QStringLiteral("1092"))->setText(QString::fromStdString(inside));
        Press(dialog, "OK");
        EXPECT_EQ(Answers.Boxes.back().Text, kQuestion);
        EXPECT_EQ(Answers.Boxes.back().Caption, QStringLiteral("Confirm"));
        EXPECT_FALSE(fs::exists(inside));
        Answers.Answer(QMessageBox::Yes);
        GivePrefix(dialog);
        Press(dialog, "OK");
    });
    SaveAll();
    EXPECT_TRUE(fs::exists(inside));
    for (const bool yes : {false, true}) {
        Answers.AnswerFile(QString::fromStdString(Folder / "mount/kept.tht"));
        Answers.Answer(yes ? QMessageBox::Yes : QMessageBox::No);
        ChooseInMenu(kSaveTree);
        EXPECT_EQ(Answers.Boxes.back().Text, kQuestion);
        EXPECT_EQ(fs::exists(Folder / "mount/kept.tht"), yes);
    }
    Engine.SourceDisk.Description = description;
    OutputOf("umount " + (Folder / "mount"));
}

} // namespace
} // namespace thntfs::test
