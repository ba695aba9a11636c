// Saved scans in the window: loading, saving, and files that are not what they should be.

#include "FrameFixture.h"
#include "support/FailingFileStore.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace thntfs::test {
namespace {

using LoadSavedScan = FrameFixture;

TEST_F(LoadSavedScan, FillsTreeListTotalsAndLog) {
    const std::string path = SavedScanOf(Volume("basic.img"));
    LoadByMenu(path);

    EXPECT_EQ(Answers.FileFilters.at(0), QStringList{QStringLiteral("Scan Info File (*.tht)")});
    EXPECT_EQ(LogRows(), (std::vector<std::string>{
                             "Processing Scan Info File : saved.tht | Location : " + Folder.Path() + " | 0",
                             "Partition scan information opened successfully. | " + path + " | 2"}));
    const std::string tree = TreeText();
    EXPECT_EQ(tree.substr(0, 2), "#\n");
    EXPECT_NE(tree.find("\n   Root\n"), std::string::npos) << tree;
    EXPECT_NE(tree.find("\n    Reused\n"), std::string::npos) << tree;
    EXPECT_EQ(ListNames().at(0), " Root");
    EXPECT_EQ(Pane(0), "Ready");
    EXPECT_NE(Pane(1).find(" Files in " + std::to_string(std::count(tree.begin(), tree.end(), '\n') - 1) +
                           " Folders"),
              std::string::npos)
        << Pane(1) << "\n"
        << tree;
    EXPECT_EQ(Frame->ScanInfoDirty, 1U);
    EXPECT_EQ(Frame->NoScanYet, 0U);
    EXPECT_FALSE(Frame->ActionOf(kCmdTurboScan)->isEnabled());
    EXPECT_TRUE(Frame->ActionOf(kCmdSaveTreeInfo)->isEnabled());
    EXPECT_TRUE(Frame->ActionOf(kCmdOpenFoundDrive)->isEnabled());
    EXPECT_TRUE(Answers.Boxes.empty());
}

TEST_F(LoadSavedScan, CancelChangesNothing) {
    LoadByMenu(SavedScanOf(Volume("basic.img")));
    const std::string tree = TreeText();
    ChooseInMenu(
        {QStringLiteral("File"), QStringLiteral("Open Saved Scan Info"), QStringLiteral("Load Tree Info")});
    EXPECT_EQ(TreeText(), tree);
    EXPECT_EQ(LogRows().size(), 2U);
}

TEST_F(LoadSavedScan, SavedAgainItIsTheSameFile) {
    const std::string path = SavedScanOf(Volume("names.img"));
    LoadByMenu(path);
    const std::string copy = Folder / "copy";
    Answers.AnswerFile(QString::fromStdString(copy));
    ChooseInMenu(
        {QStringLiteral("Tools"), QStringLiteral("Save Scan Information"), QStringLiteral("Save Tree Info")});
    EXPECT_EQ(ReadWholeFile(copy + ".tht"), ReadWholeFile(path));
    EXPECT_EQ(Frame->ScanInfoDirty, 0U);
    EXPECT_EQ(LogRows().at(2), "Saving Scan Info File : copy | To Location : " + Folder.Path() + " | 0");
    EXPECT_EQ(LogRows().at(3), "Partition scan information saved successfully. | " + copy + ".tht | 2");
    EXPECT_TRUE(Answers.SuggestedFiles.at(1).startsWith(QStringLiteral("TH NTFS Scan Info# ")))
        << Answers.SuggestedFiles.at(1).toStdString();
}

TEST_F(LoadSavedScan, ANameThatGetsItsEndingIsAskedAboutToo) {
    LoadByMenu(SavedScanOf(Volume("basic.img")));
    std::ofstream(Folder / "old.tht") << "precious";
    Answers.AnswerFile(QString::fromStdString(Folder / "old"));
    Answers.Answer(QMessageBox::No);
    ChooseInMenu(
        {QStringLiteral("Tools"), QStringLiteral("Save Scan Information"), QStringLiteral("Save Tree Info")});
    ASSERT_EQ(Answers.Boxes.size(), 1U);
    EXPECT_EQ(ReadWholeFile(Folder / "old.tht"), "precious");
    EXPECT_EQ(Frame->ScanInfoDirty, 1U);
}

TEST_F(LoadSavedScan, TheMediumIsNeverWrittenOver) {
    const std::string medium = Folder / "disk.img";
    std::filesystem::copy_file(Volume("basic.img"), medium);
    LoadByMenu(SavedScanOf(medium));
    for (const std::vector<QString>& command :
         {std::vector<QString>{QStringLiteral("Tools"), QStringLiteral("Save Process Log")},
          {QStringLiteral("Tools"), QStringLiteral("Save Scan Information"),
           QStringLiteral("Save Partition Info")}}) {
        const std::string link = Folder / "link.thd";
        std::filesystem::create_symlink(medium, link);
        Answers.AnswerFile(QString::fromStdString(link));
        Answers.Answer(QMessageBox::Yes); // replace it
        ChooseInMenu(command);
        EXPECT_EQ(Answers.Boxes.back().Icon, QMessageBox::Warning);
        EXPECT_TRUE(std::filesystem::is_symlink(link));
        std::filesystem::remove(link);
    }
    EXPECT_EQ(ReadWholeFile(medium), ReadWholeFile(Volume("basic.img")));
}

TEST_F(LoadSavedScan, WhatCannotBeLoadedLeavesEmptyViewsAndALine) {
    const std::string medium = Folder / "disk.img";
    std::filesystem::copy_file(Volume("basic.img"), medium);
    const std::string good = SavedScanOf(medium);
    const std::string bytes = ReadWholeFile(good);

    struct Case {
        std::string Bytes;
        std::string Line;
    };
    std::string wrongSeparator = bytes;
    wrongSeparator[wrongSeparator.find(std::string(4, '\x01'), 620)] = 7;
    const std::vector<Case> cases{
        {"", "Not a valid Partition scan information."},
        {"This is a letter, not a scan.", "Not a valid Partition scan information."},
        {std::string("\x01\x01\x00\x00", 4) + bytes.substr(4), "Not a valid Partition scan information."},
        {bytes.substr(0, 300), "Not a valid Partition scan information."},
        {bytes.substr(0, bytes.size() - 1), "Not a valid Partition scan information."},
        {wrongSeparator, "Not a valid Partition scan information."},
    };
    for (const Case& wrong : cases) {
        LoadByMenu(good);
        EXPECT_FALSE(Frame->TreeView->IsEmpty());
        std::ofstream(Folder / "wrong.tht", std::ios::binary) << wrong.Bytes;
        LoadByMenu(Folder / "wrong.tht");
        EXPECT_EQ(LogRows().back(), wrong.Line + " | " + (Folder / "wrong.tht") + " | 1");
        EXPECT_TRUE(Frame->TreeView->IsEmpty());
        EXPECT_TRUE(ListNames().empty());
        EXPECT_EQ(Pane(1), "Total 0 KB in 0 Files in 0 Folders");
        EXPECT_FALSE(Frame->ActionOf(kCmdSaveTreeInfo)->isEnabled());
        EXPECT_TRUE(Frame->ActionOf(kCmdLoadTreeInfo)->isEnabled());
    }

    std::filesystem::remove(medium);
    LoadByMenu(good);
    EXPECT_EQ(LogRows().back(), "Failed to open Partition scan information. Errorcode =2 | " + good + " | 1");
    EXPECT_TRUE(Answers.Boxes.empty());
}

TEST_F(LoadSavedScan, AnotherMediumUnderThePathIsAskedAbout) {
    const std::string medium = Folder / "disk.img";
    std::filesystem::copy_file(Volume("basic.img"), medium);
    const std::string good = SavedScanOf(medium);
    std::filesystem::copy_file(Volume("names.img"), medium,
                               std::filesystem::copy_options::overwrite_existing);
    LoadByMenu(good);
    ASSERT_EQ(Answers.Boxes.size(), 1U);
    EXPECT_TRUE(Frame->TreeView->IsEmpty());
    Answers.Answer(QMessageBox::Yes);
    LoadByMenu(good);
    EXPECT_FALSE(Frame->TreeView->IsEmpty());
}

TEST_F(LoadSavedScan, TheLogIsSavedInItsLayout) {
    const std::string path = SavedScanOf(Volume("basic.img"));
    LoadByMenu(path);
    const std::string target = Folder / "log.txt";
    Answers.AnswerFile(QString::fromStdString(Folder / "log")); // the extension comes of itself
    ChooseInMenu({QStringLiteral("Tools"), QStringLiteral("Save Process Log")});
    EXPECT_EQ(Answers.SuggestedFiles.back().toStdString(),
              "Tarnholt Volume Salvage (NTFS) ver 2.0.1 Process Log.txt");
    const std::string rule = "\r\n" + std::string(68, '-');
    std::string expected = "------------------------Tarnholt Volume Salvage (NTFS) v2\t.0.1  Process "
                           "Log------------------------\r\n\r\n" +
                           rule;
    for (const ProcessLogEntry& row : Frame->LogList->Log().Rows()) {
        expected += "\r\n" + row.Name + "\r\n\t\t" + row.Description + "\r\n\t\t" + row.Time + rule;
    }
    EXPECT_EQ(ReadWholeFile(target), expected);

    ChooseInMenu({QStringLiteral("Tools"), QStringLiteral("Clear Process  Log")});
    EXPECT_FALSE(Frame->ActionOf(kCmdSaveLog)->isEnabled());
    EXPECT_FALSE(Frame->ActionOf(kCmdClearLog)->isEnabled());
}

TEST_F(LoadSavedScan, ALogThatCannotBeWrittenIsTold) {
    LoadByMenu(SavedScanOf(Volume("basic.img")));
    std::ofstream(Folder / "log.txt") << "the log of yesterday";
    FailingFileStore store;
    SetFileStore(&store);
    for (std::uint64_t call = 1; call <= 4; ++call) {
        Answers.Boxes.clear();
        Answers.AnswerFile(QString::fromStdString(Folder / "log.txt"));
        Answers.Answer(QMessageBox::Yes); // replace it
        store.FailAt(call);
        ChooseInMenu({QStringLiteral("Tools"), QStringLiteral("Save Process Log")});
        ASSERT_EQ(Answers.Boxes.size(), 2U) << call;
        EXPECT_EQ(Answers.Boxes[1].Text.toStdString(), "Error creating log file");
        EXPECT_EQ(Answers.Boxes[1].Caption.toStdString(), "Error");
        EXPECT_EQ(Answers.Boxes[1].Icon, QMessageBox::Information);
        EXPECT_EQ(ReadWholeFile(Folder / "log.txt"), "the log of yesterday");
    }
    EXPECT_EQ(LogRows().size(), 2U);
}

} // namespace
} // namespace thntfs::test
