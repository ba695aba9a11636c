#include "CliHelpers.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <sys/mount.h>
#include <unistd.h>

namespace thntfs::test {

namespace {

namespace fs = std::filesystem;

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class SaveTest : public testing::Test {
protected:
    RunResult Save(const Words& more = {}, const RunSetup& setup = {}) {
        volume_.WriteTo(image_);
        Words words = {"save", image_, "--to", target_};
        words.insert(words.end(), more.begin(), more.end());
        return RunCli(words, setup);
    }

    /// Nothing but the target may have come into being beside it.
    void ExpectNothingOutside() {
        for (const auto& entry : fs::directory_iterator(ground_)) {
            EXPECT_EQ(entry.path().string(), target_);
        }
    }

    VolumeBuilder volume_;
    ScratchFolder scratch_;
    std::string image_ = scratch_ / "image";
    std::string ground_ = scratch_ / "ground";
    std::string target_ = ground_ + "/target";
};

TEST_F(SaveTest, FoldersAreMadeAgainAndNothingIsWrittenOver) {
    volume_.AddFolder({.Number = 40, .Name = u"Letters"});
    volume_.AddFile(TextFile(41, u"to whom.txt", "first", 40));
    volume_.AddFolder({.Number = 42, .Name = u"Empty"});
    volume_.AddFile(TextFile(43, u"lost.txt", "lost", 77));
    EXPECT_EQ(Save().Status, 0);
    EXPECT_TRUE(fs::is_directory(target_ + "/Empty"));
    std::map<std::string, std::string> files = {{"Letters/to whom.txt", "first"}, {"#77/lost.txt", "lost"}};
    EXPECT_EQ(FilesBelow(target_), files);

    const RunResult again = Save({"/Letters"});
    EXPECT_EQ(again.Status, 0);
    EXPECT_TRUE(Contains(again.Err, "/Letters/to whom.txt: saved under the name to whom (2).txt"))
        << again.Err;
    Save({"/Letters/to whom.txt"});
    files["Letters/to whom (2).txt"] = files["Letters/to whom (3).txt"] = "first";
    EXPECT_EQ(FilesBelow(target_), files);
}

TEST_F(SaveTest, DeletedAloneLeavesTheRestOut) {
    volume_.AddFolder({.Number = 40, .Name = u"Mixed"});
    volume_.AddFile(TextFile(41, u"kept.txt", "kept", 40));
    FileSpec gone = TextFile(42, u"gone.txt", "gone", 40);
    gone.Live = false;
    volume_.AddFile(gone);
    volume_.AddFolder({.Number = 43, .Name = u"Live and empty"});
    volume_.AddFolder({.Number = 44, .Name = u"Gone and empty", .Live = false});
    EXPECT_EQ(Save({"--deleted"}).Status, 0);
    EXPECT_EQ(FilesBelow(target_), (std::map<std::string, std::string>{{"Mixed/gone.txt", "gone"}}));
    EXPECT_FALSE(fs::exists(target_ + "/Live and empty"));
    EXPECT_TRUE(fs::exists(target_ + "/Gone and empty"));
}

TEST_F(SaveTest, PathsThatAreMissingAreTold) {
    volume_.AddFile(TextFile(40, u"there.txt", "text"));
    const RunResult part = Save({"/there.txt", "/not there.txt"});
    EXPECT_EQ(part.Status, 3);
    EXPECT_TRUE(Contains(part.Err, "No entry has the path /not there.txt")) << part.Err;
    EXPECT_EQ(Save({"/not there.txt"}).Status, 1);
    EXPECT_EQ(FilesBelow(target_).size(), 1U);
}

// ------------------------------------------------------------------- bad names

const std::vector<std::u16string> kBadNames = {u"../../x",
                                               u"..",
                                               u"../",
                                               u"...",
                                               u"a/b",
                                               u"/etc/x",
                                               u"/",
                                               u"..\\..\\y",
                                               u"CON",
                                               u"con.txt",
                                               u"LPT1",
                                               u"a\u0001\u001b[2J\nb",
                                               std::u16string(u"nul\0in", 6),
                                               std::u16string(255, u'界'),
                                               u"\xD800",
                                               u"x\xDC00y",
                                               u"\xDC00\xD800",
                                               u" ",
                                               u"trailing. ",
                                               u"-rf",
                                               u"~",
                                               u"$HOME `id`",
                                               u"%s%n",
                                               u"c:evil",
                                               u"..."};

TEST_F(SaveTest, NoNameLeadsOutOfTheTarget) {
    std::uint32_t number = 40;
    std::multiset<std::string> contents;
    for (const std::u16string& name : kBadNames) {
        const std::string text = "content " + std::to_string(number);
        volume_.AddFile(TextFile(number++, name, text));
        volume_.AddFolder({.Number = number, .Name = name});
        volume_.AddFile(TextFile(number + 1, u"inside.txt", text, number));
        contents.insert({text, text});
        number += 2;
    }
    const RunResult run = Save({"--json"});
    EXPECT_EQ(run.Status, 0) << run.Err;
    ExpectNothingOutside();
    std::multiset<std::string> saved;
    for (const auto& [path, text] : FilesBelow(target_)) {
        saved.insert(text);
    }
    EXPECT_EQ(saved, contents);
    EXPECT_EQ(Json::parse(run.Out)["files"], contents.size());
}

TEST_F(SaveTest, OneNameForSeveralEntries) {
    volume_.AddFile(TextFile(40, u"same.txt", "one"));
    volume_.AddFile(TextFile(41, u"same.txt", "two"));
    volume_.AddFile(TextFile(42, u"both", "a file"));
    volume_.AddFolder({.Number = 43, .Name = u"both"});
    volume_.AddFile(TextFile(44, u"inside", "in the folder", 43));
    volume_.AddFolder({.Number = 45, .Name = u"both", .Live = false});
    volume_.AddFile(TextFile(46, u"inside", "in the other folder", 45));
    EXPECT_EQ(Save().Status, 0);
    std::set<std::string> texts;
    for (const auto& [path, text] : FilesBelow(target_)) {
        texts.insert(text);
    }
    EXPECT_EQ(texts, (std::set<std::string>{"one", "two", "a file", "in the folder", "in the other folder"}));
}

TEST_F(SaveTest, WhatStandsInTheTargetStays) {
    fs::create_directories(target_);
    fs::create_directories(scratch_ / "elsewhere");
    fs::create_directory_symlink(scratch_ / "elsewhere", target_ + "/Linked");
    fs::create_symlink(scratch_ / "elsewhere/file.txt", target_ + "/file.txt");
    WriteFileBytes(target_ + "/Blocked", BytesOf("mine"));
    fs::create_directories(target_ + "/plain");
    volume_.AddFolder({.Number = 40, .Name = u"Linked"});
    volume_.AddFile(TextFile(41, u"inside.txt", "in linked", 40));
    volume_.AddFile(TextFile(42, u"file.txt", "a file"));
    volume_.AddFolder({.Number = 43, .Name = u"Blocked"});
    volume_.AddFile(TextFile(44, u"inside.txt", "in blocked", 43));
    volume_.AddFile(TextFile(45, u"plain", "a plain file"));
    EXPECT_EQ(Save().Status, 0);
    EXPECT_TRUE(fs::is_empty(scratch_ / "elsewhere")) << "a link was followed";
    EXPECT_EQ(FilesBelow(target_),
              (std::map<std::string, std::string>{{"Blocked", "mine"},
                                                  {"Blocked (2)/inside.txt", "in blocked"},
                                                  {"Linked (2)/inside.txt", "in linked"},
                                                  {"file (2).txt", "a file"},
                                                  {"plain (2)", "a plain file"}}));
}

// ----------------------------------------------------------------- bad targets

TEST_F(SaveTest, TargetsThatCannotBe) {
    volume_.AddFile(TextFile(40, u"file.txt", "text"));
    volume_.WriteTo(image_);
    WriteFileBytes(scratch_ / "file", BytesOf("mine"));
    const std::vector<std::pair<std::string, std::string>> cases = {
        {scratch_ / "file", "is a file"},
        {scratch_ / "file/below", "is a file"},
        {"/proc/thntfs", "Cannot save to"},
        {image_, "on the medium that is being read"}};
    for (const auto& [target, told] : cases) {
        const RunResult run = RunCli({"save", image_, "--to", target});
        EXPECT_EQ(run.Status, 1) << target;
        EXPECT_EQ(run.Out, "");
        EXPECT_TRUE(Contains(run.Err, told)) << run.Err;
    }
    EXPECT_EQ(ReadWholeFile(scratch_ / "file"), "mine");
}

TEST_F(SaveTest, NoTargetIsMadeForAMediumThatCannotBeRead) {
    EXPECT_EQ(RunCli({"save", scratch_ / "nothing", "--to", target_}).Status, 1);
    EXPECT_FALSE(fs::exists(target_));
}

TEST_F(SaveTest, TargetWithoutTheRightToWrite) {
    volume_.AddFile(TextFile(40, u"file.txt", "text"));
    fs::create_directories(target_);
    fs::permissions(target_, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                                 fs::perms::others_exec);
    fs::permissions(scratch_.Path(), fs::perms::others_exec, fs::perm_options::add);
    RunSetup setup;
    setup.AsNobody = ::geteuid() == 0;
    const RunResult run = Save({}, setup);
    if (run.Status == 127) {
        GTEST_SKIP() << "the program can't be started here by a user without rights";
    }
    EXPECT_EQ(run.Status, 1);
    EXPECT_TRUE(Contains(run.Err, "Cannot save to " + target_)) << run.Err;
}

TEST_F(SaveTest, FilesThatCannotGrowAreNamedAndTakenBack) {
    constexpr std::size_t kLimit = 300000;
    volume_.AddFile({.Number = 40, .Name = u"big.bin", .Content = PatternBytes(500000), .InClusters = true});
    volume_.AddFile(
        {.Number = 41, .Name = u"small.bin", .Content = PatternBytes(200000), .InClusters = true});
    RunSetup setup;
    setup.MaxFileBytes = kLimit;
    const RunResult run = Save({"--json"}, setup);
    EXPECT_EQ(run.Status, 3);
    EXPECT_TRUE(Contains(run.Err, "/big.bin: not saved")) << run.Err;
    EXPECT_FALSE(fs::exists(target_ + "/big.bin"));
    EXPECT_EQ(fs::file_size(target_ + "/small.bin"), 200000U);
    EXPECT_EQ(Json::parse(run.Out)["failed"], 1);
}

TEST_F(SaveTest, FullTargetKeepsWhatFits) {
    fs::create_directories(target_);
    if (::mount("none", target_.c_str(), "tmpfs", 0, "size=400k") != 0) {
        GTEST_SKIP() << "no small file system can be mounted here";
    }
    for (std::uint32_t i = 0; i < 8; ++i) {
        volume_.AddFile({.Number = 40 + i,
                         .Name = std::u16string(1, static_cast<char16_t>(u'a' + i)),
                         .Content = PatternBytes(100000),
                         .InClusters = true,
                         // Files marked compressed aren't measured against the room that is left.
                         .AttributeBits = i % 2 == 0 ? 0x820U : kArchiveBit});
    }
    const RunResult run = Save({"--json"});
    const auto files = FilesBelow(target_);
    ::umount(target_.c_str());
    EXPECT_EQ(run.Status, 3);
    const Json totals = Json::parse(run.Out);
    EXPECT_GE(files.size(), 3U);
    EXPECT_EQ(totals["files"], files.size());
    EXPECT_EQ(totals["failed"], 8 - files.size());
    for (const auto& [path, bytes] : files) {
        EXPECT_EQ(bytes.size(), 100000U) << path;
    }
}

// ------------------------------------------------------------------- bad sizes

// Clusters that no medium has, sizes that no disk has.
TEST_F(SaveTest, SizesBeyondAllMeasureDoNotFillTheDisk) {
    constexpr std::uint64_t kClaim = std::uint64_t{1} << 63;
    volume_ = VolumeBuilder({.TotalSectors = 4095, .MirrorCluster = 400}); // small: limits go by its size
    const std::vector<std::vector<test::Run>> runLists = {
        {{0x7FFFFFFF, 100}},                                    // runs on behind the end
        {{0x7FFFFFFF, 0x7FFFFFF0}},                             // begins behind the end
        {{1, 100}, {1, 99}, {0x7FFFFFF0, 0x7FFFFFFF}},          //
        std::vector<test::Run>(60, test::Run{0x00FFFFFF, 100}), // the same clusters again and again
        {{16, 100}, {0x7FFFFFFF, std::nullopt}, {1, 20}},       // a hole of terabytes
    };
    std::uint32_t number = 40;
    for (const auto& runs : runLists) {
        for (const std::uint32_t bits : {0x20U, 0x220U, 0x820U}) {
            NonResidentValue data{.Runs = runs, .RealSize = kClaim};
            data.Flags = bits == 0x820U ? 1 : 0;
            data.CompressionExponent = bits == 0x820U ? 4 : 0;
            volume_.PlaceRecord(
                volume_.NewRecord(number)
                    .AddStandardInformation(EqualTimes(), bits)
                    .AddFileName({.Name = u"f" + std::u16string(1, static_cast<char16_t>(number))})
                    .AddData(data));
            ++number;
        }
    }
    volume_.AddFile(TextFile(number, u"good.txt", "good"));
    volume_.PlaceRecord(volume_.NewRecord(number + 1)
                            .AddStandardInformation()
                            .AddFileName({.Name = u"four clusters"})
                            .AddData({.Runs = {{4, 100}}, .RealSize = kClaim}));
    for (const std::uint64_t sectors : {std::uint64_t{4095}, std::uint64_t{1} << 40}) {
        SCOPED_TRACE(sectors);
        BootSectorFields boot = BootFieldsOf(volume_.Geometry());
        boot.TotalSectors = sectors;
        volume_.PutSectors(volume_.Geometry().StartSector, EncodeBootSector(boot));
        RunSetup setup;
        setup.MaxFileBytes = 64U << 20U;
        const RunResult run = Save({"--json"}, setup);
        EXPECT_EQ(run.Status, 3) << run.Err;
        EXPECT_LT(Json::parse(run.Out)["bytes"], 200U << 20U) << run.Err;
        EXPECT_FALSE(Contains(run.Err, "exceeds the limit")) << "only the limit held it: " << run.Err;
        EXPECT_EQ(ReadWholeFile(target_ + "/good.txt"), "good");
        EXPECT_EQ(fs::file_size(target_ + "/four clusters"), 4U * 4096) << "its runs tell what it needs";
        fs::remove_all(target_);
    }
}

} // namespace

} // namespace thntfs::test
