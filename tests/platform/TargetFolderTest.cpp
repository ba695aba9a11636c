#include "platform/files/TargetFolder.h"

#include "platform/files/PartName.h"
#include "platform/files/WorkFolder.h"
#include "support/FailingFileStore.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace thntfs::test {

namespace fs = std::filesystem;

namespace {

class TargetFolderTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(Work.Create(), kErrorNone);
        ASSERT_EQ(TargetFolder::OpenTargetFolder(At("target"), true, Target), kErrorNone);
    }
    [[nodiscard]] std::string At(const std::string& name) const { return Work.Path() + "/" + name; }

    WorkFolder Work;
    std::unique_ptr<TargetFolder> Target;
    std::unique_ptr<TargetFolder> Sub;
    std::unique_ptr<File> Created;
};

} // namespace

TEST_F(TargetFolderTest, OpensWhatTheUserChose) {
    EXPECT_EQ(TargetFolder::OpenTargetFolder(At("a/b/c"), false, Sub), kErrorFileNotFound);
    EXPECT_EQ(TargetFolder::OpenTargetFolder(At("a/b/c/"), true, Sub), kErrorNone);
    EXPECT_TRUE(fs::is_directory(At("a/b/c")));
    fs::create_directory_symlink(At("a"), At("link"));
    EXPECT_EQ(TargetFolder::OpenTargetFolder(At("link/b"), true, Sub), kErrorNone);

    ASSERT_EQ(Target->CreateFile("plain", Created), kErrorNone);
    for (const bool create : {false, true}) {
        EXPECT_EQ(TargetFolder::OpenTargetFolder(At("target/plain"), create, Sub), kErrorDirectory);
        EXPECT_EQ(Sub, nullptr);
    }
    EXPECT_EQ(TargetFolder::OpenTargetFolder(At("target/plain/x"), true, Sub), kErrorDirectory);
    EXPECT_NE(TargetFolder::OpenTargetFolder("/proc/no such", true, Sub), kErrorNone);
}

TEST_F(TargetFolderTest, RefusesNamesThatLeadElsewhere) {
    const std::string nul("a\0b", 3);
    for (const std::string& name : {std::string(), std::string("."), std::string(".."), std::string("/"),
                                    std::string("../x"), std::string("a/b"), std::string("a/"), nul}) {
        EXPECT_EQ(Target->MakeSubfolder(name, Sub), kErrorInvalidName) << name;
        EXPECT_EQ(Target->CreateFile(name, Created), kErrorInvalidName) << name;
        EXPECT_EQ(Target->DeleteFile(name), kErrorInvalidName) << name;
    }
    EXPECT_TRUE(fs::is_empty(At("target")));
    for (const char* name : {"...", "..a", "a\\b", "a\nb", "-rf", " ", "\xFF\xFE"}) {
        EXPECT_EQ(Target->CreateFile(name, Created), kErrorNone) << name;
    }
    EXPECT_EQ(Target->MakeSubfolder(std::string(256, 'x'), Sub), kErrorFilenameTooLong);
    EXPECT_EQ(Target->CreateFile(std::string(256, 'x'), Created), kErrorFilenameTooLong);
}

TEST_F(TargetFolderTest, FollowsNoLinkAndWritesNothingOver) {
    fs::create_directory(At("outside"));
    fs::create_directory_symlink(At("outside"), At("target/folder"));
    fs::create_symlink(At("outside/file"), At("target/file"));
    EXPECT_EQ(Target->MakeSubfolder("folder", Sub), kErrorFileExists);
    EXPECT_EQ(Sub, nullptr);
    EXPECT_EQ(Target->MakeSubfolder("file", Sub), kErrorFileExists);
    EXPECT_EQ(Target->CreateFile("file", Created), kErrorFileExists);
    EXPECT_EQ(Target->CreateFile("folder", Created), kErrorFileExists);
    EXPECT_TRUE(fs::is_empty(At("outside")));

    EXPECT_EQ(Target->DeleteFile("folder"), kErrorNone) << "the link, not the folder";
    EXPECT_TRUE(fs::is_directory(At("outside")));
}

TEST_F(TargetFolderTest, MakesAndReopensSubfolders) {
    ASSERT_EQ(Target->MakeSubfolder("sub", Sub), kErrorNone);
    ASSERT_EQ(Sub->CreateFile("file", Created), kErrorNone);
    EXPECT_EQ(Created->Write(std::vector<std::uint8_t>(5)), kErrorNone);
    EXPECT_EQ(fs::file_size(At("target/sub/file")), 5U);
    EXPECT_EQ(Target->MakeSubfolder("sub", Sub), kErrorNone);
    EXPECT_EQ(Sub->CreateFile("file", Created), kErrorFileExists);
    ASSERT_EQ(Sub->MakeSubfolder("deeper", Sub), kErrorNone);
    EXPECT_TRUE(fs::is_directory(At("target/sub/deeper")));
    EXPECT_EQ(Sub->MakeSubfolder("..", Sub), kErrorInvalidName);
    EXPECT_EQ(Sub, nullptr);
    EXPECT_GT(Target->FreeBytes().value_or(0), 0U);

    // An open folder is that folder, whatever becomes of its name.
    fs::rename(At("target"), At("moved"));
    EXPECT_EQ(Target->CreateFile("late", Created), kErrorNone);
    EXPECT_TRUE(fs::exists(At("moved/late")));
}

TEST_F(TargetFolderTest, PartsAreNamedWhenWholeAndLeftOnesGo) {
    const auto open = [&] { return TargetFolder::OpenTargetFolder(At("target"), false, Sub); };
    std::string part;
    ASSERT_EQ(Target->CreatePart(part, Created), kErrorNone);
    EXPECT_TRUE(IsPartName(part, ""));
    ASSERT_EQ(open(), kErrorNone);
    EXPECT_TRUE(fs::exists(At("target/" + part))) << "its writer lives";

    std::unique_ptr<File> other;
    ASSERT_EQ(Target->CreateFile("taken", other), kErrorNone);
    EXPECT_EQ(Target->NamePart(part, "taken"), kErrorFileExists);
    EXPECT_EQ(Target->NamePart(part, "../free"), kErrorInvalidName);
    EXPECT_EQ(Target->NamePart(part, "free"), kErrorNone);
    EXPECT_TRUE(fs::exists(At("target/free")));

    ASSERT_EQ(Target->MakeSubfolder("sub", Sub), kErrorNone);
    for (TargetFolder* folder : {Target.get(), Sub.get()}) {
        ASSERT_EQ(folder->CreatePart(part, Created), kErrorNone);
        ASSERT_EQ(folder->CreateFile("movie.part", other), kErrorNone);
    }
    Created.reset(); // as if its run were killed
    ASSERT_EQ(open(), kErrorNone);
    ASSERT_EQ(Target->MakeSubfolder("sub", Sub), kErrorNone);
    EXPECT_EQ(std::distance(fs::recursive_directory_iterator(At("target")), {}), 5) << "the parts alone go";
}

// To this file system, which shows all names in small letters, "Docs" and "docs" are one.
TEST_F(TargetFolderTest, FoldersThatDifferInCaseStayTwo) {
    const std::string image = At("image");
    std::ofstream(image).close();
    fs::resize_file(image, 8U << 20U);
    fs::create_directory(At("mount"));
    const std::string mount =
        "mkntfs -FqQ " + image + " && lowntfs-3g -o ignore_case " + image + " " + At("mount");
    if (std::system(("(" + mount + ") >" + At("log") + " 2>&1").c_str()) != 0) {
        GTEST_SKIP() << "no file system that ignores case can be mounted here";
    }
    for (const bool again : {false, true}) {
        ASSERT_EQ(TargetFolder::OpenTargetFolder(At("mount"), false, Target), kErrorNone);
        EXPECT_EQ(Target->MakeSubfolder("docs", Sub), kErrorNone);
        EXPECT_EQ(Target->MakeSubfolder("Docs", Sub), kErrorFileExists) << again;
    }
    EXPECT_EQ(Target->MakeSubfolder("New", Sub), kErrorNone);
    EXPECT_EQ(Target->MakeSubfolder("new", Sub), kErrorFileExists);
    EXPECT_EQ(Target->MakeSubfolder("New", Sub), kErrorNone);
    Sub.reset();
    Target.reset();
    EXPECT_EQ(std::system(("umount " + At("mount")).c_str()), 0);
}

TEST_F(TargetFolderTest, FilesFollowTheStoreInUse) {
    FailingFileStore store;
    SetFileStore(&store);
    store.FailAt(1, kErrorDiskFull);
    EXPECT_EQ(Target->CreateFile("file", Created), kErrorDiskFull);
    EXPECT_EQ(Created, nullptr);
    EXPECT_FALSE(fs::exists(At("target/file")));
    store.FailAt(2, kErrorDiskFull);
    ASSERT_EQ(Target->CreateFile("file", Created), kErrorNone);
    EXPECT_EQ(Created->Write(std::vector<std::uint8_t>(4)), kErrorDiskFull);
}

} // namespace thntfs::test
