// The scan as a folder: another program mounts it, here one that only says so.

#include "frame/FolderMount.h"

#include "FrameFixture.h"
#include "frame/MountCall.h"
#include "platform/media/Medium.h"

#include <QTest>
#include <filesystem>
#include <fstream>

namespace thntfs::test {
namespace {

class FolderMountTest : public FrameFixture {
protected:
    FolderMountTest() {
        Frame->showMaximized();
        LoadByMenu(SavedScanOf(Volume("basic.img")));
    }

    QString Program(const std::string& script) {
        const std::string path = Folder / "program";
        std::ofstream(path) << "#!/bin/sh\n" << script << "\n";
        fs::permissions(path, fs::perms::owner_all);
        return QString::fromStdString(path);
    }

    std::vector<std::string> Shown;
    FolderMount Mount{[this](const QString& folder) { Shown.push_back(folder.toStdString()); }};
};

TEST_F(FolderMountTest, ShowsTheFolderAndEndsTheOtherProgram) {
    const std::string words = Folder / "words";
    const QString program = Program("echo \"$1 $3\" > " + words + "; wc -c < \"$2\" >> " + words +
                                    "; echo mounted; exec cat > /dev/null");
    Mount.Open(program);
    EXPECT_EQ(Mount.Folder(), QString()) << "not before it is told";
    ASSERT_TRUE(QTest::qWaitFor([&] { return !Shown.empty(); }));
    Mount.Open(program);
    ASSERT_EQ(Shown, std::vector<std::string>(2, Shown[0]));
    EXPECT_EQ(fs::path(Shown[0]).filename(), "Basic") << "the volume's label";
    EXPECT_EQ(fs::status(fs::path(Shown[0]).parent_path()).permissions(), fs::perms::owner_all);
    std::ifstream told(words);
    std::string word;
    std::string folder;
    std::size_t bytes = 0;
    told >> word >> folder >> bytes;
    EXPECT_EQ(word, kMountWord);
    EXPECT_EQ(folder, Shown[0]);
    EXPECT_GT(bytes, 1000U);
    for (const auto& entry : fs::directory_iterator(Engine.CatalogueFolder)) {
        EXPECT_EQ(entry.path().filename().string().find("mount-"), std::string::npos) << "the copy has gone";
    }
    Mount.End();
    EXPECT_FALSE(fs::exists(Shown[0]));
    EXPECT_EQ(Mount.Folder(), QString());

    fs::create_directory(Shown[0]);
    Mount.Open(program);
    ASSERT_TRUE(QTest::qWaitFor([&] { return Shown.size() == 3; })) << "and once more";
    EXPECT_EQ(Shown[2], Shown[0] + " (2)");
    fs::remove(Shown[0]);
    Mount.End();
    Mount.Open(Program("exec cat > /dev/null"));
    Mount.End(); // before it is mounted
    EXPECT_TRUE(Answers.Boxes.empty());
}

TEST_F(FolderMountTest, TellsWhyThereIsNone) {
    Mount.Open(Program("echo 'no such luck' >&2; exit 1"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !Answers.Boxes.empty(); }));
    EXPECT_TRUE(Answers.Boxes[0].Text.endsWith(QLatin1String("no such luck")))
        << Answers.Boxes[0].Text.toStdString();
    Mount.Open(QStringLiteral("/dev/null/nothing"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return Answers.Boxes.size() == 2; }));
    Mount.Open(Program("echo mounted; exit 0"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return Shown.size() == 1 && Mount.Folder().isEmpty(); }));
    EXPECT_FALSE(fs::exists(Shown[0]));
    EXPECT_EQ(Answers.Boxes.size(), 2U) << "unmounted by others";
    EXPECT_TRUE(IsOffered("Open as Folder"));
}

class LentDiskTrial : public FrameFixture {};

TEST_F(LentDiskTrial, IsAFolderWithoutAnotherQuestion) {
    if (!qEnvironmentVariableIsSet("THNTFS_TRIAL_SCAN")) {
        GTEST_SKIP() << "this is for tests/system";
    }
    Frame->OpenFile(qEnvironmentVariable("THNTFS_TRIAL_SCAN"));
    ASSERT_TRUE(WaitForIdle());
    std::string shown;
    FolderMount mount([&shown](const QString& folder) { shown = folder.toStdString(); });
    mount.Open(qEnvironmentVariable("THNTFS_TRIAL_PROGRAM"));
    ASSERT_TRUE(QTest::qWaitFor([&shown] { return !shown.empty(); }, 30000));
    QProcess copy;
    copy.start(QStringLiteral("cp"), {QStringLiteral("-r"), QString::fromStdString(shown),
                                      qEnvironmentVariable("THNTFS_TRIAL_COPY")});
    std::vector<std::uint8_t> sector(512);
    while (!copy.waitForFinished(0) && copy.state() != QProcess::NotRunning) {
        EXPECT_EQ(Engine.SourceDisk.MediaHandle->ReadAt(0, sector), kErrorNone) << "both processes read";
    }
    EXPECT_EQ(copy.exitCode(), 0);
}

} // namespace
} // namespace thntfs::test
