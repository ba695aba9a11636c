#include "platform/files/File.h"

#include "platform/files/Paths.h"
#include "platform/system/Text.h"
#include "support/RunProgram.h"

#include <array>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace thntfs::test {

namespace {

class FileTest : public testing::Test {
protected:
    [[nodiscard]] std::string At(const std::string& name) const { return scratch_ / name; }
    ErrorCode Open(const std::string& path, FileMode mode) { return Files().Open(path, mode, file_); }

    ScratchFolder scratch_;
    std::unique_ptr<File> file_;
};

TEST_F(FileTest, WritesInOrderAndElsewhereWithoutMoving) {
    ASSERT_EQ(Open(At("a"), FileMode::CreateAlways), kErrorNone);
    EXPECT_EQ(file_->Write(TextBytes("abc")), kErrorNone);
    EXPECT_EQ(file_->WriteAt(6, TextBytes("xyz")), kErrorNone);
    EXPECT_EQ(file_->Write(TextBytes("def")), kErrorNone);
    EXPECT_EQ(file_->Sync(), kErrorNone);
    EXPECT_EQ(ReadWholeFile(At("a")), "abcdefxyz");

    std::uint64_t size = 0;
    EXPECT_EQ(file_->Size(size), kErrorNone);
    EXPECT_EQ(size, 9U);
    std::array<std::uint8_t, 8> bytes{};
    std::size_t got = 0;
    EXPECT_EQ(file_->ReadAt(5, bytes, got), kErrorNone);
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()).substr(0, got), "fxyz");
    for (const std::uint64_t offset : {~0ULL - 1, (1ULL << 63U) - 2}) {
        EXPECT_EQ(file_->WriteAt(offset, TextBytes("abc")), kErrorFileTooLarge);
    }

    if (Open("/dev/full", FileMode::OpenReadWrite) == kErrorNone) {
        EXPECT_EQ(file_->Write(TextBytes("abc")), kErrorDiskFull);
    }
}

TEST_F(FileTest, GrowsWithAHoleAndKeepsItsDates) {
    ASSERT_EQ(Open(At("a"), FileMode::CreateNew), kErrorNone);
    EXPECT_EQ(file_->WriteAt(0, TextBytes("abcdef")), kErrorNone);
    EXPECT_EQ(file_->SetSize(3), kErrorNone);
    EXPECT_EQ(file_->SetSize(std::uint64_t{1} << 30U), kErrorNone);
    EXPECT_EQ(file_->SetSize(~0ULL), kErrorFileTooLarge);
    struct stat status {};
    for (const FileDates& dates : {FileDates{125000000000000000, 132223104000000001}, {}, {~0ULL, ~0ULL}}) {
        file_->SetDates(dates);
        ASSERT_EQ(::stat(At("a").c_str(), &status), 0);
        EXPECT_EQ(status.st_mtim.tv_sec, 855526400);
        EXPECT_EQ(status.st_atim.tv_sec, 1577836800);
        EXPECT_EQ(status.st_atim.tv_nsec, 100);
    }
    EXPECT_EQ(status.st_size, 1 << 30U);
    EXPECT_LT(status.st_blocks, 100);
}

TEST_F(FileTest, OpensEachModeAsPromised) {
    EXPECT_EQ(Open(At("none"), FileMode::OpenRead), kErrorFileNotFound);
    EXPECT_EQ(file_, nullptr);
    EXPECT_EQ(Open(At("no/file"), FileMode::CreateNew), kErrorFileNotFound);
    EXPECT_EQ(Open(scratch_.Path(), FileMode::OpenRead), kErrorDirectory);
    EXPECT_EQ(Open(At(std::string(300, 'n')), FileMode::CreateNew), kErrorFilenameTooLong);

    ASSERT_EQ(Open(At("a"), FileMode::CreateNew), kErrorNone);
    ASSERT_EQ(file_->Write(TextBytes("old")), kErrorNone);
    EXPECT_EQ(Open(At("a"), FileMode::CreateNew), kErrorFileExists);
    EXPECT_EQ(Open(At("a/b"), FileMode::CreateNew), kErrorPathNotFound);
    EXPECT_EQ(Open(At("a"), FileMode::OpenReadWrite), kErrorNone);
    EXPECT_EQ(ReadWholeFile(At("a")), "old");
    EXPECT_EQ(Open(At("a"), FileMode::CreateAlways), kErrorNone);
    EXPECT_EQ(ReadWholeFile(At("a")), "");
    EXPECT_EQ(Files().Delete(At("a")), kErrorNone);
    EXPECT_EQ(Files().Delete(At("a")), kErrorFileNotFound);

    fs::create_symlink(At("elsewhere"), At("link"));
    EXPECT_EQ(Open(At("link"), FileMode::CreateNew), kErrorFileExists);
    EXPECT_NE(Open(At("link"), FileMode::OpenOwn), kErrorNone);
    EXPECT_NE(Open(At("link"), FileMode::OpenOwnReadWrite), kErrorNone);
    EXPECT_EQ(Open(At("link"), FileMode::CreateOwn), kErrorNone);
    EXPECT_FALSE(fs::is_symlink(At("link")) || fs::exists(At("elsewhere")));
    EXPECT_EQ(fs::status(At("link")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(PathsTest, AbsolutePathWorksOnTheTextAlone) {
    EXPECT_EQ(AbsolutePath("/a//b/./c/../d/"), "/a/b/d");
    EXPECT_EQ(AbsolutePath("/a/../.."), "/");
    EXPECT_EQ(AbsolutePath("x/.."), fs::current_path().string());
    EXPECT_EQ(AbsolutePath(""), "");
    EXPECT_EQ(NearestExisting("/tmp/there is/no such"), "/tmp");
    EXPECT_GT(FreeBytesAt("/tmp/there is/no such").value_or(0), 0U);
}

} // namespace

} // namespace thntfs::test
