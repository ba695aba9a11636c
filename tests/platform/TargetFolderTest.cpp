#include "platform/files/TargetFolder.h"

#include "platform/files/File.h"
#include "platform/files/PartName.h"
#include "support/LoopDevice.h"
#include "support/RunProgram.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace thntfs::test {

namespace {

class TargetFolderTest : public testing::Test {
protected:
    TargetFolderTest() { EXPECT_EQ(Open(At("target"), true, target_), kErrorNone); }
    [[nodiscard]] std::string At(const std::string& name) const { return scratch_ / name; }

    static constexpr auto Open = TargetFolder::OpenTargetFolder;
    ScratchFolder scratch_;
    std::unique_ptr<TargetFolder> target_;
    std::unique_ptr<TargetFolder> sub_;
    std::unique_ptr<File> file_;
};

TEST_F(TargetFolderTest, OpensWhatTheUserChose) {
    EXPECT_EQ(Open(At("a/b/c"), false, sub_), kErrorFileNotFound);
    EXPECT_EQ(Open(At("a/b/c/"), true, sub_), kErrorNone);
    EXPECT_TRUE(fs::is_directory(At("a/b/c")));
    fs::create_directory_symlink(At("a"), At("link"));
    EXPECT_EQ(Open(At("link/b"), true, sub_), kErrorNone);

    ASSERT_EQ(target_->CreateFile("plain", file_), kErrorNone);
    EXPECT_EQ(Open(At("target/plain"), false, sub_), kErrorDirectory);
    EXPECT_EQ(sub_, nullptr);
    EXPECT_EQ(Open(At("target/plain/x"), true, sub_), kErrorDirectory);
    EXPECT_NE(Open("/proc/no such", true, sub_), kErrorNone);
}

TEST_F(TargetFolderTest, RefusesNamesThatLeadElsewhere) {
    const std::string nul("a\0b", 3);
    for (const std::string& name : std::vector<std::string>{"", ".", "..", "/", "../x", "a/", nul}) {
        EXPECT_EQ(target_->MakeSubfolder(name, sub_), kErrorInvalidName) << name;
        EXPECT_EQ(target_->CreateFile(name, file_), kErrorInvalidName) << name;
        EXPECT_EQ(target_->DeleteFile(name), kErrorInvalidName) << name;
    }
    EXPECT_TRUE(fs::is_empty(At("target")));
    for (const char* name : {"...", "..a", "a\\b", "a\nb", "-rf", " ", "\xFF\xFE"}) {
        EXPECT_EQ(target_->CreateFile(name, file_), kErrorNone) << name;
    }
    EXPECT_EQ(target_->MakeSubfolder(std::string(256, 'x'), sub_), kErrorFilenameTooLong);
    EXPECT_EQ(target_->CreateFile(std::string(256, 'x'), file_), kErrorFilenameTooLong);
}

TEST_F(TargetFolderTest, MakesAndReopensSubfolders) {
    ASSERT_EQ(target_->MakeSubfolder("sub", sub_), kErrorNone);
    ASSERT_EQ(sub_->CreateFile("file", file_), kErrorNone);
    EXPECT_EQ(file_->Write(std::vector<std::uint8_t>(5)), kErrorNone);
    EXPECT_EQ(fs::file_size(At("target/sub/file")), 5U);
    EXPECT_EQ(target_->MakeSubfolder("sub", sub_), kErrorNone);
    EXPECT_EQ(sub_->CreateFile("file", file_), kErrorFileExists);
    ASSERT_EQ(sub_->MakeSubfolder("deeper", sub_), kErrorNone);
    EXPECT_TRUE(fs::is_directory(At("target/sub/deeper")));
    EXPECT_EQ(sub_->MakeSubfolder("..", sub_), kErrorInvalidName);
    EXPECT_EQ(sub_, nullptr);
    EXPECT_GT(target_->FreeBytes().value_or(0), 0U);

    // An open folder is that folder, whatever becomes of its name.
    fs::rename(At("target"), At("moved"));
    EXPECT_EQ(target_->CreateFile("late", file_), kErrorNone);
    EXPECT_TRUE(fs::exists(At("moved/late")));
}

TEST_F(TargetFolderTest, PartsAreNamedWhenWholeAndLeftOnesGo) {
    std::string part;
    ASSERT_EQ(target_->CreatePart(part, file_), kErrorNone);
    EXPECT_TRUE(IsPartName(part, ""));
    ASSERT_EQ(Open(At("target"), false, sub_), kErrorNone);
    EXPECT_TRUE(fs::exists(At("target/" + part))) << "its writer lives";

    std::unique_ptr<File> other;
    ASSERT_EQ(target_->CreateFile("taken", other), kErrorNone);
    EXPECT_EQ(target_->NamePart(part, "taken"), kErrorFileExists);
    EXPECT_EQ(target_->NamePart(part, "../free"), kErrorInvalidName);
    EXPECT_EQ(target_->NamePart(part, "free"), kErrorNone);
    EXPECT_TRUE(fs::exists(At("target/free")));

    ASSERT_EQ(target_->MakeSubfolder("sub", sub_), kErrorNone);
    for (TargetFolder* folder : {target_.get(), sub_.get()}) {
        ASSERT_EQ(folder->CreatePart(part, file_), kErrorNone);
        ASSERT_EQ(folder->CreateFile("movie.part", other), kErrorNone);
    }
    file_.reset(); // as if its run were killed
    ASSERT_EQ(Open(At("target"), false, sub_), kErrorNone);
    ASSERT_EQ(target_->MakeSubfolder("sub", sub_), kErrorNone);
    EXPECT_EQ(std::distance(fs::recursive_directory_iterator(At("target")), {}), 5) << "the parts alone go";
}

TEST_F(TargetFolderTest, AFileGetsFurtherNamesAndAFolderItsDates) {
    ASSERT_EQ(target_->CreateFile("file", file_), kErrorNone);
    ASSERT_EQ(target_->MakeSubfolder("sub", sub_), kErrorNone);
    fs::create_symlink("/etc/passwd", At("target/link"));
    EXPECT_EQ(target_->LinkFile("file", *sub_, "other"), kErrorNone);
    EXPECT_EQ(fs::hard_link_count(At("target/sub/other")), 2U);
    EXPECT_EQ(target_->LinkFile("file", *sub_, "other"), kErrorFileExists);
    EXPECT_EQ(target_->LinkFile("file", *target_, "link"), kErrorFileExists);
    EXPECT_EQ(target_->LinkFile("link", *sub_, "passwd"), kErrorNone);
    EXPECT_TRUE(fs::is_symlink(At("target/sub/passwd"))) << "what a link leads to gets no name";
    for (const auto& [from, to] :
         {std::pair{"file", "../x"}, {"sub/other", "x"}, {"../file", "x"}, {"", "x"}}) {
        EXPECT_EQ(target_->LinkFile(from, *sub_, to), kErrorInvalidName) << from << " " << to;
    }
    sub_->SetDates({.Modified = 116444736001234567, .Accessed = 0});
    struct stat status {};
    ASSERT_EQ(::stat(At("target/sub").c_str(), &status), 0);
    EXPECT_EQ(status.st_mtim.tv_sec, 0);
    EXPECT_EQ(status.st_mtim.tv_nsec, 123456700);
    EXPECT_GT(status.st_atim.tv_sec, 1000000000) << "the other date stays";

    EXPECT_TRUE(target_->KeepsHoles());
    EXPECT_EQ(std::distance(fs::directory_iterator(At("target")), {}), 3) << "its trial is gone";
}

// To this file system, which shows all names in small letters, "Docs" and "docs" are one.
TEST_F(TargetFolderTest, FoldersThatDifferInCaseStayTwo) {
    const std::string mount = At("mount");
    fs::create_directory(mount);
    if (OutputOf("cd " + scratch_.Path() + " && truncate -s 8M image && mkntfs -FqQ image && " +
                 "lowntfs-3g -o ignore_case image mount && echo done") != "done") {
        GTEST_SKIP() << "no file system that ignores case can be mounted here";
    }
    for (const bool again : {false, true}) {
        ASSERT_EQ(Open(mount, false, target_), kErrorNone);
        EXPECT_EQ(target_->MakeSubfolder("docs", sub_), kErrorNone);
        EXPECT_EQ(target_->MakeSubfolder("Docs", sub_), kErrorFileExists) << again;
    }
    EXPECT_EQ(target_->MakeSubfolder("New", sub_), kErrorNone);
    EXPECT_EQ(target_->MakeSubfolder("new", sub_), kErrorFileExists);
    sub_.reset();
    target_.reset();
    EXPECT_EQ(OutputOf("umount " + mount + " && echo done"), "done");
}

} // namespace

} // namespace thntfs::test
