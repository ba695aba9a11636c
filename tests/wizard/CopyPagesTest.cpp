// What Finish does on the pages of copies: what it refuses, asks and hands over. Files stand for disks.

#include "WizardFixture.h"
#include "disktools/CopyDisk.h"
#include "disktools/CopyJob.h"
#include "disktools/CopyMapFile.h"
#include "support/VolumeBuilderDisk.h"

#include <QSpinBox>
#include <QToolButton>
#include <filesystem>
#include <fstream>

namespace thntfs::test {
namespace {

class CopyPagesTest : public WizardTest {
protected:
    CopyPagesTest() {
        std::filesystem::copy_file(VolumePath("basic").toStdString(), Disk);
        std::vector<DiskInfo> disks = MadeUpDisks();
        disks[0].Path = Disk;
        disks[1].Path = Target;
        MakeSheet(disks);
    }

    void GoToImagePageOf(const std::string& image, int disk = 0) {
        Answers.AnswerFile(QString::fromStdString(image));
        Press("Create disk Image");
        Press("Next >");
        ChooseDisk(disk);
        Press("Select destination path");
    }

    void GoToClonePage(int source, int target) {
        auto* button = Sheet->ActivePage().findChildren<QToolButton*>().at(kTaskClone);
        button->setEnabled(true);
        button->click();
        Press("Next >");
        ChooseDisk(source);
        ChooseDisk(target, 1);
    }

    /// Finish on the page must bring up this box, and leave nothing open.
    void ExpectRefused(const std::string& box) {
        Answers.Boxes.clear();
        Press("Finish");
        ASSERT_EQ(Boxes().size(), 1U) << box;
        EXPECT_NE(Boxes()[0].find(box), std::string::npos) << Boxes()[0];
        EXPECT_TRUE(Sheet->isVisible());
        EXPECT_EQ(Engine.SourceDisk.MediaHandle, nullptr);
        EXPECT_EQ(Engine.TargetDisk.WriteHandle, nullptr);
    }

    std::string Disk = Scratch / "disk";
    std::string Target = Scratch / "target";
    std::string Image = Scratch / "new.th2";
};

TEST_F(CopyPagesTest, AnImageIsHandedOverWithBothMediaOpen) {
    AtSheet([this] {
        GoToImagePageOf(Image);
        auto& passes = OnPage<QSpinBox>();
        EXPECT_FALSE(passes.isEnabled());
        Press("Read bad sectors again at the end, passes:");
        passes.setValue(2);
        KeepsOldScan = true;
        Press("Finish");
        EXPECT_FALSE(std::filesystem::exists(Image));
        KeepsOldScan = false;
        Press("Finish");
    });
    EXPECT_EQ(Run(), kWizardFinished);
    EXPECT_EQ(Boxes(), Texts{});
    EXPECT_EQ(Sheet->State().WizardLogEntry.Name, "Disk Imaging");
    EXPECT_EQ(Sheet->State().WizardLogEntry.Description, Disk + " to " + Image);
    const CopyJob& job = *Sheet->State().Copy;
    EXPECT_EQ(job.Retries, 2U);
    EXPECT_EQ(job.Start, CopyStart::Anew);
    EXPECT_EQ(job.TotalSectors, Engine.SourceDisk.TotalSectors);
    EXPECT_EQ(job.TotalSectors * 512, std::filesystem::file_size(Disk));
    EXPECT_NE(Engine.TargetDisk.WriteHandle, nullptr);
    EXPECT_EQ(ReadWholeFile(Image), "");
    EXPECT_TRUE(std::filesystem::exists(Image + ".map"));
}

TEST_F(CopyPagesTest, AnImageThatMayNotBeMadeKeepsTheWizardOpen) {
    std::ofstream(Scratch / "there.th2") << "precious";
    const std::pair<std::string, const char*> cases[] = {
        {Scratch / "nowhere/new.th2", "Cannot make "},
        {Scratch / "there.th2", "What is there is never written over. Choose another path"}};
    RunWith([&] {
        for (const auto& [image, text] : cases) {
            GoToImagePageOf(image);
            const auto* note = OnPage<QLabel>().parentWidget()->findChildren<QLabel*>().at(1);
            EXPECT_EQ(note->isVisible(), std::filesystem::exists(image));
            ExpectRefused(text);
            Press("< Back");
        }
        GoToImagePageOf(Image, 2);
        ExpectRefused("Cannot open /dev/no-such-disk: ");
    });
    EXPECT_EQ(ReadWholeFile(Scratch / "there.th2"), "precious");
    EXPECT_FALSE(std::filesystem::exists(Image) || std::filesystem::exists(Image + ".map"));
}

TEST_F(CopyPagesTest, AnUnfinishedImageIsGoneOnWithIfTheUserWantsTo) {
    const std::string half = ReadWholeFile(Disk).substr(0, 256 * 512);
    std::string stamped = half;
    const std::uint64_t sectors = std::filesystem::file_size(Disk) / 512;
    StampImage({reinterpret_cast<std::uint8_t*>(stamped.data()), stamped.size()}, sectors, 512);
    std::ofstream(Image, std::ios::binary) << stamped;
    CopyMap map(sectors * 512);
    map.Mark(0, half.size(), AreaState::Read);
    ASSERT_EQ(SaveMap(Image + ".map", map, {}, MapComment(Disk, "")), kErrorNone);
    AtSheet([this] {
        GoToImagePageOf(Image);
        Answers.Answer(QMessageBox::No);
        ExpectRefused(
            "256 of 51200 sectors are in it, 50944 have not been tried yet.\n\nDo you want to continue it?");
        Answers.Answer(QMessageBox::Yes);
        Press("Finish");
    });
    EXPECT_EQ(Run(), kWizardFinished);
    EXPECT_EQ(Sheet->State().Copy->Start, CopyStart::GoOn);
    EXPECT_EQ(ReadWholeFile(Image), stamped);
}

TEST_F(CopyPagesTest, ACloneNamesWhatIsLostAndAsks) {
    std::filesystem::copy_file(Disk, Target);
    RunWith([this] {
        GoToClonePage(0, 0);
        ExpectRefused("are one disk or image file");
        ChooseDisk(2, 1);
        ExpectRefused("Cannot open /dev/no-such-disk: ");
        ChooseDisk(1, 1);
        Answers.MayAnswer = [](const QMessageBox& box) {
            EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::No));
            return true;
        };
        ExpectRefused("destroys all that is on it:\n\n    NTFS volume 1  start sector 2048");
        Answers.MayAnswer = nullptr;
        std::filesystem::resize_file(Target, std::filesystem::file_size(Disk) - 1);
        ExpectRefused("is too small");
        std::filesystem::resize_file(Target, std::filesystem::file_size(Disk));
        Answers.Answer(QMessageBox::Yes);
        Press("Finish");
        EXPECT_FALSE(Sheet->isVisible());
    });
    EXPECT_EQ(Sheet->State().Copy->TargetPath, Target);
    EXPECT_TRUE(Sheet->State().Copy->MapPath.empty());
    EXPECT_NE(Engine.TargetDisk.WriteHandle, nullptr);
}

} // namespace
} // namespace thntfs::test
