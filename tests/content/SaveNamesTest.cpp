#include "SaveFixture.h"
#include "content/TargetName.h"

namespace thntfs::test {

namespace {

namespace fs = std::filesystem;

class SaveNamesTest : public SaveFixture {
protected:
    /// Saves into a target that holds these files, each with one byte.
    SaveTotals SaveBeside(const Lines& there, std::deque<NameAnswer> answers,
                          const SaveOptions& options = {}) {
        fs::remove_all(Target);
        fs::create_directories(Target);
        for (const std::string& name : there) {
            WriteFileBytes(Target + "/" + name, BytesOf("-"));
        }
        Listener.Answers = std::move(answers);
        Listener.Asked.clear();
        Listener.SkippedPaths.clear();
        return SaveLoose(options);
    }
};

// The same for a small file and for one that gets its name last, which isn't read if it is skipped.
TEST_F(SaveNamesTest, TheAnswersDecideOnAFilesName) {
    struct Case {
        std::deque<NameAnswer> Answers;
        Lines Asked;
        std::string Name; ///< in the target; empty where it is skipped
    };
    const std::vector<Case> cases = {
        {{}, {"/a a"}, "a (2)"},
        {{Rename("c")}, {"/a a"}, "c"},
        {{Rename("b"), Rename("x/y"), Rename("c")}, {"/a a", "/a b", "/a x/y!"}, "c"},
        {{Rename("b"), {}}, {"/a a", "/a b"}, "b (2)"},
        {{Rename("x/y"), {}}, {"/a a", "/a x/y!"}, "x_y"},
        {{Rename("b"), Skip()}, {"/a a", "/a b"}, ""}};
    for (const std::size_t bytes : {5000U, 1500000U}) {
        Volume.AddFile({.Number = 40, .Name = u"a", .Content = PatternBytes(bytes), .InClusters = true});
        Scan();
        const std::string content = [&] {
            const ByteVector pattern = PatternBytes(bytes);
            return std::string(pattern.begin(), pattern.end());
        }();
        SaveOptions options;
        options.Report = true;
        for (const Case& one : cases) {
            const SaveTotals totals = SaveBeside({"a", "b"}, one.Answers, options);
            EXPECT_EQ(Listener.Asked, one.Asked);
            EXPECT_EQ(totals.Files, one.Name.empty() ? 0U : 1U);
            EXPECT_EQ(totals.Skipped, one.Name.empty() ? 1U : 0U);
            EXPECT_EQ(Listener.Reasons["/a"], one.Name.empty() ? "skipped" : "");
            EXPECT_EQ(Listener.SkippedPaths, one.Name.empty() ? Lines{"/a"} : Lines{});
            ZipItems saved = Saved();
            EXPECT_TRUE(one.Name.empty() || saved[one.Name].Bytes == content) << one.Name;
            EXPECT_EQ(saved.size(), one.Name.empty() ? 2U : 3U);
        }
        Plan->Log.clear();
        (void)SaveBeside({"a"}, {Skip()});
        EXPECT_LT(Plan->Log.size(), 3U) << "its record alone";
    }
}

// One file gets its further name before the folder is come to.
TEST_F(SaveNamesTest, AFolderIsSkippedWithAllBelowIt) {
    for (const std::uint32_t number : {39U, 45U}) {
        Volume.PlaceRecord(Volume.NewRecord(number)
                               .AddStandardInformation()
                               .AddFileName(NameIn(40, number == 39 ? u"1" : u"2"))
                               .AddFileName(NameIn(5, number == 39 ? u"first" : u"last"))
                               .AddData(BytesOf("text")));
    }
    Volume.AddFolder({.Number = 40, .Name = u"f"});
    Volume.AddFolder({.Number = 41, .Parent = 40, .Name = u"sub"});
    Volume.AddFile({.Number = 42, .Parent = 41, .Name = u"deep", .Content = BytesOf("text")});
    Scan();
    const SaveTotals skipped = SaveBeside({"f"}, {Skip()}, {.Report = true});
    EXPECT_EQ(Listener.Asked, (Lines{"/f f"}));
    EXPECT_EQ(Listener.SkippedPaths, (Lines{"/f"}));
    EXPECT_EQ(skipped.Skipped, 4U) << "the folder, a file and two names";
    EXPECT_EQ(skipped.Failed + skipped.Links + skipped.Folders, 0U);
    EXPECT_EQ(Listener.Reasons["/f/sub/deep"], "its folder was skipped");
    EXPECT_EQ(PathsIn(Saved()), (Lines{"f", "first", "last"}));
    for (const auto& [answer, name] : {std::pair{NameAnswer(), "f (2)/"}, {Rename("g"), "g/"}}) {
        EXPECT_EQ(SaveBeside({"f"}, {answer}).Links, 2U);
        const std::string folder = name;
        Lines paths = {"f",          "first",      "last",          folder,
                       folder + "1", folder + "2", folder + "sub/", folder + "sub/deep"};
        std::sort(paths.begin(), paths.end());
        EXPECT_EQ(PathsIn(Saved()), paths);
    }
    fs::remove_all(Target);
    fs::create_directories(Target + "/f/sub/deep");
    Listener.Asked.clear();
    Listener.Answers = {Rename("deeper")};
    EXPECT_EQ(SaveLoose().Failed, 0U);
    EXPECT_EQ(Listener.Asked, (Lines{"/f/sub/deep deep"})) << "folders are gone into";
    EXPECT_TRUE(fs::exists(Target + "/f/sub/deeper"));
}

TEST_F(SaveNamesTest, NamesThatWillNotDoAreAskedAboutOrGetThePrefix) {
    const std::u16string longName(255, u'界');
    std::uint32_t number = 40;
    for (const std::u16string& name : {longName, std::u16string(u"a:b"), std::u16string(u"CON"),
                                       std::u16string(u"taken"), std::u16string(u"fit")}) {
        Volume.AddFile({.Number = number++, .Name = name, .Content = BytesOf("text")});
    }
    Scan();
    const std::string cut = TargetName(longName);
    (void)SaveBeside({"taken"}, {});
    ASSERT_EQ(Listener.Asked.size(), 4U);
    EXPECT_TRUE(Listener.Asked[0].ends_with("界!"));
    EXPECT_EQ(Lines(Listener.Asked.begin() + 1, Listener.Asked.end()),
              (Lines{"/a:b a:b!", "/CON CON!", "/taken taken"}));
    EXPECT_EQ(PathsIn(Saved()), (Lines{"_CON", "a_b", "fit", "taken", "taken (2)", cut}));
    SaveOptions options;
    options.Prefix = "o/";
    (void)SaveBeside({"taken", "o_taken"}, {}, options);
    EXPECT_TRUE(Listener.Asked.empty());
    EXPECT_EQ(PathsIn(Saved()), (Lines{"fit", "o_CON", "o_a_b", "o_taken", "o_taken (2)",
                                       "o_" + cut.substr(0, cut.size() - 3), "taken"}));
    fs::remove_all(Target);
    Listener.Answers = {Rename("one"), Rename("one"), Rename("two"), Skip()};
    EXPECT_EQ(SaveLoose().Skipped, 1U);
    EXPECT_EQ(PathsIn(Saved()), (Lines{"fit", "one", "taken", "two"}));
}

TEST_F(SaveNamesTest, AStopEndsTheQuestions) {
    struct Stubborn : ScriptedListener {
        NameAnswer NameTaken(const std::string&, const std::string&, NameTrouble) override {
            Engine.ScanRunFlag = ++Questions < 5 ? 1 : 0;
            return Rename("x:y");
        }
        int Questions = 0;
    } listener;
    Volume.AddFile({.Number = 40, .Name = u"a:b", .Content = BytesOf("text")});
    Scan();
    std::unique_ptr<TargetFolder> target;
    ASSERT_EQ(TargetFolder::OpenTargetFolder(Target, true, target), kErrorNone);
    Engine.ScanRunFlag = 1;
    EntrySaver saver(std::move(target), listener, {});
    saver.Save(FindEntries(""));
    EXPECT_TRUE(saver.Finish().Stopped);
    EXPECT_EQ(listener.Questions, 5);
    EXPECT_TRUE(Saved().empty());
}

// What is counted before is what is done, at each moment not more, and in the end all of it.
TEST_F(SaveNamesTest, WhatIsWantedIsCountedAndDone) {
    Volume.AddFile({.Number = 40, .Name = u"live.TXT", .Content = PatternBytes(1500000), .InClusters = true});
    Volume.AddFile({.Number = 41, .Name = u"gone.txt", .Content = BytesOf("gone"), .Live = false});
    Volume.AddFile({.Number = 42, .Name = u"live.ÄÖ", .Content = BytesOf("four")});
    Volume.AddFile({.Number = 43, .Name = u"txt", .Content = BytesOf("five5")});
    Volume.AddFolder({.Number = 44, .Name = u"gone.d", .Live = false});
    Scan();
    FileTypes types;
    EXPECT_TRUE(types.Add(".Txt") && types.Add("äö") && !types.Add("TXT") && !types.Add("."));
    struct Case {
        SaveReach Reach;
        FileTypes Excluded;
        std::uint64_t Bytes, Left;
        Lines Paths;
    };
    for (const Case& one : std::vector<Case>{
             {SaveReach::All, {}, 1500013, 0, {"gone.d/", "gone.txt", "live.TXT", "live.ÄÖ", "txt"}},
             {SaveReach::DeletedOnly, {}, 4, 0, {"gone.d/", "gone.txt"}},
             {SaveReach::ExistingOnly, {}, 1500009, 0, {"live.TXT", "live.ÄÖ", "txt"}},
             {SaveReach::ExistingOnly, types, 5, 2, {"txt"}},
             {SaveReach::All, types, 5, 3, {"gone.d/", "txt"}}}) {
        fs::remove_all(Target);
        std::unique_ptr<TargetFolder> target;
        ASSERT_EQ(TargetFolder::OpenTargetFolder(Target, true, target), kErrorNone);
        const SaveOptions options{.Reach = one.Reach, .Excluded = one.Excluded};
        const SaveWork work = CountSaveWork(FindEntries(""), options);
        EntrySaver saver(std::move(target), Listener, options);
        std::uint64_t before = 0;
        bool between = false;
        Reports.OnProgress = [&] {
            const std::uint64_t bytes = saver.Done().Bytes;
            EXPECT_TRUE(before <= bytes && bytes <= work.Bytes);
            between = between || (bytes > 100 && bytes < 1500000);
            before = bytes;
        };
        saver.Save(FindEntries(""));
        const SaveTotals totals = saver.Finish();
        EXPECT_EQ(work.Bytes, one.Bytes);
        EXPECT_EQ(saver.Done().Bytes, work.Bytes);
        EXPECT_EQ(saver.Done().Files, work.Files);
        EXPECT_EQ(totals.Files, work.Files);
        EXPECT_EQ(totals.TypesLeftOut, one.Left);
        EXPECT_EQ(between, one.Bytes > 1500000);
        EXPECT_EQ(PathsIn(Saved()), one.Paths);
    }
}

} // namespace

} // namespace thntfs::test
