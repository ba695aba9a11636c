#include "platform/InstanceLock.h"

#include "platform/WorkFolder.h"
#include "support/RunProgram.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>

namespace thntfs::test {
namespace {

TEST(InstanceLock, IsHeldByOneAndGoesWithItsHolder) {
    const std::string name = "th-ntfs-test-" + std::to_string(std::rand());
    std::optional<InstanceLock> first(std::in_place);
    EXPECT_EQ(first->Take(name), kErrorNone);
    InstanceLock second;
    EXPECT_EQ(second.Take(name), kErrorAlreadyExists);
    first.reset();
    EXPECT_EQ(second.Take(name), kErrorNone);
    EXPECT_EQ(InstanceLock().Take(std::string(200, 'x')), kErrorInvalidName);
}

class LastingFolder : public ::testing::Test {
protected:
    LastingFolder() {
        const char* old = std::getenv("TMPDIR");
        old_ = old == nullptr ? "" : old;
    }
    ~LastingFolder() override {
        if (old_.empty()) {
            ::unsetenv("TMPDIR");
        } else {
            ::setenv("TMPDIR", old_.c_str(), 1);
        }
    }

private:
    std::string old_;
};

TEST_F(LastingFolder, IsTheChosenOneOrTheUsersOwn) {
    const ScratchFolder folder;
    std::string path;
    ::setenv("TMPDIR", folder.Path().c_str(), 1);
    EXPECT_EQ(LastingWorkFolder(path), kErrorNone);
    EXPECT_EQ(path, folder.Path());

    ::unsetenv("TMPDIR");
    EXPECT_EQ(LastingWorkFolder(path), kErrorNone);
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(path).permissions(), perms::owner_all) << path;
}

} // namespace
} // namespace thntfs::test
