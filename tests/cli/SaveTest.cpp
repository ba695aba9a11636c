#include "CliFixture.h"
#include "support/ZipReader.h"

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

TEST_F(SaveTest, OneZipFileHoldsAllThatIsWanted) {
    volume_.AddFolder({.Number = 40, .Name = u"Letters"});
    volume_.AddFile(TextFile(41, u"to whom.txt", "first", 40));
    volume_.AddFile(TextFile(42, u"old.BAK", "old", 40));
    volume_.AddFile(TextFile(43, u"gone.txt", "gone", 40, false));
    volume_.WriteTo(image_);
    const Words zip = {"save", image_, "--zip", target_, "--exclude", "tmp,bak", "/Letters", "--existing"};
    const RunResult run = Expect(0, zip);
    EXPECT_TRUE(Contains(run.Out, "Saved 1 file (5 bytes) in 1 folder")) << run.Out;
    EXPECT_TRUE(Contains(run.Out, "; 1 file of excluded types left out")) << run.Out;
    const Words asJson = {"save", image_, "--zip", target_ + "2", "--exclude", "bak", "--json", "/Letters"};
    const Json totals = Json::parse(Expect(0, asJson).Out);
    EXPECT_EQ(totals["leftOut"].dump() + totals["typesLeftOut"].dump(), "11");
    ZipItems items = ReadZip(target_);
    EXPECT_EQ(items.size(), 2U);
    EXPECT_EQ(items["Letters/to whom.txt"].Bytes, "first");
    ExpectRefused(1, zip, "something under this name already");
    ExpectRefused(1, {"save", image_, "--zip", At("none/a.zip")}, "Cannot save to");
    ExpectRefused(1, {"save", image_, "--zip", image_, "--same-disk"}, "on the medium that is being read");
    ExpectRefused(2, {"save", image_, "--zip", At("a"), "--to", At("b")}, "is required and 2 were given");
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

// Two files with a name in each of two folders, one of which another folder has got since; named streams of a
// file and a folder; a file of 40 MB with three clusters in it; a deleted one whose clusters are used again.
class SaveExactTest : public SaveTest {
protected:
    SaveExactTest() {
        volume_.AddFolder({.Number = 40, .Name = u"A", .Times = EqualTimes(kFolderTime)});
        volume_.PlaceRecord(volume_.NewRecord(41)
                                .SetFolder(true)
                                .AddStandardInformation({.Modified = kFolderTime, .Accessed = kFileTime})
                                .AddFileName({.Name = u"B", .AttributeBits = kFolderBit})
                                .AddData(BytesOf("of B"), u"note")
                                .AddIndexRoot({}));
        RecordBuilder file = volume_.NewRecord(42);
        file.AddStandardInformation({.Modified = kFileTime, .Accessed = kFileTime + 10});
        file.AddFileName({.Parent = FileReference(40, 7), .Name = u"stale.txt"});
        file.AddFileName({.Parent = FileReference(40), .Name = u"two.txt"});
        file.AddFileName({.Parent = FileReference(41), .Name = u"two.txt"});
        file.AddFileName({.Parent = FileReference(40), .Name = u"TWO~1.TXT", .Namespace = kNamespaceDos});
        volume_.PlaceRecord(file.AddData(BytesOf("two names"))
                                .AddData(BytesOf("first"), u"a:b")
                                .AddData(BytesOf("second"), u"Zone.Identifier"));
        const std::uint64_t start = volume_.AllocateClusters(3);
        volume_.PutClusters(start, PatternBytes(3 * 4096));
        constexpr std::uint64_t kHole = 10000; // clusters
        volume_.PlaceRecord(
            volume_.NewRecord(43)
                .AddStandardInformation()
                .AddFileName({.Name = u"holes"})
                .AddData({.Runs = {{2, start}, {kHole, std::nullopt}, {1, start + 2}, {16, std::nullopt}},
                          .Flags = 0x8000}));
        volume_.PlaceRecord(volume_.NewRecord(44)
                                .SetInUse(false)
                                .AddStandardInformation()
                                .AddFileName({.Name = u"gone"})
                                .AddData({.Runs = {{1, start}}}));
        holesStart_ = start;
        holesSize_ = (kHole + 19) * 4096;
    }

    static constexpr std::uint64_t kFileTime = 132223104001234567;
    static constexpr std::uint64_t kFolderTime = 125000000000000000;
    std::uint64_t holesStart_ = 0; ///< first cluster of the file of holes
    std::uint64_t holesSize_ = 0;
};

TEST_F(SaveExactTest, NamesStreamsDatesAndHolesComeBack) {
    const std::string report = At("report");
    const Json totals =
        Json::parse(Save(3, {"--json", "--streams", "--report", report}, "gone: its clusters").Out);
    // Before anything is read there, which may set the date of that.
    EXPECT_EQ(
        OutputOf("cd " + target_ +
                 " && { stat -c '%.7Y %.7X' B/two.txt B && stat -c '%.7Y' A; } | tr '\\n' ' '"),
        "1577836800.1234567 1577836800.1234577 855526400.0000000 1577836800.1234567 855526400.0000000 ");
    EXPECT_EQ(totals["links"], 1);
    EXPECT_EQ(totals["streams"], 3);
    EXPECT_EQ(totals["folders"], 2) << "each once, whoever makes it first";
    EXPECT_EQ(totals["streamsLeft"], 0);
    EXPECT_EQ(totals["damaged"], 1);
    EXPECT_EQ(fs::file_size(target_ + "/holes"), holesSize_);
    const std::string clusters = std::to_string(volume_.Geometry().OffsetOf(holesStart_));
    EXPECT_LT(std::stoul(OutputOf("du -sk " + target_)), 200U);
    EXPECT_EQ(OutputOf("cmp -n 8192 -i 0:" + clusters + " " + target_ + "/holes " + image_ + " && echo same"),
              "same");
    const std::string holesHash = OutputOf("sha256sum " + target_ + "/holes").substr(0, 64);
    fs::remove(target_ + "/holes");
    EXPECT_EQ(FilesBelow(target_), (Texts{{"A/two.txt", "two names"},
                                          {"B/two.txt", "two names"},
                                          {"B/two.txt#Zone.Identifier", "second"},
                                          {"B/two.txt#a_b", "first"},
                                          {"B#note", "of B"},
                                          {"gone", FilesBelow(target_)["gone"]}}));
    EXPECT_TRUE(fs::equivalent(target_ + "/A/two.txt", target_ + "/B/two.txt"));

    std::map<std::string, Json> lines;
    for (const Json& line : JsonLines(ReadWholeFile(report))) {
        lines[line["path"]] = line;
    }
    EXPECT_EQ(lines.size(), 6U);
    EXPECT_EQ(lines["/B/two.txt"],
              Json::parse(
                  R"({"path":"/B/two.txt","record":42,"size":9,"bytes":9,"condition":"whole","reason":null,
                              "sha256":")" +
                  OutputOf("printf 'two names' | sha256sum").substr(0, 64) + R"(","links":["/A/two.txt"]})"));
    EXPECT_EQ(lines["/holes"]["sha256"], holesHash);
    EXPECT_EQ(lines["/gone"]["condition"], "overwritten");
    EXPECT_TRUE(lines["/gone"]["reason"].is_string());
    const std::string before = ReadWholeFile(report);
    ExpectRefused(1, {"save", image_, "--to", target_, "--report", report}, "stays as it is");
    ExpectRefused(1, {"save", image_, "--to", target_, "--report", image_}, "on the medium");
    EXPECT_EQ(ReadWholeFile(report), before);
    ExpectRefused(1, {"save", image_, "--to", image_, "--report", At("new")}, "");
    EXPECT_FALSE(fs::exists(At("new"))) << "nothing came of that run";
}

TEST_F(SaveExactTest, WhatNobodyAskedForIsLeft) {
    const Json totals = Json::parse(Save(0, {"--json", "--condition", "whole", "/B", "/gone"}).Out);
    EXPECT_EQ(FilesBelow(target_), (Texts{{"B/two.txt", "two names"}}));
    EXPECT_EQ(totals["links"], 0) << "its folder isn't saved";
    EXPECT_EQ(totals["streamsLeft"], 3);
    EXPECT_EQ(totals["leftOut"], 1);
    fs::remove_all(target_);
    for (const auto& [words, files] :
         {std::pair{Words{"--name", "TWO*", "/B"}, Texts{{"B/two.txt", "two names"}}},
          {Words{"--name", "TWO*", "--match-case"}, Texts{}},
          {Words{"--min-size", "9", "--max-size", "9", "--existing"},
           Texts{{"A/two.txt", "two names"}, {"B/two.txt", "two names"}}}}) {
        const RunResult run = Save(0, words, files.empty() ? "Nothing there is what you asked for." : "");
        EXPECT_EQ(FilesBelow(target_), files);
        EXPECT_EQ(fs::exists(target_ + "/A"), files.size() == 2) << "made for what is in it alone";
        EXPECT_FALSE(Contains(run.Out, "left out")) << run.Out;
        fs::remove_all(target_);
    }
    Save(0, {"/B", "/A"});
    EXPECT_EQ(FilesBelow(target_), (Texts{{"A/two.txt", "two names"}, {"B/two.txt", "two names"}}))
        << "another path names its folder";
}

TEST_F(SaveExactTest, AFileIsFoundByEachOfItsNames) {
    RecordBuilder file = volume_.NewRecord(45);
    for (const auto& [parent, name] :
         {std::pair{40U, u"one"}, {41U, u"other"}, {40U, u"link"}, {41U, u"listed"}}) {
        file.AddFileName({.Parent = FileReference(parent), .Name = name});
    }
    volume_.PlaceRecord(file.AddData(BytesOf("4 names")));
    for (const auto& [path, files, links] :
         {std::tuple{"/A", Texts{{"A/two.txt", "two names"}, {"A/one", "4 names"}, {"A/link", "4 names"}}, 1},
          {"/A/two.txt", Texts{{"A/two.txt", "two names"}}, 0},
          {"/A/one", Texts{{"A/one", "4 names"}}, 0}}) {
        EXPECT_EQ(Json::parse(Save(0, {"--json", path}).Out)["links"], links) << path;
        EXPECT_EQ(FilesBelow(target_), files);
        fs::remove_all(target_);
    }
    Save(0, {"--as-stored", "/A"});
    EXPECT_EQ(FilesBelow(target_), Texts{}) << "knows one name a file";
    EXPECT_EQ(Expect(0, {"cat", image_, "/A/link"}).Out, "4 names");
    EXPECT_EQ(LinesOf(Expect(0, {"list", image_, "/A/two.txt"}).Out).size(), 1U);
    ExpectRefused(1, {"cat", image_, "/A/stale.txt"}, "No file has the path");
}

TEST_F(SaveExactTest, ANameThatCannotBeALinkIsACopy) {
    fs::create_directories(target_ + "/A");
    if (::mount("none", (target_ + "/A").c_str(), "tmpfs", 0, "size=400k") != 0) {
        GTEST_SKIP() << "no other file system can be mounted here";
    }
    const Json totals = Json::parse(Save(3, {"--json"}).Out);
    const Texts files = FilesBelow(target_ + "/A");
    ::umount((target_ + "/A").c_str());
    EXPECT_EQ(files, (Texts{{"two.txt", "two names"}}));
    EXPECT_EQ(totals["links"], 1);
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
