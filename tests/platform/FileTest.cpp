#include "platform/files/File.h"

#include "platform/files/Paths.h"
#include "platform/files/WorkFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace thntfs::test {

namespace fs = std::filesystem;

namespace {

ConstBytes BytesOf(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string Contents(const std::string& path) {
    std::unique_ptr<File> file;
    std::vector<std::uint8_t> bytes(100);
    std::size_t got = 0;
    if (Files().Open(path, FileMode::OpenRead, file) != kErrorNone ||
        file->ReadAt(0, bytes, got) != kErrorNone) {
        return "cannot be read";
    }
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(got)};
}

class FileTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(Folder.Create(), kErrorNone); }
    [[nodiscard]] std::string At(const std::string& name) const { return Folder.Path() + "/" + name; }
    ErrorCode Open(const std::string& path, FileMode mode) { return Files().Open(path, mode, Opened); }

    WorkFolder Folder;
    std::unique_ptr<File> Opened;
};

} // namespace

TEST_F(FileTest, WritesInOrderAndElsewhereWithoutMoving) {
    ASSERT_EQ(Open(At("a"), FileMode::CreateAlways), kErrorNone);
    EXPECT_EQ(Opened->Write(BytesOf("abc")), kErrorNone);
    EXPECT_EQ(Opened->WriteAt(6, BytesOf("xyz")), kErrorNone);
    EXPECT_EQ(Opened->Write(BytesOf("def")), kErrorNone);
    EXPECT_EQ(Opened->Sync(), kErrorNone);
    EXPECT_EQ(Contents(At("a")), "abcdefxyz");

    std::uint64_t size = 0;
    EXPECT_EQ(Opened->Size(size), kErrorNone);
    EXPECT_EQ(size, 9U);
    std::vector<std::uint8_t> bytes(8);
    std::size_t got = 0;
    EXPECT_EQ(Opened->ReadAt(5, bytes, got), kErrorNone);
    EXPECT_EQ(got, 4U);
    EXPECT_EQ(Opened->WriteAt(~0ULL - 1, BytesOf("abc")), kErrorFileTooLarge);
}

TEST_F(FileTest, OpensEachModeAsPromised) {
    EXPECT_EQ(Open(At("none"), FileMode::OpenRead), kErrorFileNotFound);
    EXPECT_EQ(Opened, nullptr);
    EXPECT_EQ(Open(At("no/file"), FileMode::CreateNew), kErrorFileNotFound);
    EXPECT_EQ(Open(Folder.Path(), FileMode::OpenRead), kErrorDirectory);
    EXPECT_EQ(Open(At(std::string(300, 'n')), FileMode::CreateNew), kErrorFilenameTooLong);

    ASSERT_EQ(Open(At("a"), FileMode::CreateNew), kErrorNone);
    ASSERT_EQ(Opened->Write(BytesOf("old")), kErrorNone);
    EXPECT_EQ(Open(At("a"), FileMode::CreateNew), kErrorFileExists);
    EXPECT_EQ(Open(At("a/b"), FileMode::CreateNew), kErrorPathNotFound);
    EXPECT_EQ(Open(At("a"), FileMode::OpenReadWrite), kErrorNone);
    EXPECT_EQ(Contents(At("a")), "old");
    EXPECT_EQ(Open(At("a"), FileMode::CreateAlways), kErrorNone);
    EXPECT_EQ(Contents(At("a")), "");

    EXPECT_EQ(Files().Delete(At("a")), kErrorNone);
    EXPECT_EQ(Files().Delete(At("a")), kErrorFileNotFound);
}

TEST_F(FileTest, NewFileDoesNotGoThroughALink) {
    fs::create_symlink(At("elsewhere"), At("link"));
    EXPECT_EQ(Open(At("link"), FileMode::CreateNew), kErrorFileExists);
    EXPECT_NE(Open(At("link"), FileMode::OpenOwn), kErrorNone);
    EXPECT_NE(Open(At("link"), FileMode::OpenOwnReadWrite), kErrorNone);
    EXPECT_EQ(Open(At("link"), FileMode::CreateOwn), kErrorNone);
    EXPECT_FALSE(fs::is_symlink(At("link")));
    EXPECT_FALSE(fs::exists(At("elsewhere")));
}

TEST_F(FileTest, FullDeviceIsAFullDisk) {
    if (Open("/dev/full", FileMode::OpenReadWrite) != kErrorNone) {
        GTEST_SKIP() << "no /dev/full";
    }
    EXPECT_EQ(Opened->Write(BytesOf("abc")), kErrorDiskFull);
}

TEST(PathsTest, AbsolutePathWorksOnTheTextAlone) {
    EXPECT_EQ(AbsolutePath("/a//b/./c/../d/"), "/a/b/d");
    EXPECT_EQ(AbsolutePath("/a/../.."), "/");
    EXPECT_EQ(AbsolutePath("/"), "/");
    EXPECT_EQ(AbsolutePath("x/.."), fs::current_path().string());
    EXPECT_EQ(AbsolutePath("."), fs::current_path().string());
    EXPECT_EQ(AbsolutePath(""), "");
    EXPECT_EQ(NearestExisting("/tmp/there is/no such"), "/tmp");
    EXPECT_GT(FreeBytesAt("/tmp/there is/no such").value_or(0), 0U);
}

} // namespace thntfs::test
