#include "platform/media/DiskIdentity.h"

#include "platform/files/WorkFolder.h"
#include "platform/media/posix/MountTable.h"
#include "support/LoopDevice.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/sysmacros.h>

namespace thntfs::test {

namespace fs = std::filesystem;

namespace {

class DiskIdentityTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(Folder.Create(), kErrorNone);
        for (const char* name : {"image", "other"}) {
            std::ofstream(At(name)) << name;
            fs::resize_file(At(name), 4U << 20U);
        }
    }
    [[nodiscard]] std::string At(const std::string& name) const { return Folder.Path() + "/" + name; }

    WorkFolder Folder;
};

/// A file system on a loop device, mounted; the destructor unmounts it.
class Mounted {
public:
    Mounted(const std::string& device, std::string folder)
        : folder_(std::move(folder)) {
        fs::create_directory(folder_);
        done_ = OutputOf("PATH=$PATH:/sbin:/usr/sbin; mkfs.ext4 -qF " + device + " && mount " + device +
                         " '" + folder_ + "' && echo done") == "done";
    }
    ~Mounted() {
        if (done_) {
            OutputOf("umount '" + folder_ + "'");
        }
    }
    Mounted(const Mounted&) = delete;
    Mounted& operator=(const Mounted&) = delete;
    [[nodiscard]] bool Done() const { return done_; }

private:
    std::string folder_;
    bool done_ = false;
};

} // namespace

TEST_F(DiskIdentityTest, ImageIsKnownUnderEveryName) {
    fs::create_symlink("image", At("link"));
    fs::create_hard_link(At("image"), At("hard"));
    EXPECT_TRUE(SameMedium(At("image"), At("./image")));
    EXPECT_TRUE(SameMedium(At("link"), At("hard")));
    EXPECT_FALSE(SameMedium(At("image"), At("other")));
    EXPECT_FALSE(SameMedium(At("none"), At("none")));

    EXPECT_TRUE(SharesMedium(At("hard"), At("image"))) << "writing over the image";
    EXPECT_FALSE(SharesMedium(Folder.Path(), At("image"))) << "beside the image";
    EXPECT_FALSE(SharesMedium(At("new/deep/file"), At("image")));
    EXPECT_FALSE(IsMounted(At("image")));
}

TEST_F(DiskIdentityTest, LoopDeviceStandsForItsImage) {
    const auto loop = LoopDevice::Attach(At("image"));
    const auto twin = LoopDevice::Attach(At("image"));
    const auto other = LoopDevice::Attach(At("other"));
    if (loop == nullptr || twin == nullptr || other == nullptr) {
        GTEST_SKIP() << "no loop devices here";
    }
    EXPECT_TRUE(SameMedium(loop->Path(), At("image")));
    EXPECT_TRUE(SameMedium(loop->Path(), twin->Path()));
    EXPECT_FALSE(SameMedium(loop->Path(), other->Path()));
    EXPECT_FALSE(SharesMedium(Folder.Path(), loop->Path())) << "a looped image is no more than an image";
    EXPECT_FALSE(IsMounted(loop->Path()));
    EXPECT_FALSE(IsMounted("/dev/null"));

    const auto upper = LoopDevice::Attach(loop->Path());
    if (upper != nullptr) {
        EXPECT_TRUE(SameMedium(upper->Path(), At("image"))) << "a loop on a loop";
    }
}

TEST_F(DiskIdentityTest, FolderOnTheImageShares) {
    const auto loop = LoopDevice::Attach(At("image"));
    if (loop == nullptr) {
        GTEST_SKIP() << "no loop device here";
    }
    const Mounted mounted(loop->Path(), At("mnt"));
    if (!mounted.Done()) {
        GTEST_SKIP() << "no file system can be mounted here";
    }
    EXPECT_TRUE(SharesMedium(At("mnt"), At("image")));
    EXPECT_TRUE(SharesMedium(At("mnt/not/yet"), loop->Path()));
    EXPECT_FALSE(SharesMedium(At("mnt"), At("other")));
    EXPECT_TRUE(IsMounted(loop->Path()));
    EXPECT_TRUE(IsMounted(At("image")));
    EXPECT_FALSE(IsMounted(At("other")));

    // An image on that file system is a medium for itself, but not when the disk below is read.
    std::ofstream(At("mnt/inner")) << "inner";
    fs::resize_file(At("mnt/inner"), 1U << 20U);
    EXPECT_TRUE(SharesMedium(At("mnt/inner"), loop->Path()));
    EXPECT_FALSE(SharesMedium(At("mnt"), At("mnt/inner")));
    EXPECT_FALSE(SameMedium(loop->Path(), At("mnt/inner")));
}

TEST_F(DiskIdentityTest, RootFileSystemSharesItsDisk) {
    const std::string source = MountSourceOf("/");
    const auto disk = IdentityOf(source);
    if (!disk || !disk->IsBlockDevice) {
        GTEST_SKIP() << "the root does not lie on a disk: " << source;
    }
    EXPECT_TRUE(SharesMedium("/", source));
    EXPECT_TRUE(IsMounted(source));
    const auto whole = DiskOfPartition(disk->Device);
    EXPECT_EQ(SameMedium(source, "/dev/block/" + std::to_string(major(whole.value_or(disk->Device))) + ":" +
                                     std::to_string(minor(whole.value_or(disk->Device)))),
              fs::exists("/dev/block"));
}

TEST(MountTableTest, ReadsAnyLine) {
    const auto mount =
        ParseMount("36 35 98:5 /mnt1 /mnt\\0402 rw,noatime master:1 shared:2 - ext3 /dev/my\\040disk rw");
    ASSERT_TRUE(mount.has_value());
    EXPECT_EQ(mount->Id, 36U);
    EXPECT_EQ(mount->Device, makedev(98, 5));
    EXPECT_EQ(mount->Source, "/dev/my disk");
    for (const char* line : {"", "36", "36 35 98", "36 35 98-5 / / rw - a b c", "36 35 98:5 / / rw",
                             "36 35 98:5 / / rw - ext3"}) {
        EXPECT_FALSE(ParseMount(line).has_value()) << line;
    }
}

} // namespace thntfs::test
