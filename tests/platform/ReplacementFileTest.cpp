#include "platform/files/ReplacementFile.h"

#include "platform/files/WorkFolder.h"
#include "support/FailingFileStore.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/file.h>
#include <unistd.h>
#include <vector>

namespace thntfs::test {

namespace {

namespace fs = std::filesystem;

class ReplacementFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(Folder.Create(), kErrorNone);
        Target = Folder.Path() + "/scan.tht";
    }

    static ErrorCode Replace(const std::string& target) {
        ReplacementFile file;
        const std::vector<std::uint8_t> bytes{'n', 'e', 'w'};
        ErrorCode code = file.Create(target);
        code = code == kErrorNone ? file.Handle().Write(bytes) : code;
        return code == kErrorNone ? file.Commit() : code;
    }

    static void Put(const std::string& path) { std::ofstream(path) << "old"; }

    static std::string Content(const std::string& path) {
        std::ifstream in(path);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    [[nodiscard]] std::ptrdiff_t FileCount() const {
        return std::distance(fs::directory_iterator(Folder.Path()), fs::directory_iterator());
    }

    WorkFolder Folder;
    std::string Target;
};

} // namespace

TEST_F(ReplacementFileTest, TakesAwayWhatDeadRunsHaveLeftAndNothingElse) {
    const std::string living = Target + ".th-ntfs-0123456789ab.part";
    Put(living);
    const int lock = ::open(living.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(lock, LOCK_EX), 0);
    const std::vector<std::string> foreign = {Target + ".new", Target + ".part", Target + ".part1",
                                              Target + ".th-ntfs-0123456789ab.part.old",
                                              Folder.Path() + "/b.tht.th-ntfs-0123456789ab.part"};
    std::for_each(foreign.begin(), foreign.end(), Put);
    for (unsigned i = 0; i < 200; ++i) {
        Put(Target + ".th-ntfs-000000000" + std::to_string(100 + i) + ".part");
    }
    EXPECT_EQ(Replace(Target), kErrorNone);
    EXPECT_EQ(Content(Target), "new");
    EXPECT_EQ(Content(living), "old");
    for (const std::string& path : foreign) {
        EXPECT_EQ(Content(path), "old") << path;
    }
    EXPECT_EQ(FileCount(), static_cast<std::ptrdiff_t>(foreign.size()) + 2);
    ::close(lock);
}

TEST_F(ReplacementFileTest, KeepsLinkAndRights) {
    Put(Target);
    fs::permissions(Target, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("scan.tht", Folder.Path() + "/link");
    EXPECT_EQ(Replace(Folder.Path() + "/link"), kErrorNone);
    EXPECT_TRUE(fs::is_symlink(Folder.Path() + "/link"));
    EXPECT_EQ(Content(Target), "new");
    EXPECT_EQ(fs::status(Target).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(ReplacementFileTest, AnyFailureLeavesTheOlderFile) {
    Put(Target);
    FailingFileStore store;
    SetFileStore(&store);
    for (std::uint64_t call = 1; call <= store.Plan().Calls + 1; ++call) {
        store.FailAt(call);
        const ErrorCode code = Replace(Target);
        EXPECT_EQ(code == kErrorNone, store.Plan().Failures == 0) << call;
        EXPECT_EQ(Content(Target), code == kErrorNone ? "new" : "old") << call;
        EXPECT_EQ(FileCount(), 1) << call;
    }
    EXPECT_GE(store.Plan().Calls, 5U);
}

} // namespace thntfs::test
