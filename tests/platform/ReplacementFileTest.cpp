#include "platform/files/ReplacementFile.h"

#include "platform/files/File.h"
#include "platform/system/Text.h"
#include "support/RunProgram.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>
#include <vector>

namespace thntfs::test {

namespace {

class ReplacementFileTest : public testing::Test {
protected:
    static ErrorCode Replace(const std::string& target) {
        ReplacementFile file;
        ErrorCode code = file.Create(target);
        code = code == kErrorNone ? file.Handle().Write(TextBytes("new")) : code;
        return code == kErrorNone ? file.Commit() : code;
    }

    static void Put(const std::string& path) { std::ofstream(path) << "old"; }

    ScratchFolder scratch_;
    std::string target_ = scratch_ / "scan.tht";
};

TEST_F(ReplacementFileTest, TakesAwayWhatDeadRunsHaveLeftAndNothingElse) {
    const std::string living = target_ + ".th-ntfs-0123456789ab.part";
    const std::vector<std::string> kept = {living,
                                           target_ + "2.th-ntfs-0123456789ab.part",
                                           target_ + ".new",
                                           target_ + ".part",
                                           target_ + ".part1",
                                           target_ + ".th-ntfs-0123456789ab.part.old",
                                           scratch_ / "b.tht.th-ntfs-0123456789ab.part"};
    std::for_each(kept.begin(), kept.end(), Put);
    const int lock = ::open(living.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(lock, LOCK_EX), 0);
    for (unsigned i = 0; i < 200; ++i) {
        Put(target_ + ".th-ntfs-000000000" + std::to_string(100 + i) + ".part");
    }
    EXPECT_EQ(Replace(target_), kErrorNone);
    EXPECT_EQ(ReadWholeFile(target_), "new");
    for (const std::string& path : kept) {
        EXPECT_EQ(ReadWholeFile(path), "old") << path;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(scratch_.Path()), {}), std::ssize(kept) + 1);
    ::close(lock);
}

TEST_F(ReplacementFileTest, KeepsLinkAndRights) {
    Put(target_);
    fs::permissions(target_, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("scan.tht", scratch_ / "link");
    Put(target_ + ".th-ntfs-0123456789ab.part");
    EXPECT_EQ(Replace(scratch_ / "link"), kErrorNone);
    EXPECT_TRUE(fs::is_symlink(scratch_ / "link"));
    EXPECT_FALSE(fs::exists(target_ + ".th-ntfs-0123456789ab.part")) << "left beside the file itself";
    EXPECT_EQ(ReadWholeFile(target_), "new");
    EXPECT_EQ(fs::status(target_).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

} // namespace

} // namespace thntfs::test
