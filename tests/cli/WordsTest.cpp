#include "CliHelpers.h"

#include <gtest/gtest.h>

namespace thntfs::test {

namespace {

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

struct WrongWords {
    Words Given;
    std::string Told; ///< stands in the message
};

TEST(WordsTest, WrongWordsAreToldAndGiveTwo) {
    const std::string image = PackedPath("basic");
    const std::string many = PackedPath("logical");
    const std::vector<WrongWords> cases = {
        {{}, "--help"},
        {{"frobnicate", image}, "'frobnicate'"},
        {{"--frobnicate"}, "'--frobnicate'"},
        {{"list"}, "MEDIUM"},
        {{"list", "--frobnicate", image}, "--frobnicate"},
        {{"list", image, "/a", "/b"}, "PATH"},
        {{"list", image, "--partition"}, "--partition"},
        {{"list", image, "--partition", "0"}, "'0' is not a whole number"},
        {{"list", image, "--partition", "-1"}, "'-1' is not a whole number"},
        {{"list", image, "--partition", "one"}, "'one' is not a whole number"},
        {{"list", image, "--partition", "4294967296"}, "'4294967296' is not a whole number"},
        {{"list", image, "--partition", "2"}, "There is no partition 2"},
        {{"scan", many}, "choose one with --partition"},
        {{"list", many, "--partition", "6"}, "There is no partition 6"},
        {{"cat", image}, "PATH or --record"},
        {{"cat", image, "/a", "--record", "1"}, "--record"},
        {{"cat", image, "--record", "4294967296"}, "'4294967296' is not a whole number"},
        {{"save", image}, "--to"},
        {{"partitions", image, "--partition", "1"}, "--partition"},
    };
    for (const WrongWords& wrong : cases) {
        const RunResult run = RunCli(wrong.Given);
        EXPECT_EQ(run.Status, 2) << run.Err;
        EXPECT_EQ(run.Out, "");
        EXPECT_TRUE(Contains(run.Err, wrong.Told)) << wrong.Told << ", but: " << run.Err;
    }
}

TEST(WordsTest, SeveralPartitionsAreListedWhereOneMustBeChosen) {
    const RunResult partitions = RunCli({"partitions", PackedPath("logical")});
    const RunResult list = RunCli({"list", PackedPath("logical")});
    std::istringstream lines(partitions.Out);
    std::size_t count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        EXPECT_TRUE(Contains(list.Err, "  " + line + "\n")) << line;
    }
    EXPECT_EQ(count, 5U);
}

struct Help {
    Words Given;
    std::vector<std::string> Told;
};

TEST(WordsTest, HelpTellsEveryWord) {
    const std::vector<Help> cases = {
        {{"--help"}, {"partitions", "scan", "list", "cat", "save", "Exit status: 0 done", "#1234/file"}},
        {{"partitions", "--help"}, {"MEDIUM", "--json"}},
        {{"scan", "--help"}, {"MEDIUM", "--json", "--partition N"}},
        {{"list", "--help"}, {"MEDIUM", "PATH", "--json", "--partition N", "--recursive", "--deleted"}},
        {{"cat", "--help"}, {"MEDIUM", "PATH", "--json", "--partition N", "--record N"}},
        {{"save", "--help"}, {"MEDIUM", "PATH", "--json", "--partition N", "--to DIR", "--deleted"}},
        {{"--version"}, {"2.0.1"}},
    };
    for (const Help& help : cases) {
        const RunResult run = RunCli(help.Given);
        EXPECT_EQ(run.Status, 0);
        EXPECT_EQ(run.Err, "");
        for (const std::string& told : help.Told) {
            EXPECT_TRUE(Contains(run.Out, told)) << help.Given.front() << " doesn't tell " << told;
        }
    }
}

// ------------------------------------------------------------------------ JSON

using Type = Json::value_t;

const std::vector<std::pair<std::string, Type>> kPartitionFields = {
    {"number", Type::number_unsigned},
    {"startSector", Type::number_unsigned},
    {"totalSectors", Type::number_unsigned},
    {"bytesPerSector", Type::number_unsigned},
    {"sectorsPerCluster", Type::number_unsigned},
    {"clusterBytes", Type::number_unsigned},
    {"fileRecordBytes", Type::number_unsigned},
    {"indexBlockBytes", Type::number_unsigned},
    {"mftSector", Type::number_unsigned},
    {"mftCluster", Type::number_unsigned},
    {"mftMirrCluster", Type::number_unsigned},
    {"serial", Type::string},
    {"evidence", Type::number_unsigned}};

const std::vector<std::pair<std::string, Type>> kEntryFields = {{"id", Type::number_unsigned},
                                                                {"path", Type::string},
                                                                {"name", Type::string},
                                                                {"folder", Type::boolean},
                                                                {"live", Type::boolean},
                                                                {"size", Type::number_unsigned},
                                                                {"record", Type::number_unsigned},
                                                                {"parent", Type::number_unsigned},
                                                                {"recordSector", Type::number_unsigned},
                                                                {"flags", Type::number_unsigned},
                                                                {"created", Type::string},
                                                                {"accessed", Type::string}};

void ExpectFields(const Json& object, const std::vector<std::pair<std::string, Type>>& fields) {
    ASSERT_EQ(object.size(), fields.size()) << object;
    std::size_t i = 0;
    for (const auto& [name, value] : object.items()) {
        EXPECT_EQ(name, fields[i].first);
        EXPECT_EQ(value.type(), fields[i].second) << name;
        ++i;
    }
}

TEST(JsonTest, FieldsAreThoseOfTheContract) {
    const Json partitions = Json::parse(RunCli({"partitions", PackedPath("logical"), "--json"}).Out);
    ASSERT_TRUE(partitions.is_array());
    for (const Json& object : partitions) {
        ExpectFields(object, kPartitionFields);
        EXPECT_EQ(object["serial"].get<std::string>().find_first_not_of("0123456789ABCDEF"),
                  std::string::npos);
        EXPECT_EQ(object["serial"].get<std::string>().size(), 16U);
    }
    for (const Json& object : JsonLines(RunCli({"list", PackedPath("names"), "--json", "--recursive"}).Out)) {
        ExpectFields(object, kEntryFields);
    }
}

TEST(JsonTest, TotalsAreOneObject) {
    const ScratchFolder scratch;
    const Json scan = Json::parse(RunCli({"scan", PackedPath("basic"), "--json"}).Out);
    for (const char* field : {"files", "folders", "bytes", "deletedFiles", "deletedFolders", "lostFolders"}) {
        EXPECT_TRUE(scan.at(field).is_number_unsigned()) << field;
    }
    EXPECT_EQ(scan.at("complete"), true);
    const Json save =
        Json::parse(RunCli({"save", PackedPath("basic"), "--json", "--to", scratch / "to"}).Out);
    for (const char* field : {"files", "folders", "bytes", "damaged", "failed"}) {
        EXPECT_TRUE(save.at(field).is_number_unsigned()) << field;
    }
    EXPECT_EQ(save.at("files"), scan.at("files"));
    EXPECT_EQ(save.at("complete"), true);
    EXPECT_EQ(save.at("target"), scratch / "to");
}

TEST(JsonTest, NoVolumesAreAnEmptyArray) {
    const ScratchFolder scratch;
    WriteFileBytes(scratch / "text", BytesOf("To whom it may concern\n"));
    const RunResult run = RunCli({"partitions", scratch / "text", "--json"});
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(Json::parse(run.Out), Json::array());
}

TEST(JsonTest, DatesThatAreNoneAreNull) {
    const ScratchFolder scratch;
    VolumeBuilder volume;
    FileSpec file = TextFile(40, u"undated.txt", "text");
    file.Times = {};
    volume.AddFile(file);
    file = TextFile(41, u"dated.txt", "text");
    file.Times = EqualTimes(FileTimeOfDay(2031, 12, 9));
    file.Times.Accessed = FileTimeOfDay(2032, 1, 2);
    volume.AddFile(file);
    volume.WriteTo(scratch / "image");
    const auto entries = JsonLines(RunCli({"list", scratch / "image", "--json", "/"}).Out);
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0]["created"], nullptr);
    EXPECT_EQ(entries[0]["accessed"], nullptr);
    EXPECT_EQ(entries[1]["created"], "2031-12-09");
    EXPECT_EQ(entries[1]["accessed"], "2032-01-02");
}

} // namespace

} // namespace thntfs::test
