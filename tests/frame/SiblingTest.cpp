// The sibling tool: a program beside this one, in whose place the window is hidden.

#include "FrameFixture.h"
#include "frame/SiblingSocket.h"
#include "frame/SiblingTool.h"

#include <QCoreApplication>
#include <QLocalSocket>
#include <QStandardPaths>
#include <filesystem>
#include <fstream>

namespace thntfs::test {
namespace {

TEST(SiblingRecords, AreLinesWithANumberInFront) {
    const auto parse = [](const char* line) {
        const SiblingRecord record = ParseSiblingRecord(line);
        return std::to_string(record.Number) + "|" + record.Text.toStdString();
    };
    EXPECT_EQ(parse("10 SpoorFrame\n"), "10|SpoorFrame");
    EXPECT_EQ(parse("20"), "20|");
    EXPECT_EQ(parse(" 10  a name \r\n"), "10|a name");
    for (const char* line : {"", "\n", "ten x", "-1", "99999999999999", "\xFF\xFE"}) {
        EXPECT_EQ(parse(line).substr(0, 2), "0|") << line;
    }
}

class Sibling : public FrameFixture {
protected:
    Sibling() { Frame->showMaximized(); }
    ~Sibling() override { fs::remove(Program); }

    void Provide(const std::string& script) const {
        std::ofstream(Program) << "#!/bin/sh\n" << script << "\n";
        fs::permissions(Program, fs::perms::owner_all);
    }

    void Start() {
        Command("Spoor Hound").setEnabled(true);
        Command("Spoor Hound").trigger();
    }

    static QString SocketPathOf(const char* name) {
        return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + QLatin1Char('/') +
               QLatin1String(name);
    }

    const std::string Program = QCoreApplication::applicationDirPath().toStdString() + "/SpoorHound";
};

TEST_F(Sibling, TheWindowComesBackWhenItIsCalledOrTheToolEnds) {
    Start();
    EXPECT_NE(Pane(0).find("isn't installed"), std::string::npos) << Pane(0);
    EXPECT_TRUE(Frame->isVisible());

    const std::string words = Folder / "words";
    Provide("echo \"$#:$1\" > " + words + "; sleep 2; echo ended >> " + words);
    Start();
    EXPECT_FALSE(Frame->isVisible());
    QLocalSocket tool;
    tool.connectToServer(SocketPathOf(FrameClassName));
    ASSERT_TRUE(tool.waitForConnected());
    QLocalServer toolsOwn;
    ASSERT_TRUE(toolsOwn.listen(SocketPathOf("SpoorTest")));
    tool.write("7 nothing\n10 SpoorTest\n");
    EXPECT_TRUE(WaitUntil([&tool] { return tool.bytesAvailable() == 4; })) << "each is answered";
    EXPECT_FALSE(Frame->isVisible());
    tool.write("20"); // and no end of its line
    tool.disconnectFromServer();
    EXPECT_TRUE(WaitUntil([this] { return Frame->isVisible(); }, 1500));
    EXPECT_EQ(ReadWholeFile(words), "1:THNTFSMainFrame\n");

    Provide("exit 3");
    Start();
    EXPECT_TRUE(WaitUntil([this] { return Frame->isVisible(); })) << "it died without a word";
    Frame.reset();
    Frame = std::make_unique<CMainFrame>();
    ASSERT_TRUE(toolsOwn.waitForNewConnection(2000));
    QLocalSocket* const called = toolsOwn.nextPendingConnection();
    EXPECT_TRUE(called->canReadLine() || called->waitForReadyRead(2000));
    EXPECT_EQ(called->readAll(), QByteArray("16\n"));
    EXPECT_TRUE(WaitUntil([&words] { return ReadWholeFile(words).ends_with("ended\n"); }));
    WaitUntil([] { return false; }, 300); // its end is handled
}

} // namespace
} // namespace thntfs::test
