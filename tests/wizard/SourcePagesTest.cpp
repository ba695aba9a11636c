#include "WizardFixture.h"
#include "partitions/OpenSource.h"
#include "partitions/PartitionTable.h"
#include "platform/media/Medium.h"
#include "support/FaultyMedium.h"
#include "support/LoopDevice.h"
#include "support/VolumeBuilderMedium.h"
#include "wizard/SourceSteps.h"

#include <QScrollBar>
#include <QTableWidget>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace thntfs::test {

namespace {

const Texts kLogicalRows = {"NTFS logical drive 1 | 63 |   6.000 MB | Yes | MBR | Primary | 77",
                            "NTFS logical drive 2 | 12414 |   6.000 MB | Yes | MBR | Logical 1 | 77",
                            "NTFS logical drive 3 | 26750 |   6.000 MB | Yes | MBR | Logical 2 | 77",
                            "NTFS logical drive 4 | 39046 |   6.000 MB | Yes | MBR | Logical 3 | 77",
                            "NTFS logical drive 5 | 53382 |   6.000 MB | Yes | MBR | Logical 4 | 77"};

class SourcePagesTest : public WizardTest {
protected:
    void ClickRow(int row, int clicks = 1) {
        auto& table = OnPage<QTableWidget>();
        const QPoint place = table.visualItemRect(table.item(row, 1)).center();
        QTest::mouseClick(table.viewport(), Qt::LeftButton, {}, place);
        if (clicks == 2) {
            QTest::mouseDClick(table.viewport(), Qt::LeftButton, {}, place);
        }
    }

    [[nodiscard]] QString Write(const char* name, const std::string& bytes) const {
        std::ofstream(Scratch / name, std::ios::binary) << bytes;
        return QString::fromStdString(Scratch / name);
    }

    void GoToDisk(int position) {
        Press("Recover your Data");
        Press("Next >");
        ChooseDisk(position);
        Press("Next >");
    }
};

TEST_F(SourcePagesTest, ImageWithAPartitionTableToTheVolume) {
    const std::string path = VolumePath("logical").toStdString();
    const int result = RunWith([&] {
        GoToImagePage(VolumePath("logical"));
        EXPECT_EQ(Labels().at(0), "File Path :" + path);
        EXPECT_EQ(Labels().at(1).find("Space Available : "), 0U);
        EXPECT_EQ(Buttons(), "< Back Next >");
        KeepsOldScan = true;
        Press("Next >");
        EXPECT_EQ(Heading(), "Select image to recover data");
        EXPECT_TRUE(Arrived.empty());
        KeepsOldScan = false;
        Press("Next >");
        EXPECT_EQ(Heading(), "Select the partition to recover");
        EXPECT_EQ(RowsShown(*Sheet), kLogicalRows);
        EXPECT_EQ(Buttons(), "< Back (Finish)");
        ClickRow(3);
        EXPECT_EQ(Buttons(), "< Back Finish");
        EXPECT_EQ(Sheet->State().LogicalDriveNumber, 3);
        KeepsOldScan = true;
        Press("Finish");
        EXPECT_EQ(Engine.VolumeParams.StartSector, 0U);
        KeepsOldScan = false;
        QTest::keyClick(&OnPage<QTableWidget>(), Qt::Key_Up);
        QTest::keyClick(&OnPage<QTableWidget>(), Qt::Key_Up);
        Press("Finish");
    });
    EXPECT_EQ(result, kWizardFinished);
    EXPECT_EQ(Arrived,
              (Texts{"clear views", "0 Selected: " + path + " | Image Processing Mode:Partition Table",
                     "0 Selected NTFS logical drive 2 | Starting Sector 12414, Size   6.000 MB"}));
    EXPECT_EQ(Sheet->State().WizardLogEntry.Name, "Selected NTFS logical drive 2");
    EXPECT_EQ(Sheet->State().LogicalDriveNumber, 2);
    EXPECT_EQ(Engine.VolumeParams.StartSector, 12414U);
    EXPECT_FALSE(Engine.VolumeParams.MftExtents.empty());
    EXPECT_TRUE(Answers.Boxes.empty());
    EXPECT_EQ(Answers.FileFilters.at(0).mid(0, 2),
              (QStringList{QStringLiteral("Volume Salvage (NTFS) Image File (*.th2)"),
                           QStringLiteral("All files (*)")}));
    EXPECT_TRUE(Answers.FileFilters.at(0).at(2).startsWith(QStringLiteral("All disk images (*.dd ")));
}

TEST_F(SourcePagesTest, DroppedImageOpensOnItsPageAndIsKept) {
    std::string disk = ReadWholeFile(VolumePath("logical").toStdString());
    disk[63 * 512] = 0; // of the first boot sector
    Texts rows = kLogicalRows;
    rows[0] = "Logical drive 1: no NTFS boot sector stands there | 63 |   6.000 MB |  | MBR |  | ";
    rows.emplace_back("NTFS logical drive 6 | 63 |   6.000 MB | Yes | MBR | Primary | 77"); // by the copy
    std::vector<DiskInfo> unreadable = MadeUpDisks();
    unreadable[0].OpenError = kErrorAccessDenied;
    MakeSheet(unreadable);
    Desktop.StructuresMissing = true;
    Sheet->OpenOnImage(Write("image", disk));
    EXPECT_FALSE(Desktop.StructuresMissing);
    const int result = RunWith([&] {
        EXPECT_EQ(Buttons(), "< Back Next >");
        Press("Next >");
        EXPECT_EQ(RowsShown(*Sheet), rows);
        EXPECT_EQ(OnPage<QTableWidget>().horizontalScrollBar()->maximum(), 0) << "all columns are in view";
        EXPECT_GT(OnPage<QTableWidget>().rowHeight(0), OnPage<QTableWidget>().rowHeight(1)) << "two lines";
        ClickRow(0, 2);
        EXPECT_EQ(Buttons(), "< Back (Finish)") << "can't be chosen";
        QTest::keyClick(&OnPage<QTableWidget>(), Qt::Key_Down);
        EXPECT_EQ(Buttons(), "< Back Finish");
        Press("< Back");
        EXPECT_EQ(Heading(), "Select image to recover data");
        EXPECT_EQ(Buttons(), "< Back Next >");
        Press("Search for lost partition(s)");
        Desktop.StructuresMissing = true;
        Press("< Back");
        EXPECT_FALSE(Desktop.StructuresMissing);
        EXPECT_EQ(Buttons(), "(< Back) Next >");
        EXPECT_EQ(Sheet->State().ProcessingMode, 0);
        Press("Next >");
        EXPECT_EQ(Sheet->State().ProcessingMode, 1) << "what is checked counts";
        Press("Display default partition(s)");
        Press("Next >");
        EXPECT_EQ(RowsShown(*Sheet), rows);
        EXPECT_EQ(Buttons(), "< Back (Finish)");
        ClickRow(4, 2);
    });
    EXPECT_EQ(result, kWizardFinished);
    EXPECT_EQ(Engine.VolumeParams.StartSector, 53382U);
    EXPECT_TRUE(Answers.Boxes.empty()) << "nobody has asked for disks";
}

TEST_F(SourcePagesTest, SourceThatCannotBeOpenedKeepsThePage) {
    Engine.SourceDisk.TotalSectors = 7;
    const QString path = Write("gone.th2", "x");
    RunWith([&] {
        Press("Recover your data from disk image");
        Press("Next >");
        Press("Next >"); // without a file
        EXPECT_EQ(Heading(), "Select image to recover data");
        EXPECT_EQ(Engine.SourceDisk.TotalSectors, 7U);
        EXPECT_TRUE(Arrived.empty());
        EXPECT_EQ(Labels().at(2), "Choose an image file first, by the button above.");
        EXPECT_EQ(QApplication::focusWidget(), test::ButtonOf(*Sheet, "Select Image File"));
        Answers.AnswerFile(path);
        Press("Select Image File");
        std::filesystem::remove(path.toStdString());
        Press("Next >");
        EXPECT_EQ(Heading(), "Select image to recover data");
        EXPECT_EQ(Labels().at(2), "The file can't be opened: " + SystemErrorText(kErrorFileNotFound));
        KeepsOldScan = true;
        Press("Next >");
        KeepsOldScan = false;
        EXPECT_EQ(Labels().at(2), "") << "it was not tried";
        Answers.AnswerFile(VolumePath("logical"));
        Press("Select Image File");
        EXPECT_EQ(Labels().at(2), "");
        EXPECT_EQ(Answers.FileFolders.at(1).toStdString(), Scratch.Path()) << "where the file before was";
        Press("< Back");
        GoToDisk(2);
        EXPECT_EQ(Buttons(), "< Back Next >");
    });
    EXPECT_EQ(Boxes(), Texts{"Error: The disk /dev/no-such-disk can't be opened: " +
                             SystemErrorText(kErrorFileNotFound)});
    EXPECT_EQ(Answers.Boxes[0].Icon, QMessageBox::Critical);
    EXPECT_EQ(Arrived, (Texts{"clear views", "clear views"}));
}

TEST_F(SourcePagesTest, WhatCannotBeScannedIsRefused) {
    std::string disk = ReadWholeFile(VolumePath("basic").toStdString());
    std::fill(disk.begin() + 2049 * 512, disk.end(), '\0'); // behind the boot sector
    const QString wreck = Write("wreck.th2", disk);
    Sheet->OpenOnImage(Write("empty.th2", std::string(70000, '\0')));
    const int result = RunWith([&] {
        Press("Next >");
        EXPECT_EQ(Heading(), "Select image to recover data");
        EXPECT_EQ(Arrived, Texts{"clear views"});
        EXPECT_EQ(Engine.SourceDisk.TotalSectors, 136U) << "it stays open";
        Answers.AnswerFile(Write("encrypted.th2", "abc-FVE-FS-" + std::string(70000, '\0')));
        Press("Select Image File");
        Press("Next >");
        Answers.AnswerFile(wreck);
        Press("Select Image File");
        Press("Next >");
        ClickRow(0);
        Press("Finish");
        EXPECT_EQ(Heading(), "Select the partition to recover");
        EXPECT_EQ(Buttons(), "< Back Finish");
        EXPECT_TRUE(Desktop.StructuresMissing);
        Answers.Answer(QMessageBox::Yes);
        Press("Cancel");
    });
    EXPECT_NE(result, kWizardFinished);
    EXPECT_EQ(
        Boxes(),
        (Texts{"Volume Salvage (NTFS): Please use search for lost partition(s).",
               "Volume Salvage (NTFS): Start sector 0: this volume is fully encrypted; unlock or decrypt it "
               "with "
               "its own system first.",
               "Information: Critical structures not found.\nPlease cancel wizard and use Turbo Scan\n\n"
               "Tools->Turbo Scan.",
               "Volume Salvage (NTFS): Do you want to close wizard?"}));
    EXPECT_EQ(Answers.Boxes[0].Icon, QMessageBox::Critical);
    EXPECT_TRUE(Answers.Boxes[0].More.startsWith(QStringLiteral("There is no partition table:")));
    EXPECT_EQ(Answers.Boxes[1].More, QString());
    EXPECT_EQ(Answers.Boxes[2].Icon, QMessageBox::Warning);
    EXPECT_EQ(Engine.VolumeParams.StartSector, 2048U) << "for Turbo Scan";
    EXPECT_EQ(Sheet->State().LogicalDriveNumber, 0) << "as the click has left it";
    EXPECT_EQ(Arrived.size(), 4U) << "no line for the partition";
}

TEST_F(SourcePagesTest, ADeadMediumIsToldBeforeTheAdvice) {
    auto plan = std::make_shared<FaultPlan>();
    plan->Rules = {{0, 8, kErrorNotReady}};
    Engine.SourceDisk.BytesPerSector = 512;
    Engine.SourceDisk.MediaHandle =
        MakeFaultyMedium(MakeMemoryMedium(std::make_shared<ByteVector>(4096)), plan);
    EXPECT_FALSE(ListPartitions({"/dev/sdx", QStringLiteral("Advice"), nullptr}, 0, nullptr));
    EXPECT_EQ(Boxes(), (Texts{"Error: /dev/sdx can't be read: " + SystemErrorText(kErrorNotReady),
                              "Volume Salvage (NTFS): Advice"}));
    EXPECT_EQ(Answers.Boxes[1].More, QString());
}

TEST_F(SourcePagesTest, ListAloneOffersNoWayBack) {
    Sheet->OpenOnPartitionList(1);
    RunWith([&] {
        EXPECT_EQ(RowsShown(*Sheet), Texts{"No Logical Drives Found |  |  |  |  |  | "});
        ClickRow(0);
        EXPECT_EQ(Buttons(), "(< Back) (Finish)");
    });
    EXPECT_EQ(Desktop.ProcessingMode, 1);
    for (std::uint64_t i = 0; i < 12; ++i) {
        PartitionCandidate candidate;
        candidate.StartSector = 0x100000000 + i; // the list shows the low 32 bits
        candidate.TotalSectors = i == 11 ? 0x80000 : 1;
        candidate.BytesPerSector = 4096;
        candidate.SectorsPerCluster = 3;
        Engine.SourceDisk.Partitions.push_back(candidate);
    }
    RunWith([&] {
        EXPECT_EQ(RowsShown(*Sheet).at(0), "NTFS logical drive 1 | 0 |   4.000 KB | No | saved list |  | ");
        EXPECT_EQ(RowsShown(*Sheet).at(11),
                  "NTFS logical drive 12 | 11 |   2.000 GB | No | saved list |  | ");
        QTest::keyClick(&OnPage<QTableWidget>(), Qt::Key_End, Qt::ControlModifier);
        EXPECT_EQ(Buttons(), "(< Back) Finish");
        Press("Finish");
    });
    EXPECT_EQ(Boxes(),
              Texts{"Information: The clusters of this volume would have 3 sectors of 4096 bytes. No "
                    "NTFS volume has such clusters: what was read about its layout is damaged.\n\n"
                    "Please use search for lost partition(s)."});
    EXPECT_FALSE(Desktop.StructuresMissing);
    EXPECT_EQ(Sheet->State().WizardLogEntry.Name, "Selected NTFS logical drive 12");
    EXPECT_EQ(Sheet->State().LogicalDriveNumber, 4) << "keys leave it alone";
    ASSERT_EQ(OpenImageFile(VolumePath("basic").toStdString()), kErrorNone);
    ASSERT_TRUE(ReadPartitionTable());
    Engine.SourceDisk.Partitions.resize(12, Engine.SourceDisk.Partitions[0]);
    RunWith([&] {
        QTest::keyClick(&OnPage<QTableWidget>(), Qt::Key_End, Qt::ControlModifier);
        Press("Finish");
    });
    EXPECT_EQ(Sheet->State().LogicalDriveNumber, 2) << "the last digit";
}

TEST_F(SourcePagesTest, DiskWithAPartitionTableToTheVolume) {
    const auto device = LoopDevice::Attach(VolumePath("logical").toStdString(), "--read-only");
    if (device == nullptr) {
        GTEST_SKIP() << "loop devices are not to be had here";
    }
    const std::vector<DiskInfo> disks = EnumerateDisks();
    const auto disk = std::find_if(disks.begin(), disks.end(),
                                   [&](const DiskInfo& info) { return info.Path == device->Path(); });
    ASSERT_NE(disk, disks.end());
    MakeSheet(disks);
    const int result = RunWith([&] {
        EXPECT_EQ(::seteuid(65534), 0);
        GoToDisk(static_cast<int>(disk - disks.begin()));
        EXPECT_EQ(::seteuid(0), 0);
        EXPECT_NE(Boxes().back().find("Error: This program may not read the disk " + disk->Path),
                  std::string::npos);
        Press("Next >");
        EXPECT_EQ(RowsShown(*Sheet), kLogicalRows);
        Press("< Back");
        EXPECT_EQ(Buttons(), "< Back Next >");
        EXPECT_EQ(OnPage<QTreeWidget>().currentItem()->text(0).toStdString(), disk->Name) << "is kept";
        Press("Next >");
        ClickRow(2);
        Press("Finish");
    });
    EXPECT_EQ(result, kWizardFinished);
    EXPECT_EQ(Engine.VolumeParams.StartSector, 26750U);
    EXPECT_EQ(Arrived.at(2), "0 " + disk->Name + ",  " + disk->Model + ", Serial:" + disk->Serial +
                                 " | Disk Processing :Partition Table");
}

} // namespace

} // namespace thntfs::test
