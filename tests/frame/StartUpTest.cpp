// What comes up by itself when the program starts, and what keeps it away.

#include "FrameFixture.h"
#include "dialogs/SplashWnd.h"

#include <QDialog>

namespace thntfs::test {
namespace {

class StartUpRoad : public FrameFixture {
protected:
    [[nodiscard]] bool SplashStands() const {
        const auto* splash = Frame->findChild<QWidget*>(QStringLiteral("Splash"));
        return splash != nullptr && splash->isVisible();
    }
};

TEST_F(StartUpRoad, TheTipFollowsTheSplashAndAFileTakesTheirPlace) {
    const std::string missing = Folder / "missing.img";
    Frame->Begin(QString::fromStdString(missing));
    EXPECT_TRUE(WaitUntil([this] { return Answers.Boxes.size() == 1; }));
    EXPECT_FALSE(SplashStands());
    Frame->Begin({});
    EXPECT_TRUE(SplashStands());
    EXPECT_TRUE(Drop(missing));
    EXPECT_TRUE(WaitUntil([this] { return Answers.Boxes.size() == 2 && !SplashStands(); }));
    RunEvents(); // a tip would find no step, and fail
    Frame->Begin({});
    Answers.When<QDialog>([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Tip of the Day"));
        dialog.accept();
    });
    PressKey(Qt::Key_F1);
    EXPECT_FALSE(SplashStands());
    EXPECT_TRUE(WaitUntil([this] { return Answers.AllDone(); }));
    EXPECT_EQ(Frame->findChild<QWidget*>(QStringLiteral("Help")), nullptr) << "the key did nothing else";
}

} // namespace
} // namespace thntfs::test
