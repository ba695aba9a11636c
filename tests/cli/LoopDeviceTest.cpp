#include "CliHelpers.h"

#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace thntfs::test {

namespace {

namespace fs = std::filesystem;

/// Runs a program of the system; gives what it printed, empty where it failed.
std::string System(const std::string& program, const Words& words) {
    for (const char* folder : {"/sbin/", "/usr/sbin/", "/bin/", "/usr/bin/"}) {
        if (fs::exists(folder + program)) {
            const RunResult run = RunProgram(folder + program, words);
            return run.Status == 0 ? run.Out + "\n" : "";
        }
    }
    return {};
}

/// Images behind loop devices that can't be written.
class LoopTest : public testing::Test {
protected:
    void SetUp() override { fs::create_directories(mount_); }

    void TearDown() override {
        System("umount", {mount_});
        for (const std::string& device : devices_) {
            System("losetup", {"--detach", device});
        }
    }

    /// Path of a device; empty where there can be none.
    std::string Attach(const std::string& image, const Words& more) {
        Words words = {"--find", "--show", "--read-only"};
        words.insert(words.end(), more.begin(), more.end());
        words.push_back(image);
        const std::string shown = ::geteuid() == 0 ? System("losetup", words) : "";
        if (!shown.empty()) {
            devices_.push_back(shown.substr(0, shown.find('\n')));
        }
        return shown.empty() ? "" : devices_.back();
    }

    ScratchFolder scratch_;
    std::string mount_ = scratch_ / "mount";
    std::vector<std::string> devices_;
};

constexpr const char* kNoLoops = "loop devices are not to be had here";

TEST_F(LoopTest, DeviceGivesWhatItsImageGives) {
    const std::string image = PackedPath("logical");
    const std::string device = Attach(image, {});
    if (device.empty()) {
        GTEST_SKIP() << kNoLoops;
    }
    EXPECT_EQ(RunCli({"partitions", device, "--json"}).Out, RunCli({"partitions", image, "--json"}).Out);
    for (const Words& more : {Words{"scan"}, Words{"scan", "--json"}, Words{"list", "-r", "--json"}}) {
        Words ofDevice = {more[0], device, "-p", "2"};
        Words ofImage = {more[0], image, "-p", "2"};
        ofDevice.insert(ofDevice.end(), more.begin() + 1, more.end());
        ofImage.insert(ofImage.end(), more.begin() + 1, more.end());
        EXPECT_EQ(RunCli(ofDevice).Out, RunCli(ofImage).Out) << more[0];
    }
    EXPECT_EQ(RunCli({"save", device, "-p", "2", "--to", scratch_ / "one"}).Status, 0);
    EXPECT_EQ(RunCli({"save", image, "-p", "2", "--to", scratch_ / "two"}).Status, 0);
    EXPECT_EQ(FilesBelow(scratch_ / "one"), FilesBelow(scratch_ / "two"));
    EXPECT_GT(FilesBelow(scratch_ / "one").size(), 5U);
}

TEST_F(LoopTest, DeviceOfLargeSectorsIsReadByThem) {
    const std::string device = Attach(PackedPath("sector4k"), {"--sector-size", "4096"});
    if (device.empty()) {
        GTEST_SKIP() << kNoLoops;
    }
    EXPECT_EQ(RunCli({"partitions", device, "--json"}).Out,
              RunCli({"partitions", PackedPath("sector4k"), "--json"}).Out);
}

TEST_F(LoopTest, SavingToTheMediumItselfIsRefused) {
    const std::string image = PackedPath("basic");
    const std::string disk = Attach(image, {});
    const std::string volume = Attach(image, {"--offset", "1048576"});
    if (disk.empty() || volume.empty()) {
        GTEST_SKIP() << kNoLoops;
    }
    if (System("mount", {"-t", "ntfs-3g", "-o", "ro", volume, mount_}).empty()) {
        GTEST_SKIP() << "the volume can't be mounted here";
    }
    for (const std::string& medium : {image, disk}) {
        const RunResult run = RunCli({"save", medium, "--to", mount_ + "/new"});
        EXPECT_EQ(run.Status, 1);
        EXPECT_EQ(run.Out, "");
        EXPECT_NE(run.Err.find("on the medium that is being read"), std::string::npos) << run.Err;
    }
}

} // namespace

} // namespace thntfs::test
