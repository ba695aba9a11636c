#include "FrameFixture.h"
#include "platform/system/Interrupt.h"
#include "shell/DlgWait.h"

#include <csignal>
#include <utility>

namespace thntfs::test {
namespace {

class CloseRule : public FrameFixture {
protected:
    /// Closes the window, as its button does; gives the texts of the boxes.
    std::vector<std::string> Close() {
        Answers.Boxes.clear();
        Frame->close();
        std::vector<std::string> texts;
        for (const SeenBox& box : Answers.Boxes) {
            texts.push_back(box.Text.toStdString());
        }
        return texts;
    }
    using Texts = std::vector<std::string>;
};

TEST_F(CloseRule, RefusesWhileAJobRuns) {
    Engine.ScanRunFlag = 1;
    Frame->JobBusy = 1;
    EXPECT_EQ(Close(), Texts{"Please stop running process"});
    EXPECT_EQ(Answers.Boxes[0].Caption.toStdString(), "Warning");
    Engine.ScanRunFlag = 0;
    EXPECT_EQ(Close(), Texts{"Please wait..."});
    EXPECT_EQ(Answers.Boxes[0].Caption.toStdString(), "Information");
    EXPECT_EQ(Answers.Boxes[0].Icon, QMessageBox::Warning);
    EXPECT_TRUE(Frame->isVisible());
    Frame->JobBusy = 0;
    {
        const CDlgWait wait(Frame.get());
        EXPECT_EQ(Close(), Texts{});
        EXPECT_TRUE(Frame->isVisible());
    }
    EXPECT_EQ(Close(), Texts{});
    EXPECT_FALSE(Frame->isVisible());
}

TEST_F(CloseRule, AsksAboutAScanThatIsInNoFile) {
    const Texts question{"Do you want to save scan information?"};
    LoadByMenu(SavedScanOf(Volume("basic.img")));
    Answers.Answer(QMessageBox::Cancel);
    EXPECT_EQ(Close(), question);
    EXPECT_EQ(Answers.Boxes[0].Buttons, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    EXPECT_TRUE(Frame->isVisible());

    Answers.Answer(QMessageBox::Yes); // and then no file is chosen: the result isn't lost
    EXPECT_EQ(Close(), question);
    EXPECT_TRUE(Frame->isVisible());

    Answers.Answer(QMessageBox::Yes);
    Answers.AnswerFile(QString::fromStdString(Folder / "kept.tht"));
    EXPECT_EQ(Close(), question);
    EXPECT_FALSE(Frame->isVisible());
    EXPECT_EQ(ReadWholeFile(Folder / "kept.tht"), ReadWholeFile(Folder / "saved.tht"));
    EXPECT_EQ(Engine.SourceDisk.MediaHandle, nullptr);
}

TEST_F(CloseRule, NoLeavesWithoutAFile) {
    LoadByMenu(SavedScanOf(Volume("basic.img")));
    Answers.Answer(QMessageBox::No);
    EXPECT_EQ(Close().size(), 1U);
    EXPECT_FALSE(Frame->isVisible());
}

TEST_F(CloseRule, ATurboScanAloneIsNotAskedAbout) {
    Frame->ScanInfoDirty = 1;
    EXPECT_EQ(Close(), Texts{});
}

TEST_F(CloseRule, AnEndFromOutsideStopsTheScanAndAsksNothing) {
    OnInterrupt(Engine.ScanRunFlag);
    LoadByMenu(SavedScanOf(Volume("basic.img")));
    WatchMedium();
    Answers.MayAnswer = [](const QMessageBox& /*box*/) { return false; }; // nobody sits there
    Plan->OnRead = [](std::uint64_t index, const ReadRequest& /*request*/) {
        if (index == 1) {
            std::raise(SIGTERM);
        }
    };
    Frame->BeginBasicScan();
    EXPECT_TRUE(WaitUntil([this] { return !Frame->isVisible(); }));
    EXPECT_EQ(Frame->JobBusy, 0U);
    OnInterrupt(Engine.ScanRunFlag); // takes the memory of the signal away
}

TEST_F(CloseRule, AnEndFromOutsideTakesABoxAlong) {
    OnInterrupt(Engine.ScanRunFlag);
    bool told = false;
    Answers.MayAnswer = [&told](const QMessageBox& /*box*/) {
        if (!std::exchange(told, true)) { // a second signal would end the tests
            std::raise(SIGTERM);
        }
        return false;
    };
    Frame->ScanInfoDirty = 1;
    Frame->NoScanYet = 0;
    ClaimCatalogue();
    Frame->close();
    EXPECT_TRUE(WaitUntil([this] { return !Frame->isVisible(); }));
    OnInterrupt(Engine.ScanRunFlag);
}

} // namespace
} // namespace thntfs::test
