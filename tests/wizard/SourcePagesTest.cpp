#include "WizardFixture.h"
#include "engine/EngineState.h"

#include <QLabel>
#include <QTableWidget>
#include <QTest>
#include <QTreeWidget>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace thntfs::test {

namespace {

const Texts kLogicalRows = {
    "NTFS logical drive 1 | 63 |   6.000 MB", "NTFS logical drive 2 | 12414 |   6.000 MB",
    "NTFS logical drive 3 | 26750 |   6.000 MB", "NTFS logical drive 4 | 39046 |   6.000 MB",
    "NTFS logical drive 5 | 53382 |   6.000 MB"};

class SourcePagesTest : public WizardTest {
protected:
    void ClickRow(int row) {
        auto& table = OnPage<QTableWidget>();
        QTest::mouseClick(table.viewport(), Qt::LeftButton, {},
                          table.visualItemRect(table.item(row, 1)).center());
    }

    /// All texts of the active page's labels.
    [[nodiscard]] Texts Labels() const {
        Texts texts;
        for (const QLabel* label : Sheet->ActivePage().findChildren<QLabel*>()) {
            texts.push_back(label->text().toStdString());
        }
        return texts;
    }

    [[nodiscard]] std::string Write(const char* name, const std::string& bytes) const {
        std::ofstream(Scratch / name, std::ios::binary) << bytes;
        return Scratch / name;
    }
};

TEST_F(SourcePagesTest, ImageWithAPartitionTableToTheVolume) {
    AtSheet([&] {
        GoToImagePage(VolumePath("logical"));
        EXPECT_EQ(Labels().at(0), "File Path :" + VolumePath("logical").toStdString());
        EXPECT_EQ(Labels().at(1).find("Space Available : "), 0U);
        EXPECT_EQ(Buttons(), "< Back Next >");
        Press("Next >");
        EXPECT_EQ(Heading(), "Select the partition to recover");
        EXPECT_EQ(RowsShown(*Sheet), kLogicalRows);
        EXPECT_EQ(Buttons(), "< Back (Finish)");
        ClickRow(1);
        EXPECT_EQ(Buttons(), "< Back Finish");
        EXPECT_EQ(Sheet->State().LogicalDriveNumber, 1);
        Press("Finish");
    });
    EXPECT_EQ(Run(), kWizardFinished);
    EXPECT_EQ(Frame.Arrived,
              (Texts{"clear views",
                     "0 Selected: " + VolumePath("logical").toStdString() +
                         " | Image Processing Mode:Partition Table",
                     "0 Selected NTFS logical drive 2 | Starting Sector 12414, Size   6.000 MB"}));
    EXPECT_EQ(Sheet->State().WizardLogEntry.Name, "Selected NTFS logical drive 2");
    EXPECT_EQ(Sheet->State().WizardTask, kTaskRecoverImage);
    EXPECT_EQ(Engine.VolumeParams.StartSector, 12414U);
    EXPECT_FALSE(Engine.VolumeParams.MftExtents.Empty());
    EXPECT_TRUE(Answers.Boxes.empty());
    EXPECT_EQ(Answers.FileFilters.at(0),
              (QStringList{QStringLiteral("Volume Salvage (NTFS) Image File (*.th2)"),
                           QStringLiteral("All files (*)")}));
}

TEST_F(SourcePagesTest, AVolumeWithoutABootSectorKeepsItsRowAndCannotBeChosen) {
    const QString image = QString::fromStdString(Scratch / "image");
    std::filesystem::copy_file(VolumePath("logical").toStdString(), image.toStdString());
    std::fstream(image.toStdString(), std::ios::in | std::ios::out).seekp(63 * 512).put(0);
    AtSheet([&] {
        GoToImagePage(image);
        Press("Next >");
        EXPECT_EQ(RowsShown(*Sheet)[0],
                  "Logical drive 1: no NTFS boot sector stands there | 63 |   6.000 MB");
        ClickRow(0);
        EXPECT_EQ(Buttons(), "< Back (Finish)");
        QTest::keyClick(&OnPage<QTableWidget>(), Qt::Key_Down);
        Press("Finish");
    });
    EXPECT_EQ(Run(), kWizardFinished);
    EXPECT_EQ(Engine.VolumeParams.StartSector, 12414U);
}

TEST_F(SourcePagesTest, ImageIsKeptOnTheWayBack) {
    AtSheet([&] {
        GoToImagePage(VolumePath("logical"));
        Press("Next >");
        ClickRow(0);
        Press("< Back");
        EXPECT_EQ(Heading(), "Select image to recover data");
        EXPECT_EQ(Buttons(), "< Back Next >");
        Press("Search for lost partition(s)");
        Press("< Back");
        EXPECT_EQ(Sheet->State().ProcessingMode, 0);
        Press("Next >");
        EXPECT_EQ(Sheet->State().ProcessingMode, 1) << "what is checked counts";
        Press("Display default partition(s)");
        Press("Next >");
        EXPECT_EQ(RowsShown(*Sheet), kLogicalRows);
        EXPECT_EQ(Buttons(), "< Back (Finish)");
        Close();
    });
    Run();
}

TEST_F(SourcePagesTest, DroppedImageOpensOnItsPage) {
    Sheet->OpenOnImage(VolumePath("logical"));
    AtSheet([&] {
        EXPECT_EQ(Buttons(), "< Back Next >");
        Press("Next >");
        Press("< Back");
        Press("< Back");
        EXPECT_EQ(Buttons(), "(< Back) Next >");
        Press("Next >");
        Press("Next >");
        ClickRow(4);
        auto& table = OnPage<QTableWidget>();
        QTest::mouseDClick(table.viewport(), Qt::LeftButton, {},
                           table.visualItemRect(table.item(4, 1)).center());
    });
    EXPECT_EQ(Run(), kWizardFinished);
    EXPECT_EQ(Engine.VolumeParams.StartSector, 53382U);
}

TEST_F(SourcePagesTest, WithoutAFileNothingIsClosed) {
    Engine.SourceDisk.TotalSectors = 7;
    AtSheet([&] {
        Press("Recover your data from disk image");
        Press("Next >");
        EXPECT_EQ(Buttons(), "(< Back) Next >");
        Press("Next >");
        EXPECT_EQ(Heading(), "Select image to recover data");
        Close();
    });
    Run();
    EXPECT_EQ(Engine.SourceDisk.TotalSectors, 7U);
    EXPECT_TRUE(Frame.Arrived.empty());
    EXPECT_TRUE(Answers.Boxes.empty());
}

TEST_F(SourcePagesTest, ImageThatCannotBeOpenedKeepsThePage) {
    const std::string path = Write("gone.th2", "x");
    AtSheet([&] {
        GoToImagePage(QString::fromStdString(path));
        std::filesystem::remove(path);
        Press("Next >");
        EXPECT_EQ(Heading(), "Select image to recover data");
        EXPECT_EQ(Labels().at(2), "The file can't be opened: " + SystemErrorText(kErrorFileNotFound));
        Answers.AnswerFile(VolumePath("logical"));
        Press("Select Image File");
        EXPECT_EQ(Labels().at(2), "");
        Close();
    });
    Run();
    EXPECT_TRUE(Answers.Boxes.empty());
    EXPECT_EQ(Frame.Arrived, Texts{"clear views"});
}

TEST_F(SourcePagesTest, ImageWithoutATableAdvisesTheSearch) {
    Sheet->OpenOnImage(QString::fromStdString(Write("empty.th2", std::string(70000, '\0'))));
    AtSheet([&] {
        Press("Next >");
        EXPECT_EQ(Heading(), "Select image to recover data");
        Close();
    });
    Run();
    EXPECT_EQ(BoxTexts(Answers), Texts{"Volume Salvage (NTFS): Please use search for lost partition(s)."});
    EXPECT_EQ(Answers.Boxes[0].Icon, QMessageBox::Critical);
    EXPECT_EQ(Frame.Arrived, Texts{"clear views"});
    EXPECT_EQ(Engine.SourceDisk.TotalSectors, 136U) << "it stays open";
}

TEST_F(SourcePagesTest, VolumeWithoutItsTableOfFilesIsRefused) {
    std::string disk = ReadWholeFile(VolumePath("basic").toStdString());
    constexpr std::size_t kBehindBootSector = 2049 * 512;
    std::fill(disk.begin() + kBehindBootSector, disk.end(), '\0');
    Sheet->OpenOnImage(QString::fromStdString(Write("wreck.th2", disk)));
    AtSheet([&] {
        Press("Next >");
        ClickRow(0);
        Press("Finish");
        EXPECT_EQ(Heading(), "Select the partition to recover");
        EXPECT_EQ(Buttons(), "< Back Finish");
        Answers.Answer(QMessageBox::Yes);
        Press("Cancel");
    });
    EXPECT_NE(Run(), kWizardFinished);
    EXPECT_EQ(
        BoxTexts(Answers),
        (Texts{"Information: Critical structures not found.\nPlease cancel wizard and use Turbo Scan\n\n"
               "Tools->Turbo Scan.",
               "Volume Salvage (NTFS): Do you want to close wizard?"}));
    EXPECT_EQ(Answers.Boxes[0].Icon, QMessageBox::Warning);
    EXPECT_EQ(Engine.StructuresMissing, 1U);
    EXPECT_EQ(Engine.VolumeParams.StartSector, 2048U) << "for Turbo Scan";
    EXPECT_EQ(Frame.Arrived.size(), 2U) << "no line for the partition";
}

TEST_F(SourcePagesTest, ListAloneOffersNoWayBack) {
    Sheet->OpenOnPartitionList(1);
    AtSheet([&] {
        EXPECT_EQ(RowsShown(*Sheet), Texts{"No Logical Drives Found |  | "});
        EXPECT_FALSE(OnPage<QTableWidget>().isEnabled());
        EXPECT_EQ(Buttons(), "(< Back) (Finish)");
        ClickRow(0);
        EXPECT_EQ(Buttons(), "(< Back) (Finish)");
        Close();
    });
    Run();
    EXPECT_EQ(Engine.ProcessingMode, 1);
}

TEST_F(SourcePagesTest, LongListKeepsTheLow32BitsOfAStart) {
    for (std::uint64_t i = 0; i < 12; ++i) {
        auto candidate = std::make_unique<PartitionCandidate>();
        candidate->StartSector = 0x100000000 + i;
        candidate->TotalSectors = i == 11 ? 0x80000 : 1;
        candidate->BytesPerSector = 4096;
        Engine.SourceDisk.Partitions.Append(std::move(candidate));
    }
    Sheet->OpenOnPartitionList(0);
    AtSheet([&] {
        EXPECT_EQ(RowsShown(*Sheet).at(0), "NTFS logical drive 1 | 0 |   4.000 KB");
        EXPECT_EQ(RowsShown(*Sheet).at(11), "NTFS logical drive 12 | 11 |   2.000 GB");
        QTest::keyClick(&OnPage<QTableWidget>(), Qt::Key_End, Qt::ControlModifier);
        EXPECT_EQ(Buttons(), "(< Back) Finish");
        Press("Finish"); // nothing is there to be read
        Close();
    });
    Run();
    EXPECT_EQ(Sheet->State().WizardLogEntry.Name, "Selected NTFS logical drive 12");
    EXPECT_EQ(Sheet->State().LogicalDriveNumber, 4) << "keys leave it alone";
}

class DiskTest : public SourcePagesTest {
protected:
    ~DiskTest() override {
        if (!device_.empty()) {
            RunProgram("/sbin/losetup", {"--detach", device_});
        }
    }

    /// Path of a loop device over an image; empty where there can be none.
    std::string Attach(const QString& image) {
        const RunResult run =
            ::geteuid() != 0 || !std::filesystem::exists("/sbin/losetup")
                ? RunResult{}
                : RunProgram("/sbin/losetup", {"--find", "--show", "--read-only", image.toStdString()});
        device_ = run.Status == 0 ? run.Out.substr(0, run.Out.find('\n')) : "";
        return device_;
    }

    void GoToDisk(int position) {
        Press("Recover your Data");
        Press("Next >");
        ChooseDisk(position);
        Press("Next >");
    }

    [[nodiscard]] int PositionOf(const std::string& name) const {
        const auto& disks = Sheet->State().Disks;
        return static_cast<int>(std::find_if(disks.begin(), disks.end(),
                                             [&](const DiskInfo& disk) { return disk.Name == name; }) -
                                disks.begin());
    }

private:
    std::string device_;
};

TEST_F(DiskTest, DiskWithAPartitionTableToTheVolume) {
    const std::string device = Attach(VolumePath("logical"));
    if (device.empty()) {
        GTEST_SKIP() << "loop devices are not to be had here";
    }
    MakeSheet(EnumerateDisks());
    const std::string name = device.substr(std::string("/dev/").size());
    AtSheet([&] {
        GoToDisk(PositionOf(name));
        EXPECT_EQ(RowsShown(*Sheet), kLogicalRows);
        Press("< Back");
        EXPECT_EQ(Buttons(), "< Back Next >");
        EXPECT_EQ(OnPage<QTreeWidget>().currentItem()->text(0).toStdString(), name) << "the choice is kept";
        Press("Next >");
        ClickRow(2);
        Press("Finish");
    });
    EXPECT_EQ(Run(), kWizardFinished);
    EXPECT_EQ(Engine.VolumeParams.StartSector, 26750U);
    ASSERT_EQ(Frame.Arrived.size(), 5U);
    EXPECT_EQ(Frame.Arrived[1].find("0 " + name + ",  "), 0U) << Frame.Arrived[1];
    EXPECT_NE(Frame.Arrived[1].find(", Serial:"), std::string::npos);
    EXPECT_TRUE(Frame.Arrived[1].ends_with(" | Disk Processing :Partition Table"));
}

TEST_F(DiskTest, DiskThatIsGoneIsToldAndThePageStays) {
    AtSheet([&] {
        GoToDisk(2);
        EXPECT_EQ(Buttons(), "< Back Next >");
        Close();
    });
    Run();
    EXPECT_EQ(BoxTexts(Answers), Texts{"Error: The disk /dev/no-such-disk can't be opened: " +
                                       SystemErrorText(kErrorFileNotFound)});
    EXPECT_EQ(Answers.Boxes[0].Icon, QMessageBox::Critical);
    EXPECT_EQ(Frame.Arrived, Texts{"clear views"});
}

TEST_F(DiskTest, MissingRightIsExplained) {
    if (::geteuid() != 0 || !std::filesystem::exists("/dev/loop0")) {
        GTEST_SKIP() << "no disk here that could be forbidden";
    }
    std::vector<DiskInfo> disks = MadeUpDisks();
    disks[0].Path = "/dev/loop0";
    MakeSheet(disks);
    AtSheet([&] {
        ASSERT_EQ(::seteuid(65534), 0);
        GoToDisk(0);
        ASSERT_EQ(::seteuid(0), 0);
        Close();
    });
    Run();
    ASSERT_EQ(Answers.Boxes.size(), 1U);
    EXPECT_EQ(Answers.Boxes[0].Caption, QStringLiteral("Error"));
    for (const char* part : {"may not read the disk /dev/loop0", "sudo ./run desktop", "group \"disk\""}) {
        EXPECT_TRUE(Answers.Boxes[0].Text.contains(QLatin1String(part))) << part;
    }
}

} // namespace

} // namespace thntfs::test
