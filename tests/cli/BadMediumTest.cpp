#include "CliHelpers.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace thntfs::test {

namespace {

namespace fs = std::filesystem;

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

struct BadMedium {
    std::string What;
    std::string Path;
    std::string Told;
};

class BadMediumTest : public testing::Test {
protected:
    std::string Make(const std::string& name, ConstBytes bytes) {
        WriteFileBytes(scratch_ / name, bytes);
        return scratch_ / name;
    }

    // A partition table whose entries lead wherever the test says, behind it a volume of one file.
    std::string MakeWithTable(const std::string& name, const std::vector<PartitionEntry>& entries) {
        VolumeBuilder volume;
        volume.AddFile(TextFile(40, u"file.txt", "text"));
        volume.PutSectors(0, EncodePartitionTable(entries));
        volume.WriteTo(scratch_ / name);
        return scratch_ / name;
    }

    ScratchFolder scratch_;
};

TEST_F(BadMediumTest, WhatHoldsNoVolumeIsToldByEveryCommand) {
    const std::vector<BadMedium> cases = {
        {"missing", scratch_ / "nothing", "Cannot open"},
        {"folder", scratch_.Path(), "is a folder"},
        {"empty file", Make("empty", {}), "is empty"},
        {"less than a sector", Make("short", ByteVector(100, 0x55)), ""},
        {"text", Make("text", BytesOf(std::string(3000, 'x'))), "No NTFS volume"},
        {"noise", Make("noise", PatternBytes(1U << 20U)), "No NTFS volume"},
        {"zeros", Make("zeros", ByteVector(1U << 20U)), "No NTFS volume"},
        {"no volume where it should be", MakeWithTable("astray", {{0x07, 500, 16384}}), "No NTFS volume"},
        {"table that leads to itself", MakeWithTable("circle", {{0x05, 0, 100}}), "No NTFS volume"},
        {"volume behind the end", MakeWithTable("behind", {{0x07, 0xFFFFFFF0, 16384}}), "No NTFS volume"},
        {"volume on the table", MakeWithTable("zero", {{0x07, 0, 16384}}), "No NTFS volume"},
    };
    for (const BadMedium& bad : cases) {
        for (const char* command : {"partitions", "scan", "list", "cat", "save"}) {
            SCOPED_TRACE(bad.What + ", " + command);
            Words words = {command, bad.Path};
            if (words.front() == "cat") {
                words.push_back("/file.txt");
            } else if (words.front() == "save") {
                words.insert(words.end(), {"--to", scratch_ / "to"});
            }
            const RunResult run = RunCli(words);
            EXPECT_EQ(run.Status, 1);
            EXPECT_EQ(run.Out, "");
            EXPECT_FALSE(run.Err.empty());
            EXPECT_TRUE(Contains(run.Err, bad.Told)) << run.Err;
        }
    }
}

TEST_F(BadMediumTest, TablesThatLeadInCirclesEnd) {
    VolumeBuilder volume;
    volume.AddFile(TextFile(40, u"file.txt", "text"));
    const PartitionEntry good = {0x07, 128, 16384};
    volume.PutSectors(0, EncodePartitionTable({good, {0x05, 20, 100}}));
    volume.PutSectors(20, EncodePartitionTable({{0x07, 108, 16384}, {0x05, 1, 100}}));
    volume.PutSectors(21, EncodePartitionTable({{0x07, 107, 16384}, {0x05, 0, 100}}));
    volume.WriteTo(scratch_ / "image");
    const RunResult run = RunCli({"partitions", scratch_ / "image", "--json"});
    EXPECT_EQ(run.Status, 0) << run.Err;
    for (const Json& partition : Json::parse(run.Out)) {
        EXPECT_EQ(partition["startSector"], 128);
    }
    EXPECT_EQ(RunCli({"cat", scratch_ / "image", "/file.txt", "--partition", "3"}).Out, "text");
}

TEST_F(BadMediumTest, AVolumeWithoutABootSectorKeepsItsNumberAndIsNotPassedOver) {
    const std::string image = scratch_ / "image";
    fs::copy_file(PackedPath("logical"), image);
    Json wanted = Json::parse(RunCli({"partitions", image, "--json"}).Out);
    const RunResult second = RunCli({"list", image, "-p", "2", "-r"});
    std::fstream(image, std::ios::in | std::ios::out)
        .seekp(wanted[0]["startSector"].get<std::int64_t>() * 512)
        .write(std::string(512, '\0').data(), 512);
    const Json left = Json::parse(RunCli({"partitions", image, "--json"}).Out);
    EXPECT_TRUE(left[0].contains("problem"));
    wanted[0] = left[0];
    EXPECT_EQ(left, wanted);
    EXPECT_EQ(RunCli({"list", image, "-p", "2", "-r"}).Out, second.Out);
    EXPECT_EQ(RunCli({"list", image, "-p", "1"}).Status, 1);

    const std::string pair = MakeWithTable("pair", {{0x07, 64, 64}, {0x07, 128, 16384}});
    const RunResult unchosen = RunCli({"save", pair, "--to", scratch_ / "to"});
    EXPECT_EQ(unchosen.Status, 2);
    EXPECT_TRUE(Contains(unchosen.Err, "1  start sector 64")) << unchosen.Err;
    EXPECT_TRUE(Contains(RunCli({"partitions", pair}).Err, "--search"));
}

TEST_F(BadMediumTest, PartitionThatRunsPastTheEndIsReadAsFarAsItGoes) {
    const std::string image = MakeWithTable("image", {{0x07, 128, 0xFFFFFFFF}});
    EXPECT_EQ(RunCli({"cat", image, "/file.txt"}).Out, "text");
    EXPECT_EQ(RunCli({"save", image, "--to", scratch_ / "to"}).Status, 0);
}

// A copy that broke off: what lies before the break comes back, and what doesn't is told.
TEST_F(BadMediumTest, TruncatedImageGivesWhatIsLeft) {
    const Words list = {"list", PackedPath("office"), "--recursive", "--json"};
    std::map<std::string, std::uint64_t> whole;
    for (const Json& entry : JsonLines(RunCli(list).Out)) {
        whole[entry["path"]] = entry["size"];
    }
    const std::string image = scratch_ / "image";
    fs::copy_file(PackedPath("office"), image);
    fs::resize_file(image, fs::file_size(image) * 2 / 5);
    const RunResult run = RunCli({"save", image, "--to", scratch_ / "to", "--json"});
    EXPECT_EQ(run.Status, 3);
    const Json totals = Json::parse(run.Out);
    EXPECT_GT(totals["damaged"], 0);
    EXPECT_LT(totals["damaged"], totals["files"]);
    EXPECT_TRUE(Contains(run.Err, "behind the end of the medium")) << run.Err;
    for (const auto& entry : fs::recursive_directory_iterator(scratch_ / "to")) {
        if (entry.is_regular_file()) {
            EXPECT_EQ(entry.file_size(), whole[entry.path().string().substr((scratch_ / "to").size())]);
        }
    }
}

TEST_F(BadMediumTest, TableOutsideTheMediumIsTold) {
    const std::string image = scratch_ / "image";
    fs::copy_file(PackedPath("basic"), image);
    fs::resize_file(image, 2049 * 512); // just the boot sector is left
    const RunResult run = RunCli({"scan", image});
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Out, "");
    EXPECT_TRUE(Contains(run.Err, "Critical structures not found")) << run.Err;
}

TEST_F(BadMediumTest, ATableThatCannotBeReadIsToldAndNeverCalledComplete) {
    VolumeBuilder volume;
    volume.AddFile(TextFile(40, u"file.txt", "text"));
    volume.PlaceRecord(41, BytesOf("BAAD" + std::string(1020, 'x')));
    volume.WriteTo(scratch_ / "image");
    for (const char* command : {"scan", "list", "save"}) {
        Words words = {command, scratch_ / "image", "--json"};
        if (words.front() == "save") {
            words.insert(words.end(), {"--to", scratch_ / "to"});
        }
        const RunResult run = RunCli(words);
        EXPECT_EQ(run.Status, 3) << command;
        EXPECT_TRUE(Contains(run.Err, "At least 1 record could not be read (1 damaged)")) << run.Err;
        EXPECT_TRUE(words.front() == "list" || !Json::parse(run.Out)["complete"]) << run.Out;
    }
    EXPECT_EQ(RunCli({"cat", scratch_ / "image", "/file.txt"}).Status, 0);

    // The runs of the table lead astray.
    volume.PlaceRecord(volume.NewRecord(0)
                           .AddStandardInformation(EqualTimes(), 6)
                           .AddFileName({.Name = u"$MFT", .Namespace = kNamespaceBoth})
                           .AddData({.Runs = {{64, 100}}}));
    volume.WriteTo(scratch_ / "image");
    const RunResult run = RunCli({"save", scratch_ / "image", "--to", scratch_ / "to"});
    EXPECT_EQ(run.Status, 1);
    EXPECT_TRUE(Contains(run.Err, "--turbo")) << run.Err;
}

TEST_F(BadMediumTest, TableKnownByItsMirrorAlone) {
    VolumeBuilder volume;
    volume.AddFile(TextFile(40, u"file.txt", "text"));
    volume.PutSectors(volume.RecordSector(0), ByteVector(1024, 0xEE));
    volume.WriteTo(scratch_ / "image");
    EXPECT_EQ(RunCli({"cat", scratch_ / "image", "/file.txt"}).Out, "text");
}

TEST_F(BadMediumTest, ImageWithoutTheRightToRead) {
    const std::string image = MakeWithTable("image", {{0x07, 128, 16384}});
    fs::permissions(image, fs::perms::none);
    fs::permissions(scratch_.Path(), fs::perms::others_exec, fs::perm_options::add);
    RunSetup setup;
    setup.AsNobody = ::geteuid() == 0;
    const RunResult run = RunCli({"scan", image}, setup);
    if (run.Status == 127) {
        GTEST_SKIP() << "the program can't be started here by a user without rights";
    }
    EXPECT_EQ(run.Status, 1);
    EXPECT_TRUE(Contains(run.Err, "sudo")) << run.Err;
}

} // namespace

} // namespace thntfs::test
