// What shows when the program starts: splash, tip of the day, notice.

#include "dialogs/SplashWnd.h"
#include "dialogs/TipFile.h"
#include "dialogs/TipOfTheDay.h"
#include "dialogs/VistaMsgDlg.h"
#include "shell/Settings.h"
#include "support/RunProgram.h"
#include "support/desktop/BoxAnswers.h"
#include "support/desktop/Widgets.h"

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <gtest/gtest.h>

namespace thntfs::test {
namespace {

const QString kFirstTip = QStringLiteral("Press Ctrl + W to run wizard.");

TEST(StartWindows, TipsComeFromAFileThatMayBeAnything) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("data/stips.txt"));
    EXPECT_EQ(ReadTips(path), QStringList{kFirstTip});
    ProvideTipFile(path);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    EXPECT_EQ(file.readAll(), QByteArray("Press Ctrl + W to run wizard.\n"));
    file.resize(0);
    file.write("  one \r\n\n; a remark\nbinary \x01\xFF\n" + QByteArray(5000, 'x') + "\ntwo\n");
    file.write(QByteArray(1 << 20, '\n') + "behind the limit\n");
    file.close();
    EXPECT_EQ(ReadTips(path), (QStringList{QStringLiteral("one"), QStringLiteral("two")}));
    ProvideTipFile(path);
    EXPECT_EQ(ReadTips(path).size(), 2) << "what is there stays";
    EXPECT_EQ(ReadTips(folder.path()), QStringList{kFirstTip});
    ProvideTipFile(TipFilePath());
    EXPECT_EQ(TipFileInUse(), TipFilePath());
    const EnvironmentVariable shared("XDG_DATA_DIRS", folder.path().toStdString());
    ASSERT_TRUE(QDir(folder.path()).rename(QStringLiteral("data"), QStringLiteral("th-ntfs")));
    EXPECT_EQ(ReadTips(TipFileInUse()).size(), 2) << "those of an installation";
    QFile own(TipFilePath());
    ASSERT_TRUE(own.open(QIODevice::Append) && own.write("mine\n") == 5);
    own.close();
    EXPECT_EQ(TipFileInUse(), TipFilePath());
    EXPECT_EQ(ReadTips(QStringLiteral(":/../src/none")), QStringList{kFirstTip});
}

TEST(StartWindows, TheTipGoesOnAndIsWantedAtStartUntilTheUserSaysNo) {
    BoxAnswers answers;
    ProvideTipFile(TipFilePath());
    QFile file(TipFilePath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("one\ntwo\n");
    file.close();
    OpenSettings().setValue(QStringLiteral("TipOfTheDay/Next"), QStringLiteral("nonsense"));
    EXPECT_TRUE(TipsWantedAtStart());
    answers.When<QDialog>([](QDialog& dialog) {
        const auto tip = [&dialog] { return dialog.findChild<QTextEdit*>()->toPlainText().toStdString(); };
        EXPECT_EQ(tip(), "one");
        Press(dialog, "Next Tip");
        EXPECT_EQ(tip(), "two");
        Press(dialog, "Next Tip");
        EXPECT_EQ(tip(), "one");
        Press(dialog, "Show tips at startup");
        Press(dialog, "Close");
    });
    ShowTipOfTheDay(nullptr);
    EXPECT_TRUE(answers.AllDone());
    EXPECT_FALSE(TipsWantedAtStart());
}

TEST(StartWindows, TheFirstKeyClosesTheSplashAndDoesNothingElse) {
    QLineEdit edit;
    edit.show();
    bool gone = false;
    QPointer<CSplashWnd> splash(new CSplashWnd(edit, [&gone] { gone = true; }));
    EXPECT_TRUE(splash->isVisible());
    QTest::keyClick(&edit, Qt::Key_A);
    RunEvents();
    EXPECT_TRUE(splash.isNull() || !splash->isVisible());
    EXPECT_TRUE(gone);
    QTest::keyClick(&edit, Qt::Key_B);
    EXPECT_EQ(edit.text(), QStringLiteral("b"));
    splash = new CSplashWnd(edit, [&gone] { gone = false; });
    splash->Cancel();
    RunEvents();
    EXPECT_TRUE(gone) << "what was cancelled brings nothing";
}

TEST(StartWindows, TheNoticeShowsBySettingAlone) {
    const QString key = QStringLiteral("VistaMsg/StartUp");
    EXPECT_FALSE(CVistaMsgDlg(nullptr).IsWanted());
    EXPECT_EQ(OpenSettings().value(key).toInt(), 0);
    OpenSettings().setValue(key, 1);
    {
        CVistaMsgDlg notice(nullptr);
        EXPECT_TRUE(notice.IsWanted());
        notice.show();
        Press(notice, "Do not show again");
    }
    EXPECT_EQ(OpenSettings().value(key).toInt(), 0);
}

} // namespace
} // namespace thntfs::test
