// The user's part of the trial of the disk service in tests/system, which sets the stage.

#include "WizardFixture.h"
#include "partitions/OpenSource.h"

namespace thntfs::test {
namespace {

class DiskServiceTrial : public WizardTest {};

TEST_F(DiskServiceTrial, ADiskIsOpenedByConsentAndAnotherOneComes) {
    const char* path = std::getenv("THNTFS_TRIAL_DISK");
    if (path == nullptr) {
        GTEST_SKIP() << "this is for tests/system";
    }
    Sheet = std::make_unique<CWizardSheet>(nullptr, 4);
    const auto& disks = Sheet->State().Disks;
    const auto disk =
        std::find_if(disks.begin(), disks.end(), [&](const auto& one) { return one.Path == path; });
    ASSERT_NE(disk, disks.end());
    EXPECT_EQ(disk->OpenError, kErrorAccessDenied);
    RunWith([&, count = disks.size(), position = static_cast<int>(disk - disks.begin())] {
        Press("Recover your Data");
        Press("Next >");
        EXPECT_TRUE(WaitUntil([&] { return Sheet->State().Disks.size() > count; })) << "a disk has come";
        ChooseDisk(position);
        Press("Next >");
        EXPECT_EQ(Heading(), "Select the partition to recover");
        EXPECT_TRUE(SourceIsDevice());
    });
    EXPECT_EQ(Boxes(), Texts{});
}

} // namespace
} // namespace thntfs::test
