#include "platform/media/DiskIdentity.h"

#include "platform/files/File.h"
#include "platform/media/TargetDisk.h"
#include "platform/media/posix/MountTable.h"
#include "support/LoopDevice.h"
#include "support/RunProgram.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sys/sysmacros.h>

namespace thntfs::test {

namespace {

class DiskIdentityTest : public testing::Test {
protected:
    DiskIdentityTest() {
        for (const std::string& path : {image_, other_}) {
            std::ofstream(path) << path;
            fs::resize_file(path, 4U << 20U);
        }
    }
    ~DiskIdentityTest() override { OutputOf("umount '" + mount_ + "'"); }

    ScratchFolder scratch_;
    std::string image_ = scratch_ / "image";
    std::string other_ = scratch_ / "other";
    std::string mount_ = scratch_ / "mnt";
};

TEST_F(DiskIdentityTest, ImageIsKnownUnderEveryName) {
    const std::string link = scratch_ / "link";
    const std::string hard = scratch_ / "hard";
    fs::create_symlink("image", link);
    fs::create_hard_link(image_, hard);
    EXPECT_TRUE(SameMedium(image_, scratch_ / "./image"));
    EXPECT_TRUE(SameMedium(link, hard));
    EXPECT_FALSE(SameMedium(image_, other_));
    EXPECT_FALSE(SameMedium(scratch_ / "none", scratch_ / "none"));
    EXPECT_TRUE(SharesMedium(hard, image_)) << "writing over the image";
    EXPECT_FALSE(SharesMedium(scratch_.Path(), image_)) << "beside the image";
    EXPECT_FALSE(SharesMedium(scratch_ / "new/deep/file", image_));
    EXPECT_FALSE(IsMounted(image_) || IsMounted("/dev/null"));
}

TEST_F(DiskIdentityTest, LoopDeviceStandsForItsImageAndWhatIsMountedFromIt) {
    const auto loop = LoopDevice::Attach(image_);
    const auto twin = LoopDevice::Attach(image_);
    const auto different = LoopDevice::Attach(other_);
    if (loop == nullptr || twin == nullptr || different == nullptr) {
        GTEST_SKIP() << "no loop devices here";
    }
    EXPECT_TRUE(SameMedium(loop->Path(), image_));
    EXPECT_TRUE(SameMedium(loop->Path(), twin->Path()));
    EXPECT_FALSE(SameMedium(loop->Path(), different->Path()));
    EXPECT_FALSE(SharesMedium(scratch_.Path(), loop->Path())) << "a looped image is no more than an image";
    EXPECT_FALSE(IsMounted(loop->Path()));
    if (const auto upper = LoopDevice::Attach(loop->Path()); upper != nullptr) {
        EXPECT_TRUE(SameMedium(upper->Path(), image_)) << "a loop on a loop";
    }

    if (!MountNewFileSystem(loop->Path(), mount_)) {
        GTEST_SKIP() << "no file system can be mounted here";
    }
    EXPECT_TRUE(SharesMedium(mount_, image_));
    EXPECT_TRUE(SharesMedium(mount_ + "/not/yet", loop->Path()));
    EXPECT_FALSE(SharesMedium(mount_, other_));
    EXPECT_TRUE(IsMounted(loop->Path()) && IsMounted(image_));
    EXPECT_FALSE(IsMounted(other_));
    std::unique_ptr<File> file;
    EXPECT_EQ(OpenTargetDisk(loop->Path(), file), kErrorSharingViolation);

    // An image on that file system is a medium for itself, but not when the disk below is read.
    const std::string inner = mount_ + "/inner";
    std::ofstream(inner) << "inner";
    EXPECT_TRUE(SharesMedium(inner, loop->Path()));
    EXPECT_FALSE(SharesMedium(mount_, inner));
    EXPECT_FALSE(SameMedium(loop->Path(), inner));
}

TEST_F(DiskIdentityTest, RootFileSystemSharesItsDisk) {
    const std::string source = MountSourceOf("/");
    const auto disk = IdentityOf(source);
    if (!disk || !disk->IsBlockDevice) {
        GTEST_SKIP() << "the root does not lie on a disk: " << source;
    }
    EXPECT_TRUE(SharesMedium("/", source) && IsMounted(source));
    const dev_t whole = DiskOfPartition(disk->Device).value_or(disk->Device);
    const std::string name = std::to_string(major(whole)) + ":" + std::to_string(minor(whole));
    EXPECT_EQ(SameMedium(source, "/dev/block/" + name), fs::exists("/dev/block/" + name));
}

TEST(MountTableTest, ReadsAnyLine) {
    const auto mount = ParseMount(
        "36 35 98:5 /mnt1 /mnt\\0402 rw,noatime master:1 shared:2 - ext3 /dev/my\\040disk\\011 rw");
    ASSERT_TRUE(mount.has_value());
    EXPECT_EQ(mount->Id, 36U);
    EXPECT_EQ(mount->Device, makedev(98, 5));
    EXPECT_EQ(mount->Source, "/dev/my disk\t");
    for (const char* line :
         {"", "36 35 98", "36 35 98-5 / / rw - a b c", "36 35 98:5 / / rw", "36 35 98:5 / / rw - ext3"}) {
        EXPECT_FALSE(ParseMount(line).has_value()) << line;
    }
}

} // namespace

} // namespace thntfs::test
