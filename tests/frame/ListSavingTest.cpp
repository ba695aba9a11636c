// Lists for other programs, and what was opened before.

#include "FrameFixture.h"
#include "dialogs/SaveListChoice.h"
#include "frame/RecentFiles.h"
#include "support/desktop/Widgets.h"

#include <QLineEdit>
#include <QTest>
#include <filesystem>

namespace thntfs::test {
namespace {

class ListSaving : public FrameFixture {
protected:
    /// Through the dialogs; the buttons of the first one that are pressed, and the file.
    void SaveList(const std::vector<const char*>& choices, const std::string& path) {
        Answers.When<CSaveListChoice>([choices](CSaveListChoice& dialog) {
            for (const char* choice : choices) {
                Press(dialog, choice);
            }
            Press(dialog, "OK");
        });
        Answers.AnswerFile(QString::fromStdString(path));
        ChooseInMenu("Tools/Save List As...");
        EXPECT_TRUE(WaitForIdle());
        EXPECT_TRUE(Answers.AllDone());
    }

    void GoToRoot() {
        Tree().setCurrentIndex(Tree().model()->index(0, 0, Tree().model()->index(0, 0)));
        QTest::keyClick(&Tree(), Qt::Key_Return);
    }

    /// What the terminal program lists of the medium.
    std::string ListedBy(std::vector<std::string> options) {
        options.insert(options.begin(), {"list", Disk});
        return RunProgram(CliPath(), options).Out;
    }

    const std::string Disk = Folder / "disk.img";
    const std::string List = Folder / "list";
    static constexpr const char* kTable = "Table for spreadsheets (.csv)";
    static constexpr const char* kBody = "Body file for tools that lay out times";
    static constexpr const char* kBelow = "/ with all below it";
};

TEST_F(ListSaving, ListsAreThoseOfTheTerminalProgram) {
    std::filesystem::copy_file(Volume("sample.img"), Disk);
    LoadByMenu(SavedScanOf(Disk));
    GoToRoot();
    SaveList({kBelow, kTable}, List);
    EXPECT_EQ(ReadWholeFile(List + ".csv"), ListedBy({"/", "--recursive", "--csv"}));
    EXPECT_NE(Pane(0).find(" entries were written to " + List + ".csv"), std::string::npos) << Pane(0);
    EXPECT_EQ(LogRows().back().substr(0, 18), "Completed writing ");
    SaveList({kBelow, kBody}, List);
    EXPECT_EQ(ReadWholeFile(List + ".body"), ListedBy({"/", "--recursive", "--bodyfile"}));

    Answers.Answer(QMessageBox::Yes); // over the one that is there
    Find<QWidget>("ListView").parentWidget()->findChild<QLineEdit*>()->setText(QStringLiteral("pict"));
    SaveList({kTable}, List);
    const std::string shown = ReadWholeFile(List + ".csv");
    EXPECT_EQ(std::count(shown.begin(), shown.end(), '\n'), 1 + Details().model()->rowCount());
    EXPECT_NE(shown.find("\r\n/Pictures,1,0,"), std::string::npos) << shown;

    EXPECT_EQ(Answers.FileFolders.back().toStdString(), Folder.Path()) << "where the list before was put";

    std::filesystem::remove_all(Folder / "none");
    SaveList({kTable}, Folder / "none/list.csv");
    EXPECT_EQ(Answers.Boxes.back().Icon, QMessageBox::Critical);
    EXPECT_TRUE(LogRows().back().ends_with("No file was made | 1")) << LogRows().back();
    std::filesystem::create_symlink(Disk, List + ".link.csv");
    Answers.Answer(QMessageBox::Yes); // replace it
    SaveList({kTable}, List + ".link.csv");
    EXPECT_NE(Answers.Boxes.back().Text.indexOf(QStringLiteral(" is the medium ")), -1);
    ++Engine.VolumeInWork; // whose records have other times
    Answers.When<CSaveListChoice>([](CSaveListChoice& dialog) {
        Press(dialog, kBody);
        Press(dialog, "OK");
    });
    ChooseInMenu("Tools/Save List As...");
    EXPECT_TRUE(Answers.Boxes.back().Text.startsWith(QStringLiteral("What the window shows belongs to")));
}

TEST_F(ListSaving, AStopLeavesNoFile) {
    std::filesystem::copy_file(Volume("sample.img"), Disk);
    LoadByMenu(SavedScanOf(Disk));
    GoToRoot();
    WatchMedium();
    AtRead(20, [this] { PressKey(Qt::Key_F4); });
    Answers.Answer(QMessageBox::Yes);
    SaveList({kBelow, kBody}, List);
    EXPECT_TRUE(LogRows().back().ends_with("Stopped; no file was made | 1")) << LogRows().back();
    EXPECT_FALSE(std::filesystem::exists(List + ".body"));
}

TEST_F(ListSaving, WhatWasOpenedIsOfferedAgain) {
    LoadByMenu(SavedScanOf(Volume("basic.img")));
    EXPECT_TRUE(RecentFiles().Paths().isEmpty()) << "it is a temporary file";
    std::filesystem::create_directory(Folder / "temp");
    const QByteArray temp = qgetenv("TMPDIR");
    qputenv("TMPDIR", (Folder / "temp").c_str());
    const std::string scan = SavedScanOf(Volume("names.img"));
    LoadByMenu(scan);
    const std::string tree = TreeText();
    EXPECT_EQ(RecentFiles().Paths(), QStringList{QString::fromStdString(scan)});
    SavedScanOf(Volume("basic.img"));
    const auto open = [this] {
        for (QAction* action : Frame->actions()) {
            if (action->text().startsWith(QLatin1String("&1 "))) {
                action->trigger();
            }
        }
    };
    open();
    EXPECT_NE(TreeText(), tree) << "another scan under the same name";
    std::filesystem::remove(scan);
    Answers.Answer(QMessageBox::Yes);
    open();
    EXPECT_NE(Answers.Boxes.back().Text.indexOf(QStringLiteral(" isn't there.")), -1);
    EXPECT_TRUE(RecentFiles().Paths().isEmpty());

    RecentFiles recent;
    for (int i = 0; i < 10; ++i) {
        recent.Note(QStringLiteral("/some/file %1").arg(i % 9));
    }
    recent.Note(QStringLiteral("/some/file 8"));
    recent.Note(QDir::tempPath() + QStringLiteral("/found.thd"));
    EXPECT_EQ(RecentFiles().Paths().size(), 8);
    EXPECT_EQ(RecentFiles().Paths().last(), QStringLiteral("/some/file 2"));
    EXPECT_EQ(RecentFiles().Paths().mid(0, 2),
              (QStringList{QStringLiteral("/some/file 8"), QStringLiteral("/some/file 0")}));
    recent.Clear();
    temp.isEmpty() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", temp);
}

TEST_F(ListSaving, TheFormOfSizesIsKept) {
    ChooseInMenu("View/Sizes in KB, MB, GB");
    Frame->close();
    Frame = std::make_unique<CMainFrame>();
    EXPECT_TRUE(Command("Sizes in KB, MB, GB").isChecked());
    EXPECT_EQ(Details().model()->headerData(1, Qt::Horizontal).toString(), QStringLiteral("Size"));
    Command("Sizes in Bytes").trigger();
    Frame->close();
}

} // namespace
} // namespace thntfs::test
