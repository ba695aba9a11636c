#include "CliFixture.h"

namespace thntfs::test {

namespace {

class WordsTest : public CliTest {};

TEST_F(WordsTest, WrongWordsAreToldAndGiveTwo) {
    const std::string image = PackedPath("basic");
    const std::string many = PackedPath("logical");
    const std::vector<std::pair<Words, std::string>> cases = {
        {{}, "--help"},
        {{"frobnicate", image}, "'frobnicate'"},
        {{"list"}, "MEDIUM"},
        {{"list", "--frobnicate", image}, "--frobnicate"},
        {{"list", image, "/a", "/b"}, "PATH"},
        {{"list", image, "--partition", "0"}, "'0' is not a whole number"},
        {{"list", image, "--partition", "-1"}, "'-1' is not a whole number"},
        {{"list", image, "--partition", "one"}, "'one' is not a whole number"},
        {{"list", image, "--partition", "4294967296"}, "'4294967296' is not a whole number"},
        {{"list", image, "--partition", "2"}, "There is no partition 2"},
        {{"list", many, "--partition", "6"}, "There is no partition 6"},
        {{"cat", image}, "PATH or --record"},
        {{"cat", image, "/a", "--record", "1"}, "--record"},
        {{"save", image}, "--to"},
        {{"partitions", image, "--partition", "1"}, "--partition"},
        {{"partitions", image, "--range", "0:1"}, "--search"},
        {{"partitions", image, "--search", "thorough", "--range", "5"}, "'5' is no range of sectors"},
        {{"partitions", image, "--search", "thorough", "--range", "5:"}, "'5:' is no range of sectors"},
        {{"partitions", image, "--search", "thorough", "--range", "5:5"}, "The range holds no sector"},
        {{"partitions", image, "--search", "thorough", "--range", "99999999:999999999"},
         "sectors 0 to 51199"},
    };
    for (const auto& [words, told] : cases) {
        ExpectRefused(2, words, told);
    }
    const RunResult list = Expect(2, {"scan", many}, "choose one with --partition");
    for (const std::string& line : LinesOf(RunCli({"partitions", many}).Out)) {
        EXPECT_TRUE(Contains(list.Err, "  " + line + "\n")) << line;
    }
}

TEST_F(WordsTest, HelpTellsEveryWord) {
    const std::vector<std::pair<Words, Words>> cases = {
        {{"--help"}, {"partitions", "scan", "list", "cat", "save", "Exit status: 0 done", "#1234/file"}},
        {{"partitions", "--help"}, {"MEDIUM", "--json", "--search", "--range FIRST:END", "--save-info FILE"}},
        {{"scan", "--help"}, {"MEDIUM", "--json", "--partition N", "--turbo", "--files"}},
        {{"list", "--help"}, {"MEDIUM", "PATH", "--json", "--partition N", "--recursive", "--deleted"}},
        {{"cat", "--help"}, {"MEDIUM", "PATH", "--json", "--partition N", "--record N"}},
        {{"save", "--help"}, {"MEDIUM", "PATH", "--json", "--partition N", "--to DIR", "--deleted"}},
        {{"image", "--help"}, {"SOURCE", "FILE", "--resume", "--retry N", "--log FILE"}},
        {{"--version"}, {"2.0.1"}},
    };
    for (const auto& [words, wanted] : cases) {
        const RunResult run = Expect(0, words);
        EXPECT_EQ(run.Err, "");
        for (const std::string& told : wanted) {
            EXPECT_TRUE(Contains(run.Out, told)) << words.front() << " doesn't tell " << told;
        }
    }
}

} // namespace

} // namespace thntfs::test
