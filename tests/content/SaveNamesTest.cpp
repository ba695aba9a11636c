#include "SaveFixture.h"
#include "content/TargetName.h"

namespace thntfs::test {

namespace {

class SaveNamesTest : public SaveFixture {
protected:
    /// Saves into a target that holds these files, each with one byte.
    SaveTotals SaveBeside(const Lines& there, const std::string& answers,
                          const SaveOptions& options = {.Report = true}) {
        fs::remove_all(Target);
        fs::create_directories(Target);
        for (const std::string& name : there) {
            WriteFileBytes(Target + "/" + name, BytesOf("-"));
        }
        Answers = answers;
        return SaveLoose(options);
    }
};

// The same for a small file and for one that gets its name last, which isn't read if it is skipped.
TEST_F(SaveNamesTest, TheAnswersDecideOnAFilesName) {
    const char* const cases[][3] = {{"", "/a a?, ", "a (2)"},
                                    {"b x/y c", "/a a?, /a b?, /a x/y!, ", "c"},
                                    {"b #", "/a a?, /a b?, ", "b (2)"},
                                    {"x/y #", "/a a?, /a x/y!, ", "x_y"},
                                    {"b -", "/a a?, /a b?, -/a, /a: skipped, ", ""}};
    for (const std::size_t bytes : {5000U, 1500000U}) {
        const ByteVector pattern = PatternBytes(bytes);
        Volume.AddFile({.Number = 40, .Name = u"a", .Content = pattern, .InClusters = true});
        Scan();
        for (const auto& [answers, told, name] : cases) {
            const bool skipped = *name == '\0';
            const SaveTotals totals = SaveBeside({"a", "b"}, answers);
            EXPECT_EQ(Listener->Told, told);
            EXPECT_EQ(totals.Files, skipped ? 0U : 1U);
            EXPECT_EQ(totals.Skipped, skipped ? 1U : 0U);
            ZipItems saved = Saved();
            EXPECT_TRUE(skipped || saved[name].Bytes == std::string(pattern.begin(), pattern.end())) << name;
            EXPECT_EQ(saved.size(), skipped ? 2U : 3U);
        }
        Plan->Log.clear();
        (void)SaveBeside({"a"}, "-");
        EXPECT_LT(Plan->Log.size(), 3U) << "its record alone";
    }
}

// One file gets its further name before the folder is come to.
TEST_F(SaveNamesTest, AFolderIsSkippedWithAllBelowIt) {
    Volume.PlaceRecord(Record(39, 40, u"1").AddFileName(NameIn(5, u"first")).AddData(BytesOf("text")));
    Volume.PlaceRecord(Record(45, 40, u"2").AddFileName(NameIn(5, u"last")).AddData(BytesOf("text")));
    Volume.AddFolder({.Number = 40, .Name = u"f"});
    Volume.AddFolder({.Number = 41, .Parent = 40, .Name = u"sub"});
    Volume.AddFile({.Number = 42, .Parent = 41, .Name = u"deep", .Content = BytesOf("text")});
    Scan();
    const SaveTotals skipped = SaveBeside({"f"}, "-");
    EXPECT_EQ(Listener->Told, "/f f?, -/f, /f/sub/deep: its folder was skipped, ");
    EXPECT_EQ(skipped.Skipped, 4U) << "the folder, a file and two names";
    EXPECT_EQ(skipped.Failed + skipped.Links + skipped.Folders, 0U);
    EXPECT_EQ(PathsIn(Saved()), "f first last ");
    EXPECT_EQ(SaveBeside({"f"}, "").Links, 2U);
    EXPECT_EQ(PathsIn(Saved()), "f f (2)/ f (2)/1 f (2)/2 f (2)/sub/ f (2)/sub/deep first last ");
    (void)SaveBeside({"f"}, "g");
    EXPECT_EQ(PathsIn(Saved()), "f first g/ g/1 g/2 g/sub/ g/sub/deep last ");
    fs::remove_all(Target);
    fs::create_directories(Target + "/f/sub/deep");
    EXPECT_EQ(SaveLoose().Failed, 0U);
    EXPECT_EQ(Listener->Told, "/f/sub/deep deep?, ") << "folders are gone into";
    EXPECT_EQ(PathsIn(Saved()), "f/ f/1 f/2 f/sub/ f/sub/deep/ f/sub/g first last ");
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
    (void)SaveBeside({"taken"}, "");
    EXPECT_TRUE(Listener->Told.ends_with("界!, /a:b a:b!, /CON CON!, /taken taken?, ")) << Listener->Told;
    EXPECT_EQ(PathsIn(Saved()), "_CON a_b fit taken taken (2) " + cut + " ");
    (void)SaveBeside({"taken", "o_taken"}, "", {.Prefix = "o/"});
    EXPECT_EQ(Listener->Told, "");
    EXPECT_EQ(PathsIn(Saved()),
              "fit o_CON o_a_b o_taken o_taken (2) o_" + cut.substr(0, cut.size() - 3) + " taken ");
    (void)SaveBeside({}, "one one two -");
    EXPECT_EQ(PathsIn(Saved()), "fit one taken two ");
    EXPECT_TRUE(SaveBeside({}, "x:y x:y stop: x:y").Stopped);
    EXPECT_EQ(std::count(Listener->Told.begin(), Listener->Told.end(), '!'), 3)
        << "a stop ends the questions";
    EXPECT_TRUE(Saved().empty());
}

TEST_F(SaveNamesTest, WhatIsWantedIsSaved) {
    Volume.AddFile({.Number = 40, .Name = u"live.TXT", .Content = PatternBytes(1500000), .InClusters = true});
    Volume.AddFile({.Number = 41, .Name = u"gone.txt", .Content = BytesOf("gone"), .Live = false});
    Volume.AddFile({.Number = 42, .Name = u"live.ÄÖ", .Content = BytesOf("four")});
    Volume.AddFile({.Number = 43, .Name = u"txt", .Content = BytesOf("five5")});
    Volume.AddFolder({.Number = 44, .Name = u"gone.d", .Live = false});
    Scan();
    FileTypes types;
    EXPECT_TRUE(types.Add(".Txt") && types.Add("äö") && !types.Add("TXT") && !types.Add("."));
    struct Case {
        SaveOptions Options;
        std::uint64_t Bytes, Left;
        std::string Paths;
    };
    const std::vector<Case> cases = {
        {{}, 1500013, 0, "gone.d/ gone.txt live.TXT live.ÄÖ txt "},
        {{.Reach = SaveReach::DeletedOnly}, 4, 0, "gone.d/ gone.txt "},
        {{.Reach = SaveReach::ExistingOnly}, 1500009, 0, "live.TXT live.ÄÖ txt "},
        {{.Reach = SaveReach::ExistingOnly, .Excluded = types}, 5, 2, "txt "},
        {{.Excluded = types}, 5, 3, "gone.d/ txt "}};
    for (const Case& one : cases) {
        const SaveTotals totals = SaveBeside({}, "", one.Options);
        EXPECT_EQ(std::pair(Work.Bytes, std::uint64_t{totals.TypesLeftOut}), std::pair(one.Bytes, one.Left));
        EXPECT_TRUE(Work.Files == totals.Files && Work.Bytes == totals.Bytes);
        EXPECT_EQ(MostBetween > 100, one.Bytes > 1500000);
        EXPECT_EQ(PathsIn(Saved()), one.Paths);
    }
}

} // namespace

} // namespace thntfs::test
