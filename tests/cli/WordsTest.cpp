#include "CliFixture.h"
#include "support/BuildPaths.h"

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
}

// What stands in a text from a word on, up to the next end.
std::string Stretch(const std::string& text, const std::string& from, const std::string& end) {
    const std::size_t at = text.find(from);
    return at == std::string::npos ? std::string() : text.substr(at, text.find(end, at + from.size()) - at);
}

// Long options of a help text, without their hyphens.
std::vector<std::string> OptionsOf(const std::string& help) {
    std::vector<std::string> options;
    for (const std::string& line : LinesOf(help)) {
        if (const std::size_t at = line.find("--"); at < 8 && line[line.find_first_not_of(' ')] == '-') {
            options.push_back(line.substr(at + 2, line.find_first_of(" ,", at) - at - 2));
        }
    }
    return options;
}

TEST_F(WordsTest, ManualPageAndCompletionsHaveAllThatHelpHas) {
    const fs::path pages = fs::path(CliPath()).parent_path() / "pages" / "th-ntfs-cli";
    const auto page = [&pages](const char* ending) { return ReadWholeFile(pages.string() + ending); };
    const std::string bash = page(".bash"), zsh = page(".zsh"), fish = page(".fish");
    std::string manual = page(".1");
    std::erase(manual, '\\'); // in front of hyphens
    for (const std::string& line : LinesOf(Stretch(RunCli({"--help"}).Out, "Commands:\n  ", "\n\n"))) {
        const std::string command = line.substr(2, line.find(' ', 2) - 2);
        if (!line.starts_with("  ")) {
            continue;
        }
        const std::string help = RunCli({command, "--help"}).Out;
        EXPECT_GE(OptionsOf(help).size(), 3) << command;
        const std::string entries = Stretch(manual, ".SS " + command + "\n", "\n.S");
        const std::string words = Stretch(bash, "        " + command + ") COMPREPLY", "\n");
        const std::string specs = Stretch(zsh, "  " + command + ")\n", ";;");
        for (const std::string& option : OptionsOf(help)) {
            const std::string told = "--" + option;
            EXPECT_TRUE(option == "help" || Contains(entries, "--" + option)) << command << told;
            EXPECT_TRUE(Contains(words, told + " ") || Contains(words, told + "'")) << command << told;
            EXPECT_TRUE(Contains(specs, told + "'[") || Contains(specs, told + "=") ||
                        Contains(specs, told + ","))
                << command << told;
            EXPECT_TRUE(
                Contains(fish, "'__th_ntfs_cli_command " + command + "' --long-option " + option + " "))
                << command << told;
        }
    }
    EXPECT_TRUE(Contains(bash, "scan:--search | ") && Contains(bash, "'quick thorough'"));
    EXPECT_TRUE(Contains(bash, "image:1) _filedir ;;"));
    EXPECT_TRUE(Contains(manual, ".SH EXIT STATUS\n0 done, "));
    EXPECT_TRUE(Contains(Expect(0, {"--version"}).Out, "2.0.1\nBuilt with OpenSSL "));
}

} // namespace

} // namespace thntfs::test
