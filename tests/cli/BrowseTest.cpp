#include "CliFixture.h"
#include "cli/Output.h"

namespace thntfs::test {

namespace {

class BrowseTest : public CliTest {
protected:
    BrowseTest() {
        volume_.AddFolder({.Number = 40, .Name = u"Letters"});
        FileSpec read = TextFile(41, u"one.txt", "the live one", 40);
        read.Times.Accessed = FileTimeOfDay(2024, 3, 1);
        volume_.AddFile(read);
        volume_.AddFolder({.Number = 42, .Parent = 40, .Name = u"Old", .Live = false});
        volume_.AddFile(TextFile(43, u"two.txt", "a deleted one", 42, false));
        volume_.AddFile(TextFile(44, u"one.txt", "its deleted twin", 40, false));
        volume_.AddFile(TextFile(45, u"lost.txt", "no folder", 1234));
        volume_.AddFile(TextFile(46, u"bell\a\x1b[31m\nred\x7f.txt", "signs"));
        volume_.AddFile(TextFile(47, u"lone\xD800half.txt", "half"));
        volume_.AddFile(TextFile(48, u"a/b", "an older one", 5, false));
        volume_.AddFile(TextFile(49, u"a/b", "slash"));
        volume_.AddFile(TextFile(51, u"a/b", "again"));
        volume_.AddFile(
            {.Number = 50, .Name = u"\u202egnp.exe", .Content = BytesOf("turned"), .Times = FileTimes()});
        volume_.WriteTo(image_);
    }

    RunResult Run(Words words, const Words& more = {}, int status = 0, const std::string& told = "") {
        words.insert(words.begin() + 1, image_);
        words.insert(words.end(), more.begin(), more.end());
        return Expect(status, words, told);
    }

    using Paths = std::vector<std::string>;

    Paths PathsOf(const Words& words) {
        Paths paths;
        for (const Json& entry : JsonLines(Run(words, {"--json"}).Out)) {
            paths.push_back(entry["path"]);
        }
        return paths;
    }
};

TEST_F(BrowseTest, ListGivesFoldersAndWhatIsBelow) {
    EXPECT_EQ(PathsOf({"list", "/Letters"}), (Paths{"/Letters/one.txt", "/Letters/Old", "/Letters/one.txt"}));
    EXPECT_EQ(PathsOf({"list", "/Letters", "--recursive"}),
              (Paths{"/Letters/one.txt", "/Letters/Old", "/Letters/Old/two.txt", "/Letters/one.txt"}));
    EXPECT_EQ(PathsOf({"list", "--recursive", "--deleted"}),
              (Paths{"/Letters/Old", "/Letters/Old/two.txt", "/Letters/one.txt", "/a/b", "#1234"}));
    EXPECT_EQ(PathsOf({"list", "/Letters/Old/two.txt"}), (Paths{"/Letters/Old/two.txt"}));
    EXPECT_EQ(PathsOf({"list", "#1234"}), (Paths{"#1234/lost.txt"}));
    EXPECT_EQ(PathsOf({"list", "/"}).size() + 1, PathsOf({"list"}).size())
        << "the lost folder stands at the top";
    EXPECT_EQ(Run({"list", "/Letters"}).Out, "              12  2024-02-29               /Letters/one.txt\n"
                                             "D              -  2024-02-29               /Letters/Old/\n"
                                             "D             16  2024-02-29  whole        /Letters/one.txt\n");
}

TEST_F(BrowseTest, ListsForOtherProgramsAreSound) {
    FileSpec odd = TextFile(60, u"=a|\"b\",c", "odd", 40, false);
    odd.Times = {.Created = 116444736000000000 + 10'000'000, .Modified = 116444736029999999, .Accessed = 1};
    volume_.AddFile(odd);
    volume_.WriteTo(image_);
    EXPECT_EQ(Run({"list", "/Letters/=a|\"b\",c"}, {"--csv"}).Out,
              "Path,Folder,Deleted,Size,Created,Accessed,Condition,Share,Record,Parent\r\n"
              "\"/Letters/=a|\"\"b\"\",c\",0,1,3,,,whole,,60,40\r\n");
    EXPECT_EQ(Run({"list", "/Letters/=a|\"b\",c"}, {"--bodyfile"}).Out,
              "0|/Letters/=a^\"b\",c (deleted)|60|-/rrwxrwxrwx|0|0|3|0|2|0|1\n");
    const std::string lines = Run({"list", "-r"}, {"--bodyfile"}).Out;
    EXPECT_TRUE(Contains(lines, "0|#1234 (deleted)|1234|-/drwxrwxrwx|0|0|0|0|0|0|0\n")) << lines;
    EXPECT_EQ(std::ranges::count(lines, '\n'), std::ssize(PathsOf({"list", "-r"})));
    ExpectRefused(2, {"list", image_, "--csv", "--bodyfile"}, "excludes");
}

TEST_F(BrowseTest, FindListsWhatMatchesWhereverItIs) {
    EXPECT_EQ(PathsOf({"find", "ONE.*"}), (Paths{"/Letters/one.txt", "/Letters/one.txt"}));
    EXPECT_EQ(PathsOf({"find", "*.txt", "--deleted", "--min-size", "14"}), (Paths{"/Letters/one.txt"}));
    EXPECT_EQ(PathsOf({"find", "o*", "--accessed", "2024-03-01"}), (Paths{"/Letters/one.txt"}));
    EXPECT_EQ(PathsOf({"find", "o*", "--created", "2024-03-01:"}), Paths());
    EXPECT_EQ(PathsOf({"find", "t*", "--created", ":2024-02-29", "--max-size", "1K"}),
              (Paths{"/Letters/Old/two.txt"}));
    EXPECT_TRUE(
        Run({"find", "ONE.*"}, {"--match-case"}, 0, "Nothing on the volume matches ONE.*").Out.empty());
    for (const char* days : {"2024-02-30", ":", "2024-1-01", "1979-12-31:", "2024-01-01:2024-01-02:"}) {
        Run({"find", "*"}, {"--created", days}, 2, "names no days");
    }
}

TEST_F(BrowseTest, CatTakesTheLiveOneOfSeveral) {
    EXPECT_EQ(Run({"cat", "/Letters/one.txt"}, {}, 0,
                  "2 files have the path /Letters/one.txt; this is record 41, live")
                  .Out,
              "the live one");
    EXPECT_EQ(Run({"cat", "/a/b"}, {}, 0, "this is record 49, live").Out, "slash")
        << "the first live one, and a name may hold a slash";
    EXPECT_EQ(Run({"cat", "--record", "44"}).Out, "its deleted twin");
    EXPECT_EQ(Run({"cat", "#1234/lost.txt"}).Out, "no folder");
}

TEST_F(BrowseTest, WhatIsNotThereIsTold) {
    const std::vector<std::pair<Words, std::string>> cases = {
        {{"cat", "/Letters/nine.txt"}, "No file has the path /Letters/nine.txt"},
        {{"cat", "/Letters/one.txt/x"}, "No file has the path"},
        {{"cat", "/letters/ONE.TXT"}, "No file has the path"},
        {{"cat", "/Letters"}, "/Letters is a folder"},
        {{"cat", "--record", "40"}, "record 40"},
        {{"list", "/nothing\x1b[2J"}, "No entry has the path /nothing\\x1b[2J"},
    };
    for (const auto& [words, told] : cases) {
        EXPECT_EQ(Run(words, {}, 1, told).Out, "");
    }
}

TEST_F(BrowseTest, ControlCharactersNeverReachTheTerminal) {
    for (const Words& words : {Words{"list", "-r"}, {"scan", "--files"}, {"save", "--to", target_}}) {
        const RunResult run = Run(words);
        for (const char c : run.Out + run.Err) {
            EXPECT_TRUE(c == '\n' || (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F))
                << int{c} << words.front();
        }
        EXPECT_TRUE(Contains(run.Out + run.Err, "bell\\x07\\x1b[31m\\x0ared\\x7f.txt")) << words.front();
    }
}

TEST_F(BrowseTest, ScanShowsTheTree) {
    const RunResult run = Run({"scan"});
    EXPECT_EQ(run.Err, "");
    EXPECT_TRUE(Contains(run.Out, " Root/\n  Letters/\n    Old/  [deleted]\n#1234/  [folder lost]\n"))
        << run.Out;
    EXPECT_TRUE(Contains(run.Out, "Files:   10, of them 3 deleted\n"
                                  "Folders: 4, of them 2 deleted, 1 of these known by number alone\n"
                                  "Bytes:   87 (87 bytes)\n"))
        << run.Out;
    EXPECT_TRUE(Contains(Run({"scan", "--files"}).Out, "      two.txt  13 bytes  [deleted]\n"));
}

TEST(JsonTextTest, IsThatOfTheLibrary) {
    std::string text = "plain ä€\U0001F600";
    for (unsigned char sign = 0; sign < 0x80; ++sign) {
        text += static_cast<char>(sign);
    }
    std::string out;
    AppendJsonText(out, text);
    EXPECT_EQ('"' + out + '"', Json(text).dump());
}

TEST_F(BrowseTest, JsonIsThatOfTheContract) {
    EXPECT_EQ(Json::parse(Run({"partitions"}, {"--json"}).Out),
              Json::parse(R"([{"number":1,"startSector":128,"totalSectors":16384,"bytesPerSector":512,
                               "sectorsPerCluster":8,"clusterBytes":4096,"fileRecordBytes":1024,
                               "indexBlockBytes":4096,"mftSector":160,"mftCluster":4,"mftMirrCluster":1024,
                               "serial":"1122334455667788","evidence":0,"table":"mbr","verified":true,
                               "label":"","records":256}])"))
        << "the size is that of the table";
    std::map<std::uint32_t, Json> entries;
    for (const Json& entry : JsonLines(Run({"list", "-r"}, {"--json"}).Out)) {
        entries[entry["record"]] = entry;
    }
    EXPECT_EQ(entries[41], // flags: live, archive
              Json::parse(R"({"id":3,"path":"/Letters/one.txt","name":"one.txt","folder":false,"live":true,
                              "size":12,"record":41,"parent":40,"recordSector":242,"flags":40,
                              "created":"2024-02-29","accessed":"2024-03-01","condition":"whole"})"));
    EXPECT_EQ(entries[46]["name"], "bell\a\x1b[31m\nred\x7f.txt");
    EXPECT_EQ(entries[50]["created"], nullptr);
    EXPECT_EQ(entries[50]["accessed"], nullptr);
    EXPECT_EQ(Run({"cat", entries[47]["path"]}).Out, "half") << "a listed path leads back to the file";

    const Json scan = Json::parse(Run({"scan"}, {"--json"}).Out);
    EXPECT_EQ(scan, Json::parse(R"({"files":10,"folders":4,"bytes":87,"deletedFiles":3,"deletedFolders":2,
                                    "lostFolders":1,"complete":true,"recordsNotRead":0,
                                    "recordsLeftOut":0})"));
    const Json save = Json::parse(Run({"save"}, {"--json", "--to", target_}).Out);
    EXPECT_EQ(save, Json::parse(R"({"files":10,"folders":3,"bytes":87,"damaged":0,"failed":0,
                                    "complete":true,"target":")" +
                                target_ +
                                R"(","links":0,"streams":0,"streamsLeft":0,"leftOut":0,"typesLeftOut":0})"));
}

} // namespace

} // namespace thntfs::test
