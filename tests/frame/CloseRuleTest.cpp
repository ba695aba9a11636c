#include "FrameFixture.h"
#include "catalogue/FindEntry.h"
#include "platform/system/Interrupt.h"
#include "shell/WindowMessages.h"
#include "views/ContextMenu.h"

#include <csignal>

namespace thntfs::test {
namespace {

class CloseRule : public FrameFixture {
protected:
    CloseRule() {
        LoadByMenu(SavedScanOf(Volume("basic.img")));
        OnInterrupt(Engine.ScanRunFlag);
    }
    ~CloseRule() override { OnInterrupt(Engine.ScanRunFlag); } // takes the memory of a signal away

    /// Closes the window, as its button does, which is to bring up the question.
    void Close(QMessageBox::StandardButton answer) {
        Answers.Boxes.clear();
        Answers.Answer(answer);
        Frame->close();
        ASSERT_EQ(Answers.Boxes.size(), 1U);
        EXPECT_EQ(Answers.Boxes[0].Text, QStringLiteral("Do you want to save scan information?"));
        EXPECT_EQ(Answers.Boxes[0].Buttons, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    }
};

TEST_F(CloseRule, AsksAboutAScanThatIsInNoFile) {
    Close(QMessageBox::Cancel);
    EXPECT_TRUE(Frame->isVisible());
    Close(QMessageBox::Yes); // and then no file is chosen: the result isn't lost
    EXPECT_TRUE(Frame->isVisible());
    Answers.AnswerFile(QString::fromStdString(Folder / "kept.tht"));
    Close(QMessageBox::Yes);
    EXPECT_FALSE(Frame->isVisible());
    EXPECT_EQ(ReadWholeFile(Folder / "kept.tht"), ReadWholeFile(Folder / "saved.tht"));
    EXPECT_EQ(Engine.SourceDisk.MediaHandle, nullptr);
}

TEST_F(CloseRule, ARequestClosesOnePreviewWindow) {
    const LocatedEntry file = FindEntries("/Projects/beta/plan.txt").at(0);
    WM_SHOW_PREVIEW.Send(Frame.get(), file.Item.EntryId);
    EXPECT_EQ(Engine.PreviewLength, 12000U);
    EXPECT_TRUE(PreviewWindowOpen());
    Frame->close();
    EXPECT_FALSE(PreviewWindowOpen());
    EXPECT_EQ(Engine.PreviewLength, 0U);
    EXPECT_TRUE(Frame->isVisible() && Answers.Boxes.empty());
    Close(QMessageBox::Cancel);
    WM_SHOW_PREVIEW.Send(Frame.get(), file.Item.EntryId); // and the window goes with the frame
}

TEST_F(CloseRule, AnEndFromOutsideStopsTheScanAndAsksNothing) {
    WatchMedium();
    Answers.MayAnswer = [](const QMessageBox& /*box*/) { return false; }; // nobody sits there
    AtRead(1, [] { std::raise(SIGTERM); });
    Frame->BeginBasicScan();
    EXPECT_TRUE(WaitUntil([this] { return !Frame->isVisible(); }));
    EXPECT_TRUE(IsOffered("Wizard")) << "the worker has come to its end";
    EXPECT_TRUE(LogRows().at(3).starts_with("Aborted processing")) << LogRows().at(3);
}

TEST_F(CloseRule, AnEndFromOutsideTakesABoxAlong) {
    Answers.MayAnswer = [](const QMessageBox& /*box*/) { return false; };
    QTimer::singleShot(0, [] { std::raise(SIGTERM); });
    Frame->close();
    EXPECT_TRUE(WaitUntil([this] { return !Frame->isVisible(); }));
}

} // namespace
} // namespace thntfs::test
