// A clone and an image as jobs, under their dialog: what it shows, the user's pause and stop, and what goes
// wrong.

#include "dialogs/CopyAnimation.h"
#include "dialogs/VarientCloneImageDialog.h"
#include "disktools/CloneTarget.h"
#include "disktools/ImageTarget.h"
#include "engine/EngineState.h"
#include "partitions/OpenSource.h"
#include "platform/media/Medium.h"
#include "shell/DesktopState.h"
#include "shell/PauseGate.h"
#include "support/FailingFileStore.h"
#include "support/FaultyMedium.h"
#include "support/RunProgram.h"
#include "support/VolumeBuilder.h"
#include "support/desktop/BoxAnswers.h"
#include "support/desktop/Widgets.h"

#include <QLabel>
#include <QProgressBar>
#include <QTest>
#include <filesystem>
#include <gtest/gtest.h>

namespace thntfs::test {
namespace {

constexpr std::uint64_t kSectors = 3000;
const std::string kStopQuestion = "Volume Salvage (NTFS): Do you want to stop process?";
const std::string kPaused = "imaging 3";
const std::string kResumed = "imaging 4";

class CopyDialogTest : public testing::Test, public MessageTarget {
protected:
    CopyDialogTest() {
        SetMainWindow(this);
        WriteFileBytes(Disk, PatternBytes(kSectors * 512));
        EXPECT_EQ(OpenSource(Disk), kErrorNone);
        Engine.SourceDisk.MediaHandle = MakeFaultyMedium(std::move(Engine.SourceDisk.MediaHandle), Plan);
    }
    ~CopyDialogTest() override {
        SetMainWindow(nullptr);
        ResetEngineState();
    }

    /// As the main frame does.
    std::intptr_t OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t lParam) override {
        if (message == WM_LOG_EVENT) {
            const auto& entry = WM_LOG_EVENT.First(wParam);
            Log.push_back(entry.Name + " | " + entry.Description);
        } else if (message == WM_COPY_POSITION && Engine.ScanRunFlag != 0) {
            WM_COPY_PROGRESS.Send(Desktop.CopyDialog, WM_COPY_POSITION.Second(lParam),
                                  WM_COPY_POSITION.First(wParam));
        } else if (message == WM_COPY_EVENT) {
            Events.push_back((WM_COPY_EVENT.First(wParam) == CopyWork::Image ? "imaging " : "cloning ") +
                             std::to_string(int(WM_COPY_EVENT.Second(lParam))));
        }
        return 0;
    }

    [[nodiscard]] CopyJob ImageJob(unsigned retries = 0) const {
        ImageTarget target(Disk, Image);
        EXPECT_TRUE(target.Open(true, false).Allowed());
        CopyJob job = target.TakeJob();
        job.Retries = retries;
        return job;
    }

    /// Runs the job to the end of its dialog.
    void Run(CopyJob job, const WindowMessage<CopyJob&>& start = WM_START_IMAGE) {
        Engine.ScanRunFlag = 1;
        Desktop.CopyDialog = new CVarientCloneImageDialog;
        start.Send(Desktop.CopyDialog, job);
        start.Send(Desktop.CopyDialog, job); // starts no other
        EXPECT_TRUE(WaitUntil([] { return Desktop.CopyDialog == nullptr; }));
        EXPECT_EQ(Engine.ScanRunFlag, 0U);
        EXPECT_EQ(Engine.SourceDisk.MediaHandle, nullptr);
    }

    /// Has the user do something while the worker is at the read of a sector; `holding` has it wait for that.
    void AtSector(std::uint64_t sector, const std::function<void()>& act, bool holding = true) {
        Plan->OnRead = [=, this](std::uint64_t /*index*/, const ReadRequest& request) {
            if (request.Offset == sector * 512) {
                const auto stays = std::exchange(Plan->OnRead, nullptr); // what runs here
                QMetaObject::invokeMethod(Desktop.CopyDialog, act,
                                          holding ? Qt::BlockingQueuedConnection : Qt::QueuedConnection);
            }
        };
    }

    static std::string Text(const char* name) {
        return Desktop.CopyDialog->findChild<QLabel*>(QLatin1String(name))->text().toStdString();
    }
    [[nodiscard]] Texts Boxes() const {
        Texts texts;
        for (const SeenBox& box : Answers.Boxes) {
            texts.push_back((box.Caption + QStringLiteral(": ") + box.Text).toStdString());
        }
        return texts;
    }

    /// What an image of the disk is, up to a length.
    [[nodiscard]] std::string Expected(const std::vector<std::uint64_t>& badSectors = {},
                                       std::uint64_t bytes = kSectors * 512) const {
        std::string image = ReadWholeFile(Disk);
        for (const std::uint64_t sector : badSectors) {
            image.replace(sector * 512, 512, 512, '\0');
        }
        StampImage({reinterpret_cast<std::uint8_t*>(image.data()), image.size()}, kSectors, 512);
        return image.substr(0, bytes);
    }

    ScratchFolder Folder;
    std::string Disk = Folder / "disk";
    std::string Image = Folder / "disk.th2";
    BoxAnswers Answers;
    std::shared_ptr<FaultPlan> Plan = std::make_shared<FaultPlan>();
    Texts Log;
    Texts Events; ///< "imaging" or "cloning", and the event's number
};

TEST_F(CopyDialogTest, AnImageWithBadSectorsWhichComeBackInPart) {
    Plan->Rules = {{700, 1}, {2990, 1, kErrorCrc, 3}};
    AtSector(1024, [] {
        EXPECT_EQ(Desktop.CopyDialog->windowTitle(),
                  QStringLiteral("Tarnholt Volume Salvage (NTFS) Disk Imaging"));
        EXPECT_EQ(Text("Heading"), "Disk Imaging...");
        EXPECT_NE(ButtonOf(*Desktop.CopyDialog, "Stop Imaging"), nullptr);
        EXPECT_EQ(Text("Percent"), "34 %");
        EXPECT_EQ(Desktop.CopyDialog->findChild<QProgressBar*>()->value(), 34);
        EXPECT_EQ(Text("SectorLine"), "Imaging sector 1024 of 3000");
        EXPECT_EQ(Text("Account"), "Bad sectors: 1    Not yet tried: 1,976");
        EXPECT_TRUE(Desktop.CopyDialog->isVisible() && !Desktop.CopyDialog->isModal());
    });
    Texts atEnd;
    Answers.MayAnswer = [&](const QMessageBox& /*box*/) {
        atEnd = {Text("SectorLine"), Text("Percent"), Text("Account")};
        EXPECT_EQ(Engine.ScanRunFlag, 0U);
        return true;
    };
    Run(ImageJob(2));
    EXPECT_EQ(Boxes(), Texts{"Information: Disk Imaging Completed"});
    EXPECT_EQ(Answers.Boxes[0].Icon, QMessageBox::Information);
    EXPECT_EQ(atEnd,
              (Texts{"Reading bad sectors again: 2 of 2", "100 %", "Bad sectors: 1    Not yet tried: 0"}));
    EXPECT_EQ(Events, Texts{"imaging 1"});
    EXPECT_EQ(Log.back(), "1 sector could not be read and is zeros in the copy | Map: " + Image + ".map");
    EXPECT_TRUE(ReadWholeFile(Image) == Expected({700}));
    EXPECT_NE(ReadWholeFile(Image + ".map").find("0x00057800  0x00000200  -"), std::string::npos);
}

TEST_F(CopyDialogTest, TheStopQuestionHoldsTheCopyAndNoGoesOn) {
    std::size_t reads = 0;
    Answers.MayAnswer = [&](const QMessageBox& box) {
        if (box.icon() != QMessageBox::Question) {
            return true;
        }
        EXPECT_FALSE(Desktop.CopyDialog->findChild<CCopyAnimation*>()->Moves());
        if (!WorkerGate().IsHolding()) {
            return false;
        }
        reads = Plan->Log.size();
        QTest::qWait(50);
        EXPECT_EQ(Plan->Log.size(), reads);
        return true;
    };
    Answers.Answer(QMessageBox::No);
    AtSector(
        512, [] { Press(*Desktop.CopyDialog, "Stop Imaging"); }, false);
    Run(ImageJob());
    EXPECT_EQ(Boxes(), (Texts{kStopQuestion, "Information: Disk Imaging Completed"}));
    EXPECT_EQ(Events, (Texts{kPaused, kResumed, "imaging 1"}));
    EXPECT_TRUE(ReadWholeFile(Image) == Expected());
}

TEST_F(CopyDialogTest, AStoppedImageIsAShorterOneAndGoesOn) {
    Answers.Answer(QMessageBox::Yes);
    AtSector(
        512, [] { QTest::keyClick(Desktop.CopyDialog, Qt::Key_Escape); }, false);
    Run(ImageJob());
    EXPECT_EQ(Boxes(), (Texts{kStopQuestion, "Information: Disk Imaging Aborted"}));
    EXPECT_EQ(Answers.Boxes[1].Icon, QMessageBox::Critical);
    EXPECT_EQ(Events, (Texts{kPaused, "imaging 2"}));
    const std::uint64_t bytes = ReadWholeFile(Image).size();
    EXPECT_EQ(bytes % (256 * 512), 0U);
    EXPECT_LT(bytes, 2000U * 512);
    EXPECT_TRUE(ReadWholeFile(Image) == Expected({}, bytes));
    ASSERT_EQ(OpenImageFile(Image), kErrorNone);
    EXPECT_EQ(Engine.SourceDisk.TotalSectors, bytes / 512);

    ASSERT_EQ(OpenSource(Disk), kErrorNone);
    Run(ImageJob());
    EXPECT_TRUE(ReadWholeFile(Image) == Expected());
}

TEST_F(CopyDialogTest, AFatalFailureIsToldAsAborted) {
    FailingFileStore store;
    SetFileStore(&store);
    store.Plan().RoomInFile = 1000 * 512;
    CopyJob job = ImageJob();
    Run(std::move(job));
    SetFileStore(nullptr);
    EXPECT_EQ(Boxes(),
              (Texts{"Error: There is not enough space on the disk.", "Information: Disk Imaging Aborted"}));
    EXPECT_EQ(Log.at(0), "The copy to " + Image + " can't go on | There is not enough space on the disk.");
    EXPECT_TRUE(Log.at(1).starts_with("2232 sectors have not been read yet | Map: ")) << Log.at(1);
    EXPECT_EQ(Events, Texts{"imaging 2"});

    Answers.Boxes.clear();
    ASSERT_EQ(OpenSource(Disk), kErrorNone);
    Engine.SourceDisk.MediaHandle = MakeFaultyMedium(std::move(Engine.SourceDisk.MediaHandle), Plan);
    Plan->Rules = {{1100, kForever, kErrorNotReady}};
    Run(ImageJob());
    EXPECT_EQ(Boxes(), (Texts{"Error: The device is not ready.", "Information: Disk Imaging Aborted"}));
    EXPECT_TRUE(ReadWholeFile(Image).starts_with(Expected({}, 1024 * 512)));
}

// As where its disk is unmounted under it.
TEST_F(CopyDialogTest, AnImageThatIsNotAtItsPathAnyMoreEndsTheCopy) {
    AtSector(1024, [this] { std::filesystem::rename(Image, Folder / "away.th2"); });
    CopyJob job = ImageJob();
    const std::string map = ReadWholeFile(Image + ".map");
    Run(std::move(job));
    EXPECT_EQ(Boxes().at(0).find("Error: " + Image + " isn't the file any more"), 0U) << Boxes().at(0);
    EXPECT_EQ(Boxes().at(1), "Information: Disk Imaging Aborted");
    EXPECT_EQ(ReadWholeFile(Image + ".map"), map) << "it says nothing of the file that is away";
    std::filesystem::rename(Folder / "away.th2", Image);
    ASSERT_EQ(OpenSource(Disk), kErrorNone);
    Run(ImageJob());
    EXPECT_TRUE(ReadWholeFile(Image) == Expected());
}

TEST_F(CopyDialogTest, AClone) {
    const std::string rest(512, 'x');
    WriteFileBytes(Folder / "target", ByteVector(kSectors * 512 + 512, 'x'));
    ASSERT_TRUE(CloneTarget(Folder / "target").Open().Allowed());
    Plan->Rules = {{2, 2}};
    AtSector(256, [] {
        EXPECT_EQ(Text("Heading") + Text("SectorLine"), "Disk Cloning...Cloning sector 256 of 3000");
    });
    Run(MakeCloneJob(Disk, Folder / "target"), WM_START_CLONE);
    EXPECT_EQ(Boxes(), Texts{"Information: Disk Cloning Completed"});
    EXPECT_EQ(Events, Texts{"cloning 1"});
    EXPECT_EQ(Log.back(), "2 sectors could not be read and are zeros in the copy | ");
    EXPECT_TRUE(ReadWholeFile(Folder / "target") == Expected({2, 3}) + rest);
}

TEST_F(CopyDialogTest, WhatIsShownOfAMediumThatWordsCannotCount) {
    CVarientCloneImageDialog dialog;
    Desktop.CopyDialog = &dialog;
    EXPECT_EQ(Text("Percent"), "0 %");
    WM_COPY_PROGRESS.Send(&dialog, 0xFFFFFFFF, 0x7FFFFFFF);
    EXPECT_EQ(Text("Percent") + Text("SectorLine"), "49 %Cloning sector 2147483647 of 4294967295");
    constexpr std::uint64_t kMany = std::uint64_t{10} << 32U;
    Engine.SourceDisk.TotalSectors = kMany;
    CopyFigures figures;
    figures.Position = kMany / 4;
    figures.Done = kMany / 8;
    figures.PartTotal = kMany;
    figures.Seconds = 1024;
    figures.Sums = {kMany, 12, kMany - kMany / 4};
    WM_COPY_FIGURES.Send(&dialog, figures);
    EXPECT_EQ(Text("Rate"), "17:04 passed");
    figures.Seconds += 10;
    figures.Done += 52428800;
    WM_COPY_FIGURES.Send(&dialog, figures);
    WM_COPY_PROGRESS.Send(&dialog, 0, 0x80000000);
    EXPECT_EQ(Text("Percent") + Text("SectorLine"), "25 %Cloning sector 10737418240 of 42949672960");
    EXPECT_EQ(Text("Rate"), "2.5 GB/s, 17:14 passed, about 2 h left");
    EXPECT_EQ(Text("Account"), "Bad sectors: 12    Not yet tried: 32,212,254,720");
    Engine.SourceDisk.TotalSectors = kSectors;
}

} // namespace
} // namespace thntfs::test
