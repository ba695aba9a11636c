#include "CliFixture.h"
#include "disktools/CopyMapFile.h"

#include <algorithm>
#include <fstream>

namespace thntfs::test {

namespace {

class CopyTest : public CliTest {
protected:
    /// A file without holes that begins with a partition table and a volume, and goes on with a pattern.
    std::string MakeDisk(const std::string& name, std::uint64_t bytes) {
        volume_.WriteTo(At(name));
        const std::string start = ReadWholeFile(At(name)).substr(0, 1U << 20U);
        ByteVector all = PatternBytes(bytes);
        std::copy_n(start.begin(), std::min(start.size(), all.size()), all.begin());
        WriteFileBytes(At(name), all);
        return At(name);
    }

    /// What an image of these bytes is.
    static std::string ImageOf(std::string bytes, const std::vector<std::uint64_t>& badSectors = {}) {
        for (const std::uint64_t sector : badSectors) {
            bytes.replace(sector * 512, 512, 512, '\0');
        }
        StampImage({reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()}, bytes.size() / 512, 512);
        return bytes;
    }

    /// Whether the image is one of the whole disk.
    bool IsImage(const std::vector<std::uint64_t>& badSectors = {}) {
        return ReadWholeFile(copy_) == ImageOf(ReadWholeFile(disk_), badSectors);
    }

    std::string disk_ = At("disk");
    std::string copy_ = At("disk.th2");
    std::string map_ = copy_ + ".map";
};

// --------------------------------------------------------------------- devices

TEST_F(CopyTest, ALoopDeviceGivesWhatItsImageGives) {
    const std::string image = PackedPath("logical");
    const std::string device = Attach(image, "--read-only");
    const std::string large = Attach(PackedPath("sector4k"), "--read-only --sector-size 4096");
    const std::string named = Attach(MakeDisk("a disk", 3U << 20U), "--sector-size 4096");
    if (device.empty() || large.empty() || named.empty()) {
        GTEST_SKIP() << kNoLoops;
    }
    EXPECT_EQ(RunCli({"partitions", large, "--json"}).Out,
              RunCli({"partitions", PackedPath("sector4k"), "--json"}).Out);
    EXPECT_EQ(RunCli({"list", device, "-p", "2", "-r", "--json"}).Out,
              RunCli({"list", image, "-p", "2", "-r", "--json"}).Out);
    Expect(0, {"save", device, "-p", "2", "--to", At("one")});
    Expect(0, {"save", image, "-p", "2", "--to", At("two")});
    EXPECT_EQ(FilesBelow(At("one")), FilesBelow(At("two")));

    const std::string name = named.substr(named.rfind('/') + 1);
    const Json expected = {{"Name", name},          {"MediaType", "Disk image"}, {"InterfaceType", "Loop"},
                           {"TotalSectors", "768"}, {"TotalCylinders", "0"},     {"TotalHeads", "255"},
                           {"Size", "3.00 MB"},     {"Serial", "N/A"},           {"Revision", ""},
                           {"Model", At("a disk")}, {"BytesPerSector", "4096"}};
    const Json disks = Json::parse(Expect(0, {"disks", "--json"}).Out);
    EXPECT_EQ(std::count(disks.begin(), disks.end(), expected), 1) << disks;
    const std::vector<std::string> rows = LinesOf(RunCli({"disks"}).Out);
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [&](const std::string& line) { return line.starts_with(name + " "); });
    ASSERT_NE(row, rows.end());
    EXPECT_EQ(row->find("3.00 MB") + 7, rows.front().find("Size") + 4) << "numbers stand at the right";
}

// A disk with a volume and, behind it, a mounted file system.
TEST_F(CopyTest, NothingIsWrittenToTheMediumItself) {
    volume_.WriteTo(disk_);
    const std::uint64_t end = fs::file_size(disk_);
    fs::resize_file(disk_, end + (8U << 20U));
    const std::string behind = Attach(disk_, "--offset " + std::to_string(end));
    const std::string device = Attach(disk_);
    if (behind.empty() || device.empty() || !MountNewFileSystem(behind, mount_)) {
        GTEST_SKIP() << kNoLoops;
    }
    // Under any name, and the map as well as the image.
    fs::create_directory(mount_ + "/folder");
    fs::create_directory_symlink(mount_ + "/folder", At("link"));
    fs::create_symlink(mount_ + "/disk.map", map_);
    for (const std::string& medium : {disk_, device}) {
        ExpectRefused(1, {"save", medium, "--to", mount_ + "/new"}, "on the medium that is being read");
        for (const Words& word : {Words{"--log", mount_ + "/new"}, {"--save-info", mount_ + "/new"}}) {
            ExpectRefused(1, {"scan", medium, word[0], word[1]}, "give --same-disk");
        }
        ExpectRefused(1, {"scan", medium, "--log", disk_, "--same-disk"}, "is or lies on the medium");
        for (const std::string& copy : {mount_ + "/disk.th2", At("link/../disk.th2"), copy_}) {
            ExpectRefused(1, {"image", medium, copy}, "the medium that is to be read");
        }
    }
    EXPECT_FALSE(fs::exists(mount_ + "/disk.th2") || fs::exists(mount_ + "/new"));
    std::ofstream(mount_ + "/file") << "precious";
    fs::resize_file(mount_ + "/file", 20U << 20U);
    ExpectRefused(1, {"clone", device, mount_ + "/file", "--yes"}, "the medium that is to be read");
    EXPECT_EQ(ReadWholeFile(mount_ + "/file").substr(0, 8), "precious");

    const auto before = fs::last_write_time(mount_ + "/folder");
    Expect(0, {"scan", disk_, "--json"}, "lies on the medium that is being read",
           {.Environment = {{"TMPDIR", mount_ + "/folder"}}});
    EXPECT_TRUE(fs::last_write_time(mount_ + "/folder") == before);
    for (const std::string& medium : {disk_, device}) {
        Expect(0, {"scan", medium, "--same-disk", "--log", mount_ + "/log", "--save-info", mount_ + "/scan"});
        Expect(0, {"save", mount_ + "/scan.tht", "--same-disk", "--to", mount_ + "/new"});
        EXPECT_TRUE(fs::remove(mount_ + "/log") && fs::remove(mount_ + "/scan.tht") &&
                    fs::remove_all(mount_ + "/new") != 0);
        Expect(0, {"scan", medium, "--same-disk", "--json"}, "lies on the medium that is being read",
               {.Environment = {{"TMPDIR", mount_ + "/folder"}}});
    }
    fs::remove(map_);
    Expect(0, {"image", behind, copy_}, "is mounted");
}

// ----------------------------------------------------------------------- image

TEST_F(CopyTest, ImageOfAPackedDiskGivesWhatItsDiskGives) {
    disk_ = PackedPath("logical");
    const RunResult run = Expect(0, {"image", disk_, copy_, "--log", At("log")});
    EXPECT_TRUE(Contains(run.Out, "Disk Imaging Completed\n")) << run.Out;
    EXPECT_TRUE(IsImage());
    Expect(3, {"image", disk_, copy_, "--resume"}, "It tells less than has been read",
           {.MaxFileBytes = fs::file_size(map_) - 1});
    EXPECT_EQ(RunCli({"list", copy_, "-p", "2", "-r"}).Out, RunCli({"list", disk_, "-p", "2", "-r"}).Out);
    EXPECT_TRUE(
        Contains(ReadWholeFile(At("log")), "\nCompleted Disk Imaging\r\n\t\t" + disk_ + " to " + copy_));
}

TEST_F(CopyTest, ImageRefusesBeforeAnythingIsWritten) {
    MakeDisk("disk", 1U << 20U);
    std::ofstream(At("there")) << "precious";
    std::ofstream(At("alone.map")) << "precious";
    std::ofstream(At("empty"));
    ExpectRefused(1, {"image", disk_, At("there")}, "exists already and is not written over");
    ExpectRefused(1, {"image", disk_, At("alone")}, "exists already, without its image");
    ExpectRefused(1, {"image", disk_, disk_}, "are one disk");
    ExpectRefused(1, {"image", disk_, copy_, "--resume"}, "to go on with");
    ExpectRefused(1, {"image", disk_, At("there"), "--retry", "1"}, "The system cannot find the file");
    ExpectRefused(1, {"image", disk_, "/dev/null", "--resume"}, "is no image file");
    ExpectRefused(1, {"image", disk_, At("none/disk.th2")}, "Cannot make");
    ExpectRefused(1, {"image", At("empty"), copy_}, "is empty");
    ExpectRefused(1, {"image", scratch_.Path(), copy_}, "is a folder");
    ExpectRefused(2, {"image", disk_, copy_, "--log", copy_}, "The log can't go to");
    ExpectRefused(2, {"image", disk_, copy_, "--log", At("x/../disk.th2.map")}, "The log can't go to");
    ExpectRefused(2, {"image", disk_, copy_, "--retry", "0"}, "'0' is not a whole number");
    std::error_code failure;
    fs::resize_file(At("empty"), std::uint64_t{15} << 40U, failure);
    if (!failure && fs::space(scratch_.Path()).available < std::uint64_t{15} << 40U) {
        ExpectRefused(1, {"image", At("empty"), copy_}, "too little room");
    }
    EXPECT_EQ(ReadWholeFile(At("there")) + ReadWholeFile(At("alone.map")), "preciousprecious");
    EXPECT_FALSE(fs::exists(copy_) || fs::exists(map_));
}

TEST_F(CopyTest, AnImageInPiecesIsOneMediumAndNoPieceIsWrittenTo) {
    const std::string disk = ReadWholeFile(MakeDisk("disk", 1U << 20U));
    std::ofstream(At("d.001")) << disk.substr(0, 700000);
    std::ofstream(At("d.002")) << disk.substr(700000);
    Expect(0, {"image", At("d.001"), copy_});
    EXPECT_TRUE(IsImage());
    ExpectRefused(1, {"clone", At("d.001"), At("d.002"), "--yes"}, "are one disk");
    ExpectRefused(1, {"scan", At("d.001"), "--log", At("d.002")}, "The log can't go to");
    EXPECT_TRUE(ReadWholeFile(At("d.002")) == disk.substr(700000));
    Expect(0, {"scan", At("d.001"), "--save-info", At("d.tht")});
    EXPECT_EQ(RunCli({"list", At("d.tht"), "-r"}).Out, RunCli({"list", disk_, "-r"}).Out);
    fs::rename(At("d.002"), At("d.003"));
    Expect(1, {"list", At("d.tht"), "-r"}, "d.002 is missing");
}

TEST_F(CopyTest, ResumeRefusesAnImageOfAnotherDisk) {
    MakeDisk("disk", 1U << 20U);
    Expect(0, {"image", disk_, copy_});
    const std::string bytes = ReadWholeFile(copy_);
    ExpectRefused(1, {"image", MakeDisk("larger", 2U << 20U), copy_, "--resume"}, "a source of another size");
    fs::resize_file(copy_, (1U << 20U) - 1);
    ExpectRefused(1, {"image", disk_, copy_, "--resume"}, "holds less than its map");
    std::ofstream(copy_, std::ios::binary) << ReadWholeFile(disk_);
    ExpectRefused(1, {"image", disk_, copy_, "--resume"}, "is not an image of");
    std::ofstream(copy_, std::ios::binary) << bytes;
    std::ofstream(map_) << "0x0 ?\n0x0 nonsense\n";
    ExpectRefused(1, {"image", disk_, copy_, "--resume"}, "line 2 makes no sense");
    EXPECT_TRUE(ReadWholeFile(copy_) == bytes);

    // A map of nothing is all that a run leaves that is killed before it has made its image.
    for (const Words& words : {Words{"image", disk_, copy_}, Words{"image", disk_, copy_, "--resume"}}) {
        fs::remove(copy_);
        ASSERT_EQ(SaveMap(map_, CopyMap(1U << 20U), {}, MapComment(disk_, "")), kErrorNone);
        Expect(0, words);
        EXPECT_TRUE(IsImage());
    }
}

TEST_F(CopyTest, WhatWasCopiedTellsTheDiskOfAnImage) {
    MakeDisk("disk", 4U << 20U);
    Expect(0, {"image", disk_, copy_});
    std::string map = "# Serial number: WD-1\n" + ReadWholeFile(map_); // now the disk doesn't tell it
    map.replace(map.find("0x00000000  0x00400000"), std::string::npos,
                "0x00000000  0x00200000  +\n0x00200000  0x00200000  ?\n");
    const std::string half = ReadWholeFile(copy_).substr(0, 2U << 20U);
    const std::string whole = ReadWholeFile(disk_);
    disk_ = At("other");
    const auto layOut = [&](std::uint64_t changedByte) {
        std::ofstream(copy_, std::ios::binary) << half;
        std::ofstream(map_, std::ios::binary) << map;
        std::string bytes = whole;
        bytes.at(changedByte) ^= 1;
        std::ofstream(disk_, std::ios::binary) << bytes;
    };
    // In the middle of a 64th, where one sector of each is looked at; and in the first megabyte.
    for (const std::uint64_t sector : {2U, 2047U, 4000U}) {
        layOut(sector * 512 + 511);
        ExpectRefused(1, {"image", disk_, copy_, "--resume"},
                      "sector " + std::to_string(sector) + " of " + disk_);
        EXPECT_TRUE(ReadWholeFile(copy_) == half);
    }
    // A stamp is of the image alone, and what isn't copied yet can't differ.
    for (const std::uint64_t byte : {432U, 445U, 3U << 20U}) {
        layOut(byte);
        Expect(0, {"image", disk_, copy_, "--resume"}, "was begun from " + At("disk"));
        EXPECT_TRUE(IsImage());
        EXPECT_EQ(Expect(0, {"image", disk_, copy_, "--resume"}).Err, "");
    }
}

// ----------------------------------------------------------------------- clone

TEST_F(CopyTest, CloneToAFileKeepsItsSizeAndItsRest) {
    MakeDisk("disk", 1000U * 512U);
    MakeDisk("target", 1U << 20U);
    const std::string before = ReadWholeFile(target_);
    const std::string told = "destroys all that is on it:\n  NTFS volume 1  start sector 128";
    EXPECT_TRUE(Contains(Expect(2, {"clone", disk_, target_}, told).Err, "--yes"));
    EXPECT_TRUE(ReadWholeFile(target_) == before);
    EXPECT_EQ(Json::parse(Expect(0, {"clone", disk_, target_, "--yes", "--json"}).Out),
              Json::parse(R"({"source":")" + disk_ + R"(","target":")" + target_ +
                          R"(","bytesPerSector":512,"sectors":1000,"copiedSectors":1000,"badSectors":0,
                             "unreadSectors":0,"badRanges":[],"complete":true,"map":null})"));
    EXPECT_TRUE(ReadWholeFile(target_) == ImageOf(ReadWholeFile(disk_)) + before.substr(1000U * 512U));
}

TEST_F(CopyTest, CloneRefusesBeforeAnythingIsWritten) {
    MakeDisk("disk", 1U << 20U);
    MakeDisk("target", (1U << 20U) - 512);
    const std::string before = ReadWholeFile(target_);
    fs::create_symlink(disk_, At("link"));
    ExpectRefused(1, {"clone", disk_, target_, "--yes"}, "is too small");
    ExpectRefused(1, {"clone", disk_, At("link"), "--yes"}, "are one disk");
    for (const std::string& target : {At("none"), scratch_.Path(), std::string("/dev/null")}) {
        ExpectRefused(1, {"clone", disk_, target, "--yes"}, "Cannot open");
    }
    ExpectRefused(2, {"clone", disk_, target_, "--yes", "--log", target_}, "The log can't go to");
    EXPECT_TRUE(ReadWholeFile(target_) == before);
    EXPECT_FALSE(fs::exists(At("none")));
}

TEST_F(CopyTest, CloneToADevice) {
    MakeDisk("disk", 3U << 20U);
    MakeDisk("target", 8U << 20U);
    const std::string source = Attach(disk_, "--read-only");
    const std::string device = Attach(target_, "--partscan");
    if (source.empty() || device.empty()) {
        GTEST_SKIP() << kNoLoops;
    }
    ExpectRefused(1, {"clone", disk_, source, "--yes"}, "are one disk");
    ExpectRefused(1, {"clone", device, source, "--yes"}, "is too small");
    ExpectRefused(2, {"clone", source, device},
                  "disk " + device.substr(5) + ": " + target_ + ", 8.00 MB, serial number N/A");
    const std::string large = Attach(MakeDisk("large", 8U << 20U), "--sector-size 4096");
    ExpectRefused(2, {"clone", source, large}, "Mind that " + large + " has sectors of 4096 bytes");
    Expect(0, {"clone", source, device, "--yes", "--log", At("log")});
    EXPECT_FALSE(Contains(ReadWholeFile(At("log")), "has not read")) << "the system looks for partitions";
    EXPECT_EQ(ReadWholeFile(device).substr(0, 3U << 20U), ImageOf(ReadWholeFile(disk_)));

    if (MountNewFileSystem(device, mount_)) {
        ExpectRefused(1, {"clone", source, device, "--yes"}, "is in use");
        ExpectRefused(1, {"clone", source, target_, "--yes"}, "is in use");
        fs::copy_file(disk_, mount_ + "/disk");
        ExpectRefused(1, {"clone", mount_ + "/disk", device, "--yes"},
                      "would be written over by its own copy");
    }
}

// ----------------------------------------------------------- disks that fail

constexpr std::uint64_t kSectors = 6000;

class FaultyCopyTest : public CopyTest {
protected:
    FaultyCopyTest() { MakeDisk("disk", kSectors * 512); }

    RunSetup WithBad(const std::vector<std::uint64_t>& sectors) { return WithBadSectors(disk_, sectors); }
};

TEST_F(FaultyCopyTest, BadSectorsAreZerosAndNamedAndMayComeBackLater) {
    EXPECT_EQ(Expect(3, {"image", disk_, copy_, "--log", At("log")}, "", WithBad({0, 700, 701, 5999})).Out,
              "Disk Imaging Completed\n5996 of 6000 sectors (2.9 MB) copied to " + copy_ +
                  "\n4 sectors could not be read and are zeros in the copy:\n"
                  "  sector 0\n  sectors 700 to 701 (2)\n  sector 5999\nMap: " +
                  map_ + "\n");
    EXPECT_TRUE(IsImage({0, 700, 701, 5999}));
    EXPECT_TRUE(Contains(ReadWholeFile(map_), "0x00000000  0x00000200  -\n0x00000200  0x00057600  +\n"
                                              "0x00057800  0x00000400  -\n0x00057C00  0x00296200  +\n"
                                              "0x002EDE00  0x00000200  -\n"))
        << ReadWholeFile(map_);
    EXPECT_TRUE(Contains(ReadWholeFile(At("log")), "Drive access error @ sector =701 (Code =23)"));

    const Words retry = {"image", disk_, copy_, "--retry", "2", "--json"};
    const Json totals = Json::parse(Expect(3, retry, "", WithBad({701})).Out);
    EXPECT_EQ(totals["badSectors"], 1);
    EXPECT_EQ(totals["badRanges"], Json::parse(R"([{"first":701,"count":1}])"));
    EXPECT_TRUE(IsImage({701}));

    Expect(0, {"image", disk_, copy_, "--resume", "--retry", "1"});
    EXPECT_TRUE(IsImage());
    Expect(3, {"image", disk_, At("other.th2"), "--retry", "1"}, "", WithBad({701}));
}

TEST_F(FaultyCopyTest, AStoppedImageIsAValidShorterOneAndGoesOn) {
    RunSetup setup = WithBad({800, 4100});
    setup.Environment["FAULT_SLOW"] = "3000";
    setup.Interrupt = [this] {
        std::error_code none;
        const auto size = fs::file_size(copy_, none);
        return !none && size >= 512 * 1024;
    };
    Json totals = Json::parse(Expect(3, {"image", disk_, copy_, "--json"}, "", setup).Out);
    EXPECT_EQ(totals["complete"], false);
    EXPECT_GT(totals["unreadSectors"], 0);
    const std::string part = ReadWholeFile(copy_);
    EXPECT_LT(part.size(), kSectors * 512);
    EXPECT_TRUE(part == ImageOf(ReadWholeFile(disk_), {800, 4100}).substr(0, part.size()));
    Expect(0, {"partitions", copy_});

    const Words resume = {"image", disk_, copy_, "--resume", "--json"};
    totals = Json::parse(Expect(3, resume, "", WithBad({3, 800, 4100})).Out); // what is there stays
    EXPECT_EQ(totals["unreadSectors"], 0);
    EXPECT_EQ(totals["badSectors"], 2);
    EXPECT_TRUE(IsImage({800, 4100}));
}

TEST_F(FaultyCopyTest, AnImageThatFoundNoRoomGoesOnToo) {
    RunSetup setup = WithBad({800});
    setup.MaxFileBytes = 1000 * 512;
    const RunResult run = Expect(1, {"image", disk_, copy_}, "exceeds the limit", setup);
    EXPECT_TRUE(run.Out.starts_with("Disk Imaging Aborted\n")) << run.Out;
    EXPECT_TRUE(Contains(run.Out, "not been read yet; --resume goes on from here\n")) << run.Out;
    Expect(3, {"image", disk_, copy_, "--resume"}, "", WithBad({800}));
    EXPECT_TRUE(IsImage({800}));
}

TEST_F(FaultyCopyTest, CloneNamesItsBadSectors) {
    MakeDisk("target", kSectors * 512);
    std::vector<std::uint64_t> bad;
    for (std::uint64_t sector = 10; sector < 70; sector += 2) {
        bad.push_back(sector);
    }
    const RunResult run = Expect(3, {"clone", disk_, target_, "--yes"}, "", WithBad(bad));
    EXPECT_TRUE(Contains(run.Out, "  sector 10\n  sector 12\n")) << run.Out;
    EXPECT_TRUE(Contains(run.Out, "  sector 48\n  and 10 more places\n")) << run.Out;
    EXPECT_TRUE(ReadWholeFile(target_) == ImageOf(ReadWholeFile(disk_), bad));
    const std::vector<std::string> told = LinesOf(run.Err);
    EXPECT_EQ(std::count_if(told.begin(), told.end(),
                            [](const auto& line) { return line.starts_with("Drive access error"); }),
              20);
    EXPECT_EQ(std::count(told.begin(), told.end(), "11 more failed reads"), 1) << run.Err;
}

// ------------------------------------------- the copier whose maps these are

class RescueTest : public FaultyCopyTest {
protected:
    void SetUp() override {
        if (OutputOf("command -v ddrescue").empty() || OutputOf("command -v ddrescuelog").empty()) {
            GTEST_SKIP() << "ddrescue is not installed";
        }
    }

    void Rescue(const Words& options, const std::vector<std::uint64_t>& badSectors = {}) {
        Words words = {"-q", "-b512"};
        words.insert(words.end(), options.begin(), options.end());
        words.insert(words.end(), {disk_, copy_, map_});
        const RunResult run = RunProgram("/usr/bin/ddrescue", words, WithBad(badSectors));
        EXPECT_EQ(run.Status, 0) << run.Err;
    }
};

TEST_F(RescueTest, ItReadsListsAndGoesOnWithOurMap) {
    Expect(3, {"image", disk_, copy_}, "", WithBad({700, 701, 5999}));
    EXPECT_EQ(RunProgram("/usr/bin/ddrescuelog", {"-l-", map_}).Out, "700\n701\n5999\n");
    EXPECT_TRUE(Contains(RunProgram("/usr/bin/ddrescuelog", {"-t", map_}).Out, "bad-sector:     1536 B"));
    Rescue({"-r1"}, {5999});
    EXPECT_TRUE(IsImage({5999}));
    Expect(0, {"image", disk_, copy_, "--resume", "--retry", "1"});
    EXPECT_TRUE(IsImage());
}

TEST_F(RescueTest, WeGoOnWithWhatItBegan) {
    Rescue({"-n", "-N"}, {700, 3000, 5999}); // leaves stretches that are neither read nor given up
    EXPECT_TRUE(Contains(ReadWholeFile(map_), " *\n"));
    Expect(3, {"image", disk_, copy_, "--resume"}, "", WithBad({3000}));
    EXPECT_TRUE(IsImage({3000}));

    fs::remove(copy_);
    fs::remove(map_);
    Rescue({}, {0, 701, 5998, 5999}); // its image ends with the last sector that it has
    EXPECT_EQ(fs::file_size(copy_), 5998U * 512);
    Expect(3, {"image", disk_, copy_, "--resume"});
    EXPECT_TRUE(IsImage({0, 701, 5998, 5999}));
    Expect(0, {"image", disk_, copy_, "--retry", "1"});
    EXPECT_TRUE(IsImage());

    MakeDisk("disk", kSectors * 512 + 512); // has grown
    ExpectRefused(1, {"image", disk_, copy_, "--resume"}, "a source of another size");
}

} // namespace

} // namespace thntfs::test
