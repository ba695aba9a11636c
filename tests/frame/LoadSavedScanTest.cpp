// Saved scans in the window: loading, saving, and files that are not what they should be.

#include "FrameFixture.h"
#include "support/FailingFileStore.h"

#include <QTest>
#include <algorithm>
#include <filesystem>
#include <fstream>

namespace thntfs::test {
namespace {

class LoadSavedScan : public FrameFixture {
protected:
    /// A copy of a volume, which is scanned and saved.
    std::string MakeDisk(const std::string& volume) {
        std::filesystem::copy_file(Volume(volume), Disk);
        return SavedScanOf(Disk);
    }

    const std::string Disk = Folder / "disk.img";
};

TEST_F(LoadSavedScan, FillsTheWindowAndIsSavedAsItWas) {
    const std::string path = SavedScanOf(Volume("names.img"));
    LoadByMenu(path);
    EXPECT_EQ(Answers.FileFilters.at(0), QStringList{QStringLiteral("Scan Info File (*.tht)")});
    EXPECT_EQ(LogRows(), (std::vector<std::string>{
                             "Processing Scan Info File : saved.tht | Location : " + Folder.Path() + " | 0",
                             "Partition scan information opened successfully. | " + path + " | 2"}));
    const std::string tree = TreeText();
    EXPECT_EQ(tree.substr(0, 2), "#\n");
    EXPECT_NE(tree.find("\n   Root\n"), std::string::npos) << tree;
    EXPECT_EQ(Details().model()->index(0, 0).data(), QStringLiteral(" Root"));
    EXPECT_EQ(Pane(0), "Ready");
    const auto folders = std::to_string(std::count(tree.begin(), tree.end(), '\n') - 1);
    EXPECT_TRUE(Pane(1).ends_with(" Files in " + folders + " Folders")) << Pane(1) << "\n" << tree;

    EXPECT_EQ(Pane(2), "");
    QTest::keyClick(&Tree(), Qt::Key_Space); // marks all
    EXPECT_EQ(Pane(2), "Marked " + Pane(1));

    Tree().setCurrentIndex(Tree().model()->index(0, 0, Tree().model()->index(0, 0)));
    QTest::keyClick(&Tree(), Qt::Key_Return);
    EXPECT_NE(Details().model()->index(0, 0).data(), QStringLiteral(" Root"));
    ChooseInMenu("Tools/Go to Parent Folder");
    EXPECT_EQ(Details().model()->index(0, 0).data(), QStringLiteral(" Root"));

    ChooseInMenu(kLoadTree); // and cancelled
    const std::string copy = Folder / "copy";
    Answers.AnswerFile(QString::fromStdString(copy));
    ChooseInMenu(kSaveTree);
    EXPECT_EQ(ReadWholeFile(copy + ".tht"), ReadWholeFile(path));
    EXPECT_EQ(LogRows().at(2), "Saving Scan Info File : copy | To Location : " + Folder.Path() + " | 0");
    EXPECT_EQ(LogRows().at(3), "Partition scan information saved successfully. | " + copy + ".tht | 2");
    EXPECT_TRUE(Answers.SuggestedFiles.at(2).startsWith(QStringLiteral("TH NTFS Scan Info# ")));
    EXPECT_TRUE(Answers.Boxes.empty());

    Answers.AnswerFile(QString::fromStdString(copy)); // it gets its ending, and what is there isn't lost
    Answers.Answer(QMessageBox::No);
    ChooseInMenu(kSaveTree);
    EXPECT_EQ(Answers.Boxes.size(), 1U);
    EXPECT_EQ(LogRows().size(), 4U);
    ChooseInMenu("File/Exit");
    EXPECT_FALSE(Frame->isVisible()) << "it is in a file, so nothing is asked";
}

TEST_F(LoadSavedScan, TheMediumIsNeverWrittenOver) {
    LoadByMenu(MakeDisk("basic.img"));
    for (const auto& [command, ending] :
         {std::pair{"Tools/Save Process Log", ".txt"}, {kSavePartitions, ".thd"}, {kSaveTree, ".tht"}}) {
        const std::string link = Folder / "link" + ending;
        std::filesystem::create_symlink(Disk, link);
        Answers.AnswerFile(QString::fromStdString(Folder / "link"));
        Answers.Answer(QMessageBox::Yes); // replace it
        ChooseInMenu(command);
        EXPECT_EQ(Answers.Boxes.back().Icon, QMessageBox::Warning);
        EXPECT_TRUE(std::filesystem::is_symlink(link));
    }
    EXPECT_EQ(ReadWholeFile(Disk), ReadWholeFile(Volume("basic.img")));

    Engine.SourceDisk.Description.assign(kMaxDescriptionUnits, u'x');
    Engine.ImagePath.assign(kMaxDescriptionUnits + 1, 'x');
    for (const char* command : {kSavePartitions, kSaveTree}) {
        Answers.AnswerFile(QString::fromStdString(Folder / "long"));
        ChooseInMenu(command);
        EXPECT_TRUE(Answers.Boxes.back().Text.contains(QStringLiteral("path of the medium is too long")));
    }
}

TEST_F(LoadSavedScan, WhatCannotBeLoadedLeavesEmptyViewsAndALine) {
    const std::string good = MakeDisk("basic.img");
    LoadByMenu(good);
    EXPECT_FALSE(TreeIsEmpty());
    QTest::keyClick(&Tree(), Qt::Key_Space);
    const std::string bytes = ReadWholeFile(good);
    const std::string wrong = Folder / "wrong.tht";
    std::ofstream(wrong, std::ios::binary) << bytes.substr(0, bytes.size() - 1);
    LoadByMenu(wrong);
    EXPECT_EQ(LogRows().back(), "Not a valid Partition scan information. | " + wrong + " | 1");
    EXPECT_TRUE(TreeIsEmpty());
    EXPECT_EQ(Details().model()->rowCount(), 0);
    EXPECT_EQ(Pane(0), "Ready");
    EXPECT_EQ(Pane(1) + Pane(2), "Total 0 KB in 0 Files in 0 Folders");
    EXPECT_FALSE(IsOffered("Save Tree Info"));
    EXPECT_TRUE(IsOffered("Load Tree Info"));

    std::filesystem::copy_file(Volume("names.img"), Disk, std::filesystem::copy_options::overwrite_existing);
    LoadByMenu(good);
    EXPECT_EQ(Answers.Boxes.size(), 1U) << "another medium";
    EXPECT_TRUE(TreeIsEmpty());
    Answers.Answer(QMessageBox::Yes);
    LoadByMenu(good);
    EXPECT_FALSE(TreeIsEmpty());
    EXPECT_TRUE(LogRows().end()[-2].ends_with(" | " + Disk + " | 1")) << LogRows().end()[-2];

    std::filesystem::remove(Disk);
    LoadByMenu(good);
    EXPECT_EQ(LogRows().back(), "Failed to open Partition scan information. Errorcode =2 | " + good + " | 1");
    EXPECT_EQ(Answers.Boxes.size(), 2U);
}

TEST_F(LoadSavedScan, TheLogIsSavedAndARefusedWriteIsTold) {
    LoadByMenu(SavedScanOf(Volume("basic.img")));
    const std::string target = Folder / "log.txt";
    Answers.AnswerFile(QString::fromStdString(Folder / "log")); // the extension comes of itself
    ChooseInMenu("Tools/Save Process Log");
    std::string expected = LogHeadText();
    for (const ProcessLogEntry& row : Log().Rows()) {
        expected += LogRowText(row);
    }
    EXPECT_EQ(ReadWholeFile(target), expected);

    FailingFileStore store;
    SetFileStore(&store);
    for (std::uint64_t call = 1; call <= 4; ++call) {
        Answers.Boxes.clear();
        Answers.AnswerFile(QString::fromStdString(target));
        Answers.Answer(QMessageBox::Yes); // replace it
        store.FailAt(call);
        ChooseInMenu("Tools/Save Process Log");
        ASSERT_EQ(Answers.Boxes.size(), 2U) << call;
        EXPECT_EQ(Answers.Boxes[1].Text.toStdString(), "Error creating log file");
        EXPECT_EQ(ReadWholeFile(target), expected);
    }
    EXPECT_EQ(LogRows().size(), 2U);
}

} // namespace
} // namespace thntfs::test
