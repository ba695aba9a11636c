#include "CliHelpers.h"

#include <gtest/gtest.h>

namespace thntfs::test {

namespace {

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class BrowseTest : public testing::Test {
protected:
    BrowseTest() {
        volume_.AddFolder({.Number = 40, .Name = u"Letters"});
        volume_.AddFile(TextFile(41, u"one.txt", "the live one", 40));
        volume_.AddFolder({.Number = 42, .Parent = 40, .Name = u"Old", .Live = false});
        AddDeleted(TextFile(43, u"two.txt", "a deleted one", 42));
        AddDeleted(TextFile(44, u"one.txt", "its deleted twin", 40));
        volume_.AddFile(TextFile(45, u"lost.txt", "no folder", 1234));
        volume_.AddFile(TextFile(46, u"bell\a\x1b[31m\nred\x7f.txt", "signs"));
        volume_.AddFile(TextFile(47, u"lone\xD800half.txt", "half"));
        volume_.AddFile(TextFile(48, u"a/b", "slash"));
        volume_.AddFile(TextFile(49, u"\u202egnp.exe", "turned"));
        volume_.WriteTo(image_);
    }

    void AddDeleted(FileSpec file) {
        file.Live = false;
        volume_.AddFile(file);
    }

    RunResult Run(Words words, const Words& more = {}) {
        words.insert(words.begin() + 1, image_);
        words.insert(words.end(), more.begin(), more.end());
        return RunCli(words);
    }

    std::vector<std::string> PathsOf(const Words& words) {
        std::vector<std::string> paths;
        for (const Json& entry : JsonLines(Run(words, {"--json"}).Out)) {
            paths.push_back(entry["path"]);
        }
        return paths;
    }

    using Paths = std::vector<std::string>;

    VolumeBuilder volume_;
    ScratchFolder scratch_;
    std::string image_ = scratch_ / "image";
};

TEST_F(BrowseTest, ListGivesFoldersAndWhatIsBelow) {
    EXPECT_EQ(PathsOf({"list", "/Letters"}), (Paths{"/Letters/one.txt", "/Letters/Old", "/Letters/one.txt"}));
    EXPECT_EQ(PathsOf({"list", "/Letters", "--recursive"}),
              (Paths{"/Letters/one.txt", "/Letters/Old", "/Letters/Old/two.txt", "/Letters/one.txt"}));
    EXPECT_EQ(PathsOf({"list", "--recursive", "--deleted"}),
              (Paths{"/Letters/Old", "/Letters/Old/two.txt", "/Letters/one.txt", "#1234"}));
    EXPECT_EQ(PathsOf({"list", "/Letters/Old/two.txt"}), (Paths{"/Letters/Old/two.txt"}));
    EXPECT_EQ(PathsOf({"list", "#1234"}), (Paths{"#1234/lost.txt"}));
    EXPECT_EQ(PathsOf({"list", "/"}).size() + 1, PathsOf({"list"}).size())
        << "the lost folder stands at the top";
}

TEST_F(BrowseTest, ListMarksDeletedEntries) {
    const std::string text = Run({"list", "/Letters"}).Out;
    EXPECT_TRUE(text.starts_with("  ")) << text;
    EXPECT_TRUE(Contains(text, "\nD ")) << text;
    EXPECT_TRUE(Contains(text, "/Letters/Old/\n")) << text;
}

TEST_F(BrowseTest, CatTakesTheLiveOneOfSeveral) {
    const RunResult run = Run({"cat", "/Letters/one.txt"});
    EXPECT_EQ(run.Status, 0);
    EXPECT_EQ(run.Out, "the live one");
    EXPECT_TRUE(Contains(run.Err, "2 files have the path /Letters/one.txt; this is record 41, live"))
        << run.Err;
    EXPECT_EQ(Run({"cat", "--record", "44"}).Out, "its deleted twin");
    EXPECT_EQ(Run({"cat", "#1234/lost.txt"}).Out, "no folder");
    EXPECT_EQ(Run({"cat", "/a/b"}).Out, "slash") << "a name may hold a slash";
}

TEST_F(BrowseTest, WhatIsNotThereIsTold) {
    const std::vector<std::pair<Words, std::string>> cases = {
        {{"cat", "/Letters/nine.txt"}, "No file has the path /Letters/nine.txt"},
        {{"cat", "/Letters/one.txt/x"}, "No file has the path"},
        {{"cat", "/letters/ONE.TXT"}, "No file has the path"},
        {{"cat", "/Letters"}, "/Letters is a folder"},
        {{"cat", "--record", "40"}, "record 40"},
        {{"cat", "--record", "4294967295"}, "record 4294967295"},
        {{"list", "/nothing"}, "No entry has the path /nothing"},
        {{"list", "/nothing\x1b[2J"}, "\\x1b"},
    };
    for (const auto& [words, told] : cases) {
        const RunResult run = Run(words);
        EXPECT_EQ(run.Status, 1) << words.back();
        EXPECT_EQ(run.Out, "");
        EXPECT_TRUE(Contains(run.Err, told)) << told << ", but: " << run.Err;
    }
}

TEST_F(BrowseTest, ControlCharactersNeverReachTheTerminal) {
    for (const Words& words :
         {Words{"list", "-r"}, Words{"scan", "--files"}, Words{"save", "--to", scratch_ / "to"}}) {
        const RunResult run = Run(words);
        for (const char c : run.Out + run.Err) {
            EXPECT_TRUE(c == '\n' || (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F))
                << int{c} << words.front();
        }
        EXPECT_TRUE(Contains(run.Out + run.Err, "bell\\x07\\x1b[31m\\x0ared\\x7f.txt")) << words.front();
    }
}

TEST_F(BrowseTest, JsonKeepsEveryName) {
    for (const Json& entry : JsonLines(Run({"list", "-r", "--json"}).Out)) {
        if (entry["record"] == 46) {
            EXPECT_EQ(entry["name"], "bell\a\x1b[31m\nred\x7f.txt");
        }
        if (entry["record"] == 47) {
            const std::string path = entry["path"];
            EXPECT_EQ(Run({"cat", path}).Out, "half") << "a path that was listed leads back to the file";
        }
    }
}

TEST_F(BrowseTest, ScanShowsTheTree) {
    const RunResult run = Run({"scan"});
    EXPECT_EQ(run.Status, 0);
    EXPECT_EQ(run.Err, "");
    EXPECT_TRUE(Contains(run.Out, "Letters/\n"));
    EXPECT_TRUE(Contains(run.Out, "  Old/  [deleted]\n"));
    EXPECT_TRUE(Contains(run.Out, "#1234/  [folder lost]\n"));
    EXPECT_FALSE(Contains(run.Out, "two.txt"));
    EXPECT_TRUE(Contains(Run({"scan", "--files"}).Out, "two.txt"));
    const Json totals = Json::parse(Run({"scan", "--json"}).Out);
    EXPECT_EQ(totals["files"], 8);
    EXPECT_EQ(totals["deletedFiles"], 2);
    EXPECT_EQ(totals["lostFolders"], 1);
}

} // namespace

} // namespace thntfs::test
