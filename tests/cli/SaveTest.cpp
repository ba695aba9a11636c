#include "CliFixture.h"

#include <array>
#include <set>
#include <sys/mount.h>

namespace thntfs::test {

namespace {

class SaveTest : public CliTest {
protected:
    RunResult Save(int status, const Words& more = {}, const std::string& told = "",
                   const RunSetup& setup = {}) {
        volume_.WriteTo(image_);
        Words words = {"save", image_, "--to", target_};
        words.insert(words.end(), more.begin(), more.end());
        return Expect(status, words, told, setup);
    }
};

TEST_F(SaveTest, FoldersAreMadeAgainAndNothingIsWrittenOver) {
    volume_.AddFolder({.Number = 40, .Name = u"Letters"});
    volume_.AddFile(TextFile(41, u"to whom.txt", "first", 40));
    volume_.AddFolder({.Number = 42, .Name = u"Empty"});
    volume_.AddFile(TextFile(43, u"lost.txt", "lost", 77));
    volume_.AddFile(TextFile(44, u"gone.txt", "gone", 40, false));
    volume_.AddFolder({.Number = 45, .Name = u"Gone and empty", .Live = false});
    Save(0, {"--deleted", "/"});
    EXPECT_EQ(FilesBelow(target_), (Texts{{"Letters/gone.txt", "gone"}}));
    EXPECT_TRUE(!fs::exists(target_ + "/Empty") && fs::exists(target_ + "/Gone and empty"));
    fs::remove_all(target_);
    Save(0);
    EXPECT_TRUE(fs::is_directory(target_ + "/Empty"));
    Texts files = {{"Letters/to whom.txt", "first"}, {"Letters/gone.txt", "gone"}, {"#77/lost.txt", "lost"}};
    EXPECT_EQ(FilesBelow(target_), files);
    Save(0, {"/Letters"}, "/Letters/to whom.txt: saved under the name to whom (2).txt");
    Save(3, {"/Letters/to whom.txt", "/not there.txt"}, "No entry has the path /not there.txt");
    files["Letters/to whom (2).txt"] = files["Letters/to whom (3).txt"] = "first";
    files["Letters/gone (2).txt"] = "gone";
    EXPECT_EQ(FilesBelow(target_), files);
    Save(1, {"/not there.txt"}, "No entry has the path /not there.txt");
    Save(3, {"--deleted", "/not there.txt", "/Letters/to whom.txt"}); // a live one is left out
}

TEST_F(SaveTest, NoNameLeadsOutOfTheTargetAndNoneHidesAnother) {
    std::uint32_t number = 40;
    std::multiset<std::string> contents;
    for (const std::u16string& name : std::vector<std::u16string>{u"../../x",
                                                                  u"..",
                                                                  u"/etc/x",
                                                                  u"/",
                                                                  u"..\\..\\y",
                                                                  u"a\u0001\u001b[2J\nb",
                                                                  {u"nul\0in", 6},
                                                                  std::u16string(255, u'界'),
                                                                  u"\xDC00\xD800",
                                                                  u".."}) {
        const std::string text = "content " + std::to_string(number);
        volume_.AddFile(TextFile(number, name, text));
        volume_.AddFolder({.Number = number + 1, .Name = name});
        volume_.AddFile(TextFile(number + 2, u"inside.txt", text, number + 1));
        contents.insert({text, text});
        number += 3;
    }
    target_ = At("ground/target");
    Save(0);
    EXPECT_EQ(std::distance(fs::directory_iterator(At("ground")), {}), 1);
    std::multiset<std::string> saved;
    for (const auto& [path, text] : FilesBelow(target_)) {
        saved.insert(text);
    }
    EXPECT_EQ(saved, contents);
}

TEST_F(SaveTest, WhatStandsInTheTargetStays) {
    fs::create_directories(target_);
    fs::create_directories(At("elsewhere"));
    fs::create_directory_symlink(At("elsewhere"), target_ + "/Linked");
    fs::create_symlink(At("elsewhere/file.txt"), target_ + "/file.txt");
    WriteFileBytes(target_ + "/Blocked", BytesOf("mine"));
    fs::create_directories(target_ + "/plain");
    volume_.AddFolder({.Number = 40, .Name = u"Linked"});
    volume_.AddFile(TextFile(41, u"inside.txt", "in linked", 40));
    volume_.AddFile(TextFile(42, u"file.txt", "a file"));
    volume_.AddFolder({.Number = 43, .Name = u"Blocked"});
    volume_.AddFile(TextFile(44, u"inside.txt", "in blocked", 43));
    volume_.AddFile(TextFile(45, u"plain", "a plain file"));
    Save(0);
    EXPECT_TRUE(fs::is_empty(At("elsewhere"))) << "a link was followed";
    EXPECT_EQ(FilesBelow(target_), (Texts{{"Blocked", "mine"},
                                          {"Blocked (2)/inside.txt", "in blocked"},
                                          {"Linked (2)/inside.txt", "in linked"},
                                          {"file (2).txt", "a file"},
                                          {"plain (2)", "a plain file"}}));

    const Texts impossible = {{target_ + "/Blocked", "is a file"},
                              {target_ + "/Blocked/below", "is a file"},
                              {"/proc/thntfs", "Cannot save to"},
                              {image_, "on the medium that is being read"}};
    for (const auto& [target, told] : impossible) {
        ExpectRefused(1, {"save", image_, "--to", target}, told);
    }
    EXPECT_EQ(ReadWholeFile(target_ + "/Blocked"), "mine");
}

TEST_F(SaveTest, WhatFindsNoRoomIsNamedAndTheRestIsWhole) {
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
    const Json totals = Json::parse(Save(3, {"--json"}, "not saved").Out);
    const Texts files = FilesBelow(target_);
    ::umount(target_.c_str());
    EXPECT_GE(files.size(), 3U);
    EXPECT_EQ(totals["files"], files.size());
    EXPECT_EQ(totals["failed"], 8 - files.size());
    for (const auto& [path, bytes] : files) {
        EXPECT_EQ(bytes.size(), 100000U) << path;
    }
}

// Clusters that no medium has, sizes that no disk has.
TEST_F(SaveTest, SizesBeyondAllMeasureDoNotFillTheDisk) {
    constexpr std::uint64_t kClaim = std::uint64_t{1} << 63;
    volume_ = VolumeBuilder({.TotalSectors = 4095, .MirrorCluster = 400}); // small: limits go by its size
    const std::vector<std::vector<test::Run>> runLists = {
        {{0x7FFFFFFF, 100}},                                    // runs on behind the end
        {{1, 100}, {1, 99}, {0x7FFFFFF0, 0x7FFFFFFF}},          // ends behind it
        std::vector<test::Run>(60, test::Run{0x00FFFFFF, 100}), // the same clusters again and again
        {{16, 100}, {0x7FFFFFFF, std::nullopt}, {1, 20}},       // a hole of terabytes
    };
    std::uint32_t number = 40;
    for (const auto& runs : runLists) {
        for (const std::uint8_t packed : std::array<std::uint8_t, 2>{0, 1}) {
            volume_.PlaceRecord(volume_.NewRecord(number)
                                    .AddStandardInformation(EqualTimes(), packed != 0 ? 0x820U : 0x220U)
                                    .AddFileName({.Name = std::u16string(number, u'f')})
                                    .AddData({.Runs = runs,
                                              .Flags = packed,
                                              .CompressionExponent = static_cast<std::uint8_t>(4 * packed),
                                              .RealSize = kClaim}));
            ++number;
        }
    }
    volume_.AddFile(TextFile(number, u"good.txt", "good"));
    volume_.PlaceRecord(volume_.NewRecord(number + 1)
                            .AddStandardInformation()
                            .AddFileName({.Name = u"four clusters"})
                            .AddData({.Runs = {{4, 100}}, .RealSize = kClaim}));
    const std::string report = At("report");
    for (const std::uint64_t sectors : {std::uint64_t{4095}, std::uint64_t{1} << 40}) {
        SCOPED_TRACE(sectors);
        BootSectorFields boot = BootFieldsOf(volume_.Geometry());
        boot.TotalSectors = sectors;
        volume_.PutSectors(volume_.Geometry().StartSector, EncodeBootSector(boot));
        const RunResult run = Save(3, {"--json", "--as-stored"}, "", {.MaxFileBytes = 64U << 20U});
        EXPECT_LT(Json::parse(run.Out)["bytes"], 200U << 20U) << run.Err;
        EXPECT_FALSE(Contains(run.Err, "exceeds the limit")) << "only the limit held it: " << run.Err;
        fs::remove_all(target_);
        EXPECT_EQ(Json::parse(Save(3, {"--json", "--report", report}).Out)["damaged"], 9);
        fs::remove(report);
        EXPECT_LT(std::stoul(OutputOf("du -sk " + target_)), 200U << 10U) << "holes take no room";
        EXPECT_EQ(ReadWholeFile(target_ + "/good.txt"), "good");
        EXPECT_EQ(fs::file_size(target_ + "/four clusters"), 4U * 4096) << "its size can't be true";
        fs::remove_all(target_);
    }
}

} // namespace

} // namespace thntfs::test
