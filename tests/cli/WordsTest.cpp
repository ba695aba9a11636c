#include "CliFixture.h"

namespace thntfs::test {

namespace {

class WordsTest : public CliTest {};

TEST_F(WordsTest, WrongWordsAreToldAndGiveTwo) {
    const std::string image = PackedPath("basic");
    const std::string many = PackedPath("logical");
    const std::string tree = At("scan.tht");
    const std::string found = At("found.thd");
    Expect(0, {"scan", image, "--save-info", tree});
    Expect(0, {"partitions", image, "--save-info", found});
    const std::vector<std::pair<Words, std::string>> cases = {
        {{}, "--help"},
        {{"frobnicate", image}, "'frobnicate'"},
        {{"list", image, "/a", "/b"}, "PATH"},
        {{"list", image, "--partition", "0"}, "'0' is not a whole number"},
        {{"list", image, "--partition", "-1"}, "'-1' is not a whole number"},
        {{"list", image, "--partition", "4294967296"}, "'4294967296' is not a whole number"},
        {{"list", image, "--partition", "2"}, "There is no partition 2"},
        {{"list", image, "--save-info", At("x")}, "--save-info"},
        {{"cat", image}, "PATH or --record"},
        {{"cat", image, "/a", "--record", "1"}, "--record"},
        {{"partitions", image, "--range", "0:1"}, "--search"},
        {{"partitions", image, "--search", "thorough", "--range", "5"}, "'5' is no range of sectors"},
        {{"partitions", image, "--search", "thorough", "--range", "5:"}, "'5:' is no range of sectors"},
        {{"partitions", image, "--search", "thorough", "--range", "5:5"}, "The range holds no sector"},
        {{"partitions", image, "--search", "thorough", "--range", "99999999:999999999"},
         "sectors 0 to 51199"},
        {{"scan", tree, "--partition", "1"}, "holds the scan of one volume"},
        {{"list", tree, "--turbo"}, "--turbo can't be used with " + tree},
        {{"partitions", tree, "--search", "quick"}, "--search can't be used with " + tree},
        {{"scan", found, "--search", "quick"}, "holds the volumes that were found"},
        {{"scan", found, "--partition", "2"}, "There is no partition 2"},
        {{"scan", image, "--save-info", ""}, "'' is not the name of a file"},
        {{"scan", image, "--save-info", At("folder/")}, "is not the name of a file"},
        {{"scan", image, "--save-info", At("same"), "--log", At("same.tht")}, "The log can't go to"},
    };
    for (const auto& [words, told] : cases) {
        ExpectRefused(2, words, told);
    }
    const RunResult list = Expect(2, {"scan", many}, "choose one with --partition");
    unsigned number = 0;
    for (const std::string& line : LinesOf(RunCli({"partitions", many}).Out)) {
        EXPECT_TRUE(line.starts_with(std::to_string(++number) + "  start sector ")) << line;
        EXPECT_TRUE(Contains(list.Err, "  " + line + "\n")) << line;
    }
    EXPECT_TRUE(Contains(Expect(0, {"--help"}).Out, "Exit status: 0 done"));
    EXPECT_TRUE(Contains(Expect(0, {"partitions", "--help"}).Out, "--range FIRST:END"));
    EXPECT_TRUE(Contains(Expect(0, {"--version"}).Out, "2.0.1"));
}

} // namespace

} // namespace thntfs::test
