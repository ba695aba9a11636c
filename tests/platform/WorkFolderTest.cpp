#include "platform/files/WorkFolder.h"

#include "platform/files/InstanceLock.h"
#include "support/RunProgram.h"

#include <gtest/gtest.h>
#include <optional>
#include <unistd.h>

namespace thntfs::test {
namespace {

class WorkFolderTest : public ::testing::Test {
protected:
    const ScratchFolder place_;
    const EnvironmentVariable chosen_{"TMPDIR", place_.Path()};
    const std::string user_ = place_ / "th-ntfs-" + std::to_string(::geteuid());
};

TEST_F(WorkFolderTest, IsPrivateAndGoesAwayWithWhatDeadRunsHaveLeft) {
    {
        WorkFolder living;
        ASSERT_EQ(living.Create(), kErrorNone);
        fs::create_directories(user_ + "/run-killed/below");
        fs::create_directory(user_ + "/run-foreign");
        WorkFolder folder;
        ASSERT_EQ(folder.Create(), kErrorNone);
        EXPECT_EQ(folder.Path().substr(0, user_.size() + 5), user_ + "/run-");
        for (const std::string& path : {user_, folder.Path(), living.Path()}) {
            EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_all) << path;
        }
        EXPECT_FALSE(fs::exists(user_ + "/run-killed"));
        EXPECT_TRUE(fs::remove(user_ + "/run-foreign"));
    }
    EXPECT_TRUE(fs::is_empty(place_.Path()));
}

TEST_F(WorkFolderTest, LastingOneIsTheUsersOwnAndNoLinkLeadsElsewhere) {
    WorkFolder folder;
    EXPECT_EQ(folder.CreateLasting(), kErrorNone);
    EXPECT_EQ(folder.Path(), user_);
    EXPECT_EQ(fs::status(user_).permissions(), fs::perms::owner_all);
    fs::permissions(user_, fs::perms::others_read, fs::perm_options::add);
    for (const char* what : {"a folder that others can look into", "a link"}) {
        WorkFolder other;
        EXPECT_EQ(other.CreateLasting(), kErrorNone);
        EXPECT_EQ(other.Path().substr(0, user_.size() + 1), user_ + "-") << what;
        fs::remove(user_);
        fs::create_directories(place_ / "elsewhere");
        fs::create_symlink("elsewhere", user_);
    }
    EXPECT_TRUE(fs::is_empty(place_ / "elsewhere"));
}

TEST_F(WorkFolderTest, PassesOverWhereItMustNotLie) {
    WorkFolder folder;
    const auto elsewhere = [this](const std::string& path) { return !path.starts_with(place_.Path()); };
    EXPECT_EQ(folder.Create(elsewhere), kErrorNone);
    EXPECT_EQ(folder.Passed(), place_.Path());
    EXPECT_TRUE(fs::is_empty(place_.Path()));
    WorkFolder none;
    EXPECT_NE(none.Create([](const std::string&) { return false; }), kErrorNone);
    fs::permissions(place_.Path(), fs::perms::all);
    WorkFolder open;
    EXPECT_EQ(open.Create(), kErrorNone);
    EXPECT_EQ(open.Passed(), place_.Path());
}

TEST(InstanceLockTest, IsHeldByOneAndGoesWithItsHolder) {
    const std::string name = "th-ntfs-test-" + std::to_string(::getpid());
    std::optional<InstanceLock> first(std::in_place);
    EXPECT_EQ(first->Take(name), kErrorNone);
    InstanceLock second;
    EXPECT_EQ(second.Take(name), kErrorAlreadyExists);
    first.reset();
    EXPECT_EQ(second.Take(name), kErrorNone);
    const std::size_t longest = 107 - ("-" + std::to_string(::getuid())).size();
    EXPECT_EQ(InstanceLock().Take(std::string(longest + 1, 'x')), kErrorInvalidName);
    EXPECT_EQ(InstanceLock().Take(std::string(longest, 'x')), kErrorNone);
}

} // namespace
} // namespace thntfs::test
