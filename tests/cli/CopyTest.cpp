#include "LoopFixture.h"
#include "disktools/CopyMapFile.h"
#include "support/FaultyMount.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <unistd.h>

namespace thntfs::test {

namespace {

namespace fs = std::filesystem;

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class CopyTest : public LoopFixture {
protected:
    /// A file of random bytes that begins with a partition table and a volume.
    std::string MakeDisk(const std::string& name, std::uint64_t bytes) {
        VolumeBuilder().WriteTo(scratch_ / name);
        fs::resize_file(scratch_ / name, std::min<std::uint64_t>(bytes, 1U << 20U));
        std::ofstream out(scratch_ / name, std::ios::binary | std::ios::app);
        for (std::uint64_t word = fs::file_size(scratch_ / name) / 8; word * 8 < bytes; ++word) {
            const std::uint64_t value = word * 0x9E3779B97F4A7C15U;
            out.write(reinterpret_cast<const char*>(&value), sizeof value);
        }
        return scratch_ / name;
    }

    /// What an image of these bytes is.
    static std::string ImageOf(std::string bytes, std::vector<std::uint64_t> badSectors = {}) {
        for (const std::uint64_t sector : badSectors) {
            bytes.replace(sector * 512, 512, 512, '\0');
        }
        StampImage({reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()}, bytes.size() / 512, 512);
        return bytes;
    }

    void ExpectRefused(const Words& words, const std::string& told, int status = 1) {
        const RunResult run = RunCli(words);
        EXPECT_EQ(run.Status, status) << run.Err;
        EXPECT_EQ(run.Out, "");
        EXPECT_TRUE(Contains(run.Err, told)) << told << ", but: " << run.Err;
    }

    std::string image_ = scratch_ / "disk.th2";
    std::string map_ = image_ + ".map";
};

} // namespace

// ----------------------------------------------------------------------- disks

TEST_F(CopyTest, DisksShowsALoopDeviceWithWhatItShows) {
    const std::string disk = MakeDisk("a disk", 3U << 20U);
    const std::string device = Attach(disk, "--sector-size 4096");
    if (device.empty()) {
        GTEST_SKIP() << kNoLoops;
    }
    const RunResult run = RunCli({"disks", "--json"});
    ASSERT_EQ(run.Status, 0) << run.Err;
    const std::string name = device.substr(device.rfind('/') + 1);
    const Json expected = {{"Name", name},          {"MediaType", "Disk image"}, {"InterfaceType", "Loop"},
                           {"TotalSectors", "768"}, {"TotalCylinders", "0"},     {"TotalHeads", "255"},
                           {"Size", "3.00 MB"},     {"Serial", "N/A"},           {"Revision", ""},
                           {"Model", disk},         {"BytesPerSector", "4096"}};
    std::size_t found = 0;
    for (const Json& shown : Json::parse(run.Out)) {
        found += shown == expected ? 1 : 0;
    }
    EXPECT_EQ(found, 1U) << run.Out;
    EXPECT_TRUE(Contains(RunCli({"disks"}).Out, name));
}

// ----------------------------------------------------------------------- image

TEST_F(CopyTest, ImageOfAPackedDiskGivesWhatItsDiskGives) {
    const std::string disk = PackedPath("logical");
    const RunResult run = RunCli({"image", disk, image_, "--log", scratch_ / "log"});
    EXPECT_EQ(run.Status, 0) << run.Err;
    EXPECT_TRUE(Contains(run.Out, "Disk Imaging Completed\n")) << run.Out;
    EXPECT_TRUE(ReadWholeFile(image_) == ImageOf(ReadWholeFile(disk)));
    RunSetup noRoom;
    noRoom.MaxFileBytes = fs::file_size(map_) - 1;
    const RunResult again = RunCli({"image", disk, image_, "--resume"}, noRoom);
    EXPECT_EQ(again.Status, 3) << again.Out;
    EXPECT_TRUE(Contains(again.Err, "It tells less than has been read")) << again.Err;
    for (const Words& words : {Words{"partitions", "--json"}, Words{"list", "-p", "2", "-r", "--json"}}) {
        Words ofDisk = words;
        Words ofImage = words;
        ofDisk.insert(ofDisk.begin() + 1, disk);
        ofImage.insert(ofImage.begin() + 1, image_);
        EXPECT_EQ(RunCli(ofImage).Out, RunCli(ofDisk).Out);
    }
    EXPECT_TRUE(Contains(ReadWholeFile(scratch_ / "log"),
                         "\nCompleted Disk Imaging\r\n\t\t" + disk + " to " + image_));
}

TEST_F(CopyTest, ImageRefusesBeforeAnythingIsWritten) {
    const std::string disk = MakeDisk("disk", 1U << 20U);
    std::ofstream(scratch_ / "there") << "precious";
    std::ofstream(scratch_ / "alone.map") << "precious";
    std::ofstream(scratch_ / "empty");
    ExpectRefused({"image", disk, scratch_ / "there"}, "exists already and is not written over");
    ExpectRefused({"image", disk, scratch_ / "alone"}, "exists already, without its image");
    ExpectRefused({"image", disk, disk}, "are one disk");
    ExpectRefused({"image", disk, image_, "--resume"}, "to go on with");
    ExpectRefused({"image", disk, scratch_ / "there", "--resume"}, "The system cannot find the file");
    ExpectRefused({"image", disk, scratch_ / "there", "--retry", "1"}, "The system cannot find the file");
    ExpectRefused({"image", disk, "/dev/null", "--resume"}, "is no image file");
    ExpectRefused({"image", disk, scratch_ / "none/disk.th2"}, "Cannot make");
    ExpectRefused({"image", scratch_ / "empty", image_}, "is empty");
    ExpectRefused({"image", scratch_ / "none", image_}, "Cannot open");
    ExpectRefused({"image", scratch_.Path(), image_}, "is a folder");
    ExpectRefused({"image", disk, image_, "--log", image_}, "The log can't go to", 2);
    ExpectRefused({"image", disk, image_, "--log", scratch_ / "x/../disk.th2.map"}, "The log can't go to", 2);
    ExpectRefused({"image", disk, image_, "--retry", "0"}, "'0' is not a whole number", 2);
    EXPECT_EQ(ReadWholeFile(scratch_ / "there"), "precious");
    EXPECT_EQ(ReadWholeFile(scratch_ / "alone.map"), "precious");
    EXPECT_FALSE(fs::exists(image_));
    EXPECT_FALSE(fs::exists(map_));
}

TEST_F(CopyTest, ImageWithoutRoomIsRefused) {
    std::ofstream(scratch_ / "huge");
    std::error_code failure;
    fs::resize_file(scratch_ / "huge", std::uint64_t{15} << 40U, failure);
    if (failure || fs::space(scratch_.Path()).available > std::uint64_t{15} << 40U) {
        GTEST_SKIP() << "no file here can be larger than the room";
    }
    ExpectRefused({"image", scratch_ / "huge", image_}, "too little room");
    EXPECT_FALSE(fs::exists(image_));
}

TEST_F(CopyTest, ResumeRefusesAnImageOfAnotherDisk) {
    const std::string disk = MakeDisk("disk", 1U << 20U);
    const std::string larger = MakeDisk("larger", 2U << 20U);
    ASSERT_EQ(RunCli({"image", disk, image_}).Status, 0);
    const std::string bytes = ReadWholeFile(image_);
    ExpectRefused({"image", larger, image_, "--resume"}, "a source of another size");
    fs::resize_file(image_, 1000);
    ExpectRefused({"image", disk, image_, "--resume"}, "holds less than its map");
    std::ofstream(image_, std::ios::binary) << ReadWholeFile(disk);
    ExpectRefused({"image", disk, image_, "--resume"}, "is not an image of");
    std::ofstream(image_, std::ios::binary) << bytes;
    std::ofstream(map_) << "0x0 ?\n0x0 nonsense\n";
    ExpectRefused({"image", disk, image_, "--resume"}, "line 2 makes no sense");
    EXPECT_TRUE(ReadWholeFile(image_) == bytes);
}

// A map of nothing is all that a run leaves that is killed before it has made its image.
TEST_F(CopyTest, AMapOfNothingIsGoneOnWith) {
    const std::string disk = MakeDisk("disk", 1U << 20U);
    for (const Words& words : {Words{"image", disk, image_}, Words{"image", disk, image_, "--resume"}}) {
        ASSERT_EQ(SaveMap(map_, CopyMap(1U << 20U), {}, MapComment(disk, "")), kErrorNone);
        EXPECT_EQ(RunCli(words).Status, 0);
        EXPECT_TRUE(ReadWholeFile(image_) == ImageOf(ReadWholeFile(disk)));
        fs::remove(image_);
    }
}

TEST_F(CopyTest, WhatWasCopiedTellsTheDiskOfAnImage) {
    const std::string disk = MakeDisk("disk", 4U << 20U);
    ASSERT_EQ(RunCli({"image", disk, image_}).Status, 0);
    std::string map = ReadWholeFile(map_);
    map.replace(map.find("0x00000000  0x00400000"), std::string::npos,
                "0x00000000  0x00200000  +\n0x00200000  0x00200000  ?\n");
    const std::string half = ReadWholeFile(image_).substr(0, 2U << 20U);
    const auto layOut = [&](std::uint64_t changedByte) {
        std::ofstream(image_, std::ios::binary) << half;
        std::ofstream(map_, std::ios::binary) << map;
        std::string bytes = ReadWholeFile(disk);
        bytes.at(changedByte) ^= 1;
        std::ofstream(scratch_ / "other", std::ios::binary) << bytes;
    };
    // In the middle of a 64th, where one sector of each is looked at; and in the first megabyte.
    for (const std::uint64_t sector : {2U, 2047U, 4000U}) {
        layOut(sector * 512 + 511);
        ExpectRefused({"image", scratch_ / "other", image_, "--resume"},
                      "sector " + std::to_string(sector) + " of " + (scratch_ / "other"));
        EXPECT_TRUE(ReadWholeFile(image_) == half);
    }
    // A stamp is of the image alone, and what isn't copied yet can't differ.
    for (const std::uint64_t byte : {432U, 445U, 3U << 20U}) {
        layOut(byte);
        const RunResult run = RunCli({"image", scratch_ / "other", image_, "--resume"});
        EXPECT_EQ(run.Status, 0) << run.Err;
        EXPECT_TRUE(Contains(run.Err, "was begun from " + disk)) << run.Err;
        EXPECT_TRUE(ReadWholeFile(image_) == ImageOf(ReadWholeFile(scratch_ / "other")));
        EXPECT_FALSE(Contains(RunCli({"image", scratch_ / "other", image_, "--resume"}).Err, "begun"));
    }
}

TEST_F(CopyTest, CopyOntoTheDiskItselfIsRefused) {
    MakeDisk("disk", 8U << 20U);
    const std::string device = Attach(scratch_ / "disk");
    fs::create_directory(mount_);
    if (device.empty() || !MountNewFileSystem(device)) {
        GTEST_SKIP() << kNoLoops;
    }
    ExpectRefused({"image", device, mount_ + "/disk.th2"}, "the medium that is to be read");
    ExpectRefused({"image", scratch_ / "disk", mount_ + "/disk.th2"}, "the medium that is to be read");
    EXPECT_FALSE(fs::exists(mount_ + "/disk.th2"));

    // Under any name, and the map as well as the image.
    fs::create_directory(mount_ + "/folder");
    fs::create_directory_symlink(mount_ + "/folder", scratch_ / "link");
    fs::create_symlink(mount_ + "/disk.map", map_);
    for (const std::string& image : {scratch_ / "link/../disk.th2", image_}) {
        ExpectRefused({"image", device, image}, "the medium that is to be read");
    }
    fs::remove(map_);

    std::ofstream(mount_ + "/file") << "precious";
    fs::resize_file(mount_ + "/file", 8U << 20U);
    ExpectRefused({"clone", device, mount_ + "/file", "--yes"}, "the medium that is to be read");
    EXPECT_EQ(ReadWholeFile(mount_ + "/file").substr(0, 8), "precious");
    const RunResult run = RunCli({"image", device, image_});
    EXPECT_EQ(run.Status, 0) << run.Err;
    EXPECT_TRUE(Contains(run.Err, "is mounted")) << run.Err;
}

// ----------------------------------------------------------------------- clone

TEST_F(CopyTest, CloneToAFileKeepsItsSizeAndItsRest) {
    const std::string disk = MakeDisk("disk", 1000U * 512U);
    const std::string target = MakeDisk("target", 1U << 20U);
    const std::string before = ReadWholeFile(target);
    const RunResult asked = RunCli({"clone", disk, target});
    EXPECT_EQ(asked.Status, 2);
    EXPECT_EQ(asked.Out, "");
    EXPECT_TRUE(Contains(asked.Err, "destroys all that is on it:\n  NTFS volume 1  start sector 128"))
        << asked.Err;
    EXPECT_TRUE(Contains(asked.Err, "--yes")) << asked.Err;
    EXPECT_TRUE(ReadWholeFile(target) == before);

    const RunResult run = RunCli({"clone", disk, target, "--yes", "--json"});
    EXPECT_EQ(run.Status, 0) << run.Err;
    EXPECT_TRUE(ReadWholeFile(target) == ImageOf(ReadWholeFile(disk)) + before.substr(1000U * 512U));
    EXPECT_EQ(Json::parse(run.Out), (Json{{"source", disk},
                                          {"target", target},
                                          {"bytesPerSector", 512},
                                          {"sectors", 1000},
                                          {"copiedSectors", 1000},
                                          {"badSectors", 0},
                                          {"unreadSectors", 0},
                                          {"badRanges", Json::array()},
                                          {"complete", true},
                                          {"map", nullptr}}));
    EXPECT_TRUE(Contains(RunCli({"clone", disk, target, "--yes"}).Out, "Disk Cloning Completed\n"));
}

TEST_F(CopyTest, CloneRefusesBeforeAnythingIsWritten) {
    const std::string disk = MakeDisk("disk", 1U << 20U);
    const std::string target = MakeDisk("target", (1U << 20U) - 512);
    const std::string before = ReadWholeFile(target);
    fs::create_symlink(disk, scratch_ / "link");
    ExpectRefused({"clone", disk, target, "--yes"}, "is too small");
    ExpectRefused({"clone", disk, disk, "--yes"}, "are one disk");
    ExpectRefused({"clone", disk, scratch_ / "link", "--yes"}, "are one disk");
    ExpectRefused({"clone", disk, scratch_ / "none", "--yes"}, "Cannot open");
    ExpectRefused({"clone", disk, scratch_.Path(), "--yes"}, "Cannot open");
    ExpectRefused({"clone", disk, "/dev/null", "--yes"}, "Cannot open");
    ExpectRefused({"clone", disk, target, "--yes", "--log", target}, "The log can't go to", 2);
    EXPECT_TRUE(ReadWholeFile(target) == before);
    EXPECT_FALSE(fs::exists(scratch_ / "none"));
}

TEST_F(CopyTest, CloneToADevice) {
    const std::string disk = MakeDisk("disk", 3U << 20U);
    const std::string target = MakeDisk("target", 8U << 20U);
    const std::string source = Attach(disk, "--read-only");
    const std::string device = Attach(target);
    fs::create_directory(mount_);
    if (source.empty() || device.empty()) {
        GTEST_SKIP() << kNoLoops;
    }
    ExpectRefused({"clone", disk, source, "--yes"}, "are one disk");
    ExpectRefused({"clone", target, device, "--yes"}, "are one disk");
    ExpectRefused({"clone", device, source, "--yes"}, "is too small");
    const RunResult asked = RunCli({"clone", source, device});
    EXPECT_EQ(asked.Status, 2);
    EXPECT_TRUE(
        Contains(asked.Err, "disk " + device.substr(5) + ": " + target + ", 8.00 MB, serial number N/A"))
        << asked.Err;
    EXPECT_EQ(RunCli({"clone", source, device, "--yes"}).Status, 0);
    EXPECT_EQ(ReadWholeFile(device).substr(0, 3U << 20U), ImageOf(ReadWholeFile(disk)));

    if (MountNewFileSystem(device)) {
        ExpectRefused({"clone", source, device, "--yes"}, "is in use");
        ExpectRefused({"clone", source, target, "--yes"}, "is in use");
        fs::copy_file(disk, mount_ + "/disk");
        ExpectRefused({"clone", mount_ + "/disk", device, "--yes"}, "would be written over by its own copy");
    }
}

// ------------------------------------------------- against a file system that fails

namespace {

constexpr std::uint64_t kSectors = 6000;
constexpr int kComparedSectors = 2048 + 64; ///< that are read again before an image goes on

class FaultyCopyTest : public CopyTest {
protected:
    void SetUp() override {
        fs::create_directory(mount_);
        disk_ = MakeDisk("disk", kSectors * 512);
    }

    /// False where there can be no such file system.
    bool Mount(const std::vector<std::uint64_t>& badSectors, std::uint64_t slow = 0) {
        faulty_.reset();
        FaultyMount::Setup setup;
        for (const std::uint64_t sector : badSectors) {
            setup.BadBytes.emplace_back(sector * 512 + 100, 1);
        }
        setup.SlowMicroseconds = slow;
        setup.LogPath = scratch_ / "reads";
        faulty_ = FaultyMount::Start(disk_, mount_, setup);
        return faulty_ != nullptr;
    }

    /// Sectors that were given since the mount, but for the look at the first one when a source is opened.
    [[nodiscard]] std::vector<bool> SectorsGiven() const {
        std::vector<bool> given(kSectors);
        std::istringstream lines(ReadWholeFile(scratch_ / "reads"));
        std::uint64_t offset = 0;
        std::uint64_t size = 0;
        std::string result;
        for (bool first = true; lines >> offset >> size >> result; first = false) {
            for (std::uint64_t sector = offset / 512;
                 !first && result == "ok" && sector * 512 < offset + size; ++sector) {
                given.at(sector) = true;
            }
        }
        return given;
    }

    void TearDown() override {
        faulty_.reset();
        CopyTest::TearDown();
    }

    std::string disk_;
    std::unique_ptr<FaultyMount> faulty_;
};

} // namespace

TEST_F(FaultyCopyTest, BadSectorsAreZerosAndNamedAndMayComeBackLater) {
    if (!Mount({0, 700, 701, 5999})) {
        GTEST_SKIP() << kNoFaultyMount;
    }
    RunResult run = RunCli({"image", faulty_->Path(), image_, "--log", scratch_ / "log"});
    EXPECT_EQ(run.Status, 3) << run.Err;
    EXPECT_EQ(run.Out, "Disk Imaging Completed\n5996 of 6000 sectors (2.9 MB) copied to " + image_ +
                           "\n4 sectors could not be read and are zeros in the copy:\n"
                           "  sector 0\n  sectors 700 to 701 (2)\n  sector 5999\nMap: " +
                           map_ + "\n");
    EXPECT_TRUE(ReadWholeFile(image_) == ImageOf(ReadWholeFile(disk_), {0, 700, 701, 5999}));
    EXPECT_TRUE(Contains(ReadWholeFile(map_), "0x00000000  0x00000200  -\n0x00000200  0x00057600  +\n"
                                              "0x00057800  0x00000400  -\n0x00057C00  0x00296200  +\n"
                                              "0x002EDE00  0x00000200  -\n"))
        << ReadWholeFile(map_);
    EXPECT_TRUE(Contains(ReadWholeFile(scratch_ / "log"), "Drive access error @ sector =701 (Code =23)"));

    ASSERT_TRUE(Mount({701}));
    run = RunCli({"image", faulty_->Path(), image_, "--retry", "2", "--json"});
    EXPECT_EQ(run.Status, 3) << run.Err;
    const Json totals = Json::parse(run.Out);
    EXPECT_EQ(totals["badSectors"], 1);
    EXPECT_EQ(totals["badRanges"], Json::parse(R"([{"first":701,"count":1}])"));
    EXPECT_TRUE(ReadWholeFile(image_) == ImageOf(ReadWholeFile(disk_), {701}));
    const std::vector<bool> given = SectorsGiven();
    EXPECT_TRUE(given[0] && given[700] && given[5999]);
    EXPECT_LE(std::count(given.begin(), given.end(), true), 3 + kComparedSectors);

    ASSERT_TRUE(Mount({}));
    run = RunCli({"image", faulty_->Path(), image_, "--resume", "--retry", "1", "--json"});
    EXPECT_EQ(run.Status, 0) << run.Err;
    EXPECT_TRUE(ReadWholeFile(image_) == ImageOf(ReadWholeFile(disk_)));
}

TEST_F(FaultyCopyTest, AStoppedImageIsAValidShorterOneAndGoesOn) {
    if (!Mount({800, 4100}, 3000)) {
        GTEST_SKIP() << kNoFaultyMount;
    }
    RunSetup setup;
    setup.Interrupt = [this] {
        std::error_code none;
        const auto size = fs::file_size(image_, none);
        return !none && size >= 512 * 1024;
    };
    RunResult run = RunCli({"image", faulty_->Path(), image_, "--json"}, setup);
    ASSERT_EQ(run.Status, 3) << run.Err;
    Json totals = Json::parse(run.Out);
    EXPECT_EQ(totals["complete"], false);
    EXPECT_GT(totals["unreadSectors"], 0);
    const std::string part = ReadWholeFile(image_);
    EXPECT_LT(part.size(), kSectors * 512);
    EXPECT_TRUE(part == ImageOf(ReadWholeFile(disk_), {800, 4100}).substr(0, part.size()));
    EXPECT_EQ(RunCli({"partitions", image_}).Status, 0);

    const std::vector<bool> before = SectorsGiven();
    ASSERT_TRUE(Mount({3, 800, 4100})); // that sector 3 went bad since doesn't count
    run = RunCli({"image", faulty_->Path(), image_, "--resume", "--json"});
    EXPECT_EQ(run.Status, 3) << run.Err;
    totals = Json::parse(run.Out);
    EXPECT_EQ(totals["unreadSectors"], 0);
    EXPECT_EQ(totals["badSectors"], 2);
    EXPECT_TRUE(ReadWholeFile(image_) == ImageOf(ReadWholeFile(disk_), {800, 4100}));
    const std::vector<bool> after = SectorsGiven();
    int twice = 0;
    for (std::uint64_t sector = 0; sector < kSectors; ++sector) {
        const bool bad = sector == 800 || sector == 4100;
        EXPECT_EQ(before[sector] || after[sector], !bad) << sector;
        twice += before[sector] && after[sector] ? 1 : 0;
    }
    EXPECT_LE(twice, kComparedSectors);
}

TEST_F(FaultyCopyTest, AnImageThatFoundNoRoomGoesOnToo) {
    if (!Mount({800})) {
        GTEST_SKIP() << kNoFaultyMount;
    }
    RunSetup setup;
    setup.MaxFileBytes = 1000 * 512;
    RunResult run = RunCli({"image", faulty_->Path(), image_}, setup);
    EXPECT_EQ(run.Status, 1) << run.Err;
    EXPECT_TRUE(Contains(run.Out, "Disk Imaging Aborted\n")) << run.Out;
    EXPECT_TRUE(Contains(run.Err, "exceeds the limit")) << run.Err;
    ASSERT_TRUE(Mount({800}));
    run = RunCli({"image", faulty_->Path(), image_, "--resume"});
    EXPECT_EQ(run.Status, 3) << run.Err;
    EXPECT_TRUE(ReadWholeFile(image_) == ImageOf(ReadWholeFile(disk_), {800}));
}

TEST_F(FaultyCopyTest, CloneNamesItsBadSectors) {
    if (!Mount({1, 5998})) {
        GTEST_SKIP() << kNoFaultyMount;
    }
    const std::string target = MakeDisk("target", kSectors * 512);
    const RunResult run = RunCli({"clone", faulty_->Path(), target, "--yes"});
    EXPECT_EQ(run.Status, 3) << run.Err;
    EXPECT_TRUE(Contains(run.Out, "  sector 1\n  sector 5998\n")) << run.Out;
    EXPECT_TRUE(ReadWholeFile(target) == ImageOf(ReadWholeFile(disk_), {1, 5998}));
}

} // namespace thntfs::test
