#include "LoopFixture.h"

namespace thntfs::test {

namespace {

/// Images behind loop devices that can't be written.
class LoopTest : public LoopFixture {
protected:
    std::string AttachReadOnly(const std::string& image, const std::string& more = "") {
        return Attach(image, "--read-only " + more);
    }
};

TEST_F(LoopTest, DeviceGivesWhatItsImageGives) {
    const std::string image = PackedPath("logical");
    const std::string device = AttachReadOnly(image);
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
    const std::string device = AttachReadOnly(PackedPath("sector4k"), "--sector-size 4096");
    if (device.empty()) {
        GTEST_SKIP() << kNoLoops;
    }
    EXPECT_EQ(RunCli({"partitions", device, "--json"}).Out,
              RunCli({"partitions", PackedPath("sector4k"), "--json"}).Out);
}

TEST_F(LoopTest, SavingToTheMediumItselfIsRefused) {
    const std::string image = PackedPath("basic");
    const std::string disk = AttachReadOnly(image);
    const std::string volume = AttachReadOnly(image, "--offset 1048576");
    if (disk.empty() || volume.empty()) {
        GTEST_SKIP() << kNoLoops;
    }
    if (!Mount("-t ntfs-3g -o ro " + volume)) {
        GTEST_SKIP() << "the volume can't be mounted here";
    }
    for (const std::string& medium : {image, disk}) {
        const RunResult run = RunCli({"save", medium, "--to", mount_ + "/new"});
        EXPECT_EQ(run.Status, 1);
        EXPECT_EQ(run.Out, "");
        EXPECT_NE(run.Err.find("on the medium that is being read"), std::string::npos) << run.Err;
    }
}

TEST_F(LoopTest, TemporaryFilesKeepOffTheMedium) {
    VolumeBuilder().WriteTo(scratch_ / "disk");
    const std::uint64_t end = std::filesystem::file_size(scratch_ / "disk");
    std::filesystem::resize_file(scratch_ / "disk", end + (8U << 20U));
    const std::string behind = Attach(scratch_ / "disk", "--offset " + std::to_string(end));
    if (behind.empty() || !MountNewFileSystem(behind)) {
        GTEST_SKIP() << kNoLoops;
    }
    std::filesystem::create_directory(mount_ + "/tmp");
    const auto before = std::filesystem::last_write_time(mount_ + "/tmp");
    RunSetup setup;
    setup.TempFolder = mount_ + "/tmp";
    const RunResult run = RunCli({"scan", scratch_ / "disk", "--json"}, setup);
    EXPECT_EQ(run.Status, 0) << run.Err;
    EXPECT_NE(run.Err.find("lies on the medium that is being read"), std::string::npos) << run.Err;
    EXPECT_TRUE(std::filesystem::last_write_time(mount_ + "/tmp") == before);
}

} // namespace

} // namespace thntfs::test
