#include "CliFixture.h"

#include <array>
#include <fstream>

namespace thntfs::test {

namespace {

class BadMediumTest : public CliTest {
protected:
    std::string Make(const std::string& name, ConstBytes bytes) {
        WriteFileBytes(At(name), bytes);
        return At(name);
    }

    // A partition table whose entries lead wherever the test says, behind it a volume of one file.
    std::string MakeWithTable(const std::string& name, const std::vector<PartitionEntry>& entries) {
        VolumeBuilder volume;
        volume.AddFile(TextFile(40, u"file.txt", "text"));
        volume.PutSectors(0, EncodePartitionTable(entries));
        volume.WriteTo(At(name));
        return At(name);
    }
};

TEST_F(BadMediumTest, WhatHoldsNoVolumeIsToldByEveryCommand) {
    const Texts cases = {
        {At("nothing"), "Cannot open"},
        {scratch_.Path(), "is a folder"},
        {Make("empty", {}), "is empty"},
        {Make("short", ByteVector(100, 0x55)), ""},
        {Make("text", BytesOf(std::string(3000, 'x'))), "No NTFS volume"},
        {Make("noise", PatternBytes(1U << 20U)), "No NTFS volume"},
        {Make("zeros", ByteVector(1U << 20U)), "nothing but zeros"},
        {MakeWithTable("astray", {{0x07, 500, 16384}}), "No NTFS volume"},
        {MakeWithTable("circle", {{0x05, 0, 100}}), "No NTFS volume"},
        {MakeWithTable("behind", {{0x07, 0xFFFFFFF0, 16384}}), "No NTFS volume"},
    };
    const std::array<Words, 5> commands = {{{"partitions", "?"},
                                            {"scan", "?"},
                                            {"list", "?"},
                                            {"cat", "?", "/file.txt"},
                                            {"save", "?", "--to", target_}}};
    std::size_t i = 0;
    for (const auto& [path, told] : cases) {
        for (std::size_t count = 0; count < 2; ++count) {
            Words words = commands.at(i++ % commands.size());
            words[1] = path;
            ExpectRefused(1, words, told);
        }
    }
    const std::string encrypted = Make("encrypted", BytesOf("\xEB\x58\x90-FVE-FS-" + std::string(5000, ' ')));
    const std::string told = "this volume is fully encrypted";
    ExpectRefused(1, {"save", encrypted, "--to", target_}, told);
    ExpectRefused(1, {"scan", encrypted, "-p", "1", "--search", "thorough"}, told);
    EXPECT_FALSE(fs::exists(target_));
    EXPECT_EQ(Json::parse(Expect(1, {"partitions", encrypted, "--json"}).Out)[0]["encrypted"], true);
    EXPECT_EQ(Json::parse(Expect(1, {"partitions", At("text"), "--json"}).Out), Json::array());
}

TEST_F(BadMediumTest, AVolumeWithoutABootSectorKeepsItsNumberAndIsNotPassedOver) {
    fs::copy_file(PackedPath("logical"), image_);
    Json wanted = Json::parse(RunCli({"partitions", image_, "--json"}).Out);
    for (const std::uint64_t sector : {std::uint64_t{12351}, wanted[1]["startSector"].get<std::uint64_t>()}) {
        Expect(3, {"partitions", image_}, "", WithBadSectors(image_, {sector})); // a table, a boot sector
    }
    const RunResult second = RunCli({"list", image_, "-p", "2", "-r"});
    std::fstream(image_, std::ios::in | std::ios::out)
        .seekp(wanted[0]["startSector"].get<std::int64_t>() * 512)
        .write(std::string(512, '\0').data(), 512);
    const Json left = Json::parse(RunCli({"partitions", image_, "--json"}).Out);
    EXPECT_TRUE(left[0].contains("problem"));
    EXPECT_EQ(left.back()["startSector"], wanted[0]["startSector"]) << "by the boot sector's copy";
    EXPECT_TRUE(left.back()["verified"]);
    wanted[0] = left[0];
    wanted.push_back(left.back());
    wanted.back()["number"] = 6;
    EXPECT_EQ(left, wanted);
    EXPECT_EQ(RunCli({"list", image_, "-p", "2", "-r"}).Out, second.Out);
    ExpectRefused(1, {"list", image_, "-p", "1"}, "can't be taken");

    const std::string pair = MakeWithTable("pair", {{0x07, 64, 64}, {0x07, 128, 16384}});
    Expect(0, {"save", pair, "--to", target_}, "the only verified one is taken: 2  start sector 128");
    Expect(0, {"partitions", pair}, "--search");
}

// A copy that broke off: what lies before the break comes back, and what doesn't is told.
TEST_F(BadMediumTest, TruncatedImageGivesWhatIsLeft) {
    const std::string past = MakeWithTable("past", {{0x07, 128, 0xFFFFFFFF}});
    EXPECT_EQ(Expect(0, {"cat", past, "/file.txt"}).Out, "text");

    std::map<std::string, std::uint64_t> whole;
    for (const Json& entry : JsonLines(RunCli({"list", PackedPath("basic"), "-r", "--json"}).Out)) {
        whole[entry["path"]] = entry["size"];
    }
    fs::copy_file(PackedPath("basic"), image_);
    fs::resize_file(image_, fs::file_size(image_) / 16);
    const RunResult run =
        Expect(3, {"save", image_, "--to", target_, "--json"}, "behind the end of the medium");
    const Json totals = Json::parse(run.Out);
    EXPECT_GT(totals["damaged"], 0);
    EXPECT_LT(totals["damaged"], totals["files"]);
    for (const auto& [path, bytes] : FilesBelow(target_)) {
        if (!path.starts_with("Twice/")) { // where three files have one name
            EXPECT_EQ(bytes.size(), whole["/" + path]) << path;
        }
    }
    fs::resize_file(image_, 2049 * 512); // just the boot sector is left
    ExpectRefused(1, {"scan", image_}, "Critical structures not found");
    EXPECT_EQ(Json::parse(Expect(3, {"scan", image_, "--turbo", "--json"}).Out)["files"], 0);
}

TEST_F(BadMediumTest, ATableThatCannotBeReadIsToldAndNeverCalledComplete) {
    volume_.AddFile(TextFile(40, u"file.txt", "text"));
    volume_.PlaceRecord(41, BytesOf("BAAD" + std::string(1020, 'x')));
    volume_.WriteTo(image_);
    for (const Words& words : {Words{"scan", image_, "--json"},
                               {"list", image_, "--json"},
                               {"save", image_, "--json", "--to", target_}}) {
        const RunResult run = Expect(3, words, "At least 1 record could not be read (1 damaged)");
        EXPECT_TRUE(words.front() == "list" || !Json::parse(run.Out)["complete"]) << run.Out;
    }
    EXPECT_EQ(Expect(0, {"cat", image_, "/file.txt"}).Out, "text");

    // The runs of the table lead astray.
    volume_.PlaceRecord(volume_.NewRecord(0)
                            .AddStandardInformation(EqualTimes(), 6)
                            .AddFileName({.Name = u"$MFT", .Namespace = kNamespaceBoth})
                            .AddData({.Runs = {{64, 100}}}));
    volume_.WriteTo(image_);
    Expect(1, {"save", image_, "--to", target_}, "--turbo");
}

TEST_F(BadMediumTest, WhatAScanAddsAndLeavesOutIsTold) {
    VolumeGeometry geometry;
    geometry.MftRuns = {{200, 100}, {1, 99}}; // the second one is none to the plain decoder
    volume_ = VolumeBuilder(geometry);
    volume_.PlaceRecord(volume_.NewRecord(40).AddStandardInformation().AddData(BytesOf("nameless")));
    volume_.AddFile(TextFile(801, u"behind", "x"));
    volume_.WriteTo(image_);
    const std::string leftOut = "1 record without a usable name left out; --deep lists them";
    const RunResult whole = Expect(0, {"scan", image_, "--log", At("log")});
    EXPECT_TRUE(whole.Err.empty() && Contains(whole.Out, leftOut)) << whole.Err;
    EXPECT_TRUE(Contains(ReadWholeFile(At("log")), "1 record without a usable name left out"));
    EXPECT_EQ(Json::parse(RunCli({"scan", image_, "--json"}).Out)["recordsLeftOut"], 1);
    EXPECT_FALSE(Contains(Expect(3, {"list", image_, "--as-stored"}, "4 in lost pieces").Out, "/behind"));
    EXPECT_TRUE(Contains(Expect(0, {"list", image_, "-r"}).Out, "/behind"));
    EXPECT_EQ(Expect(0, {"cat", image_, "--deep", "#40"}).Out, "nameless");
    EXPECT_FALSE(Contains(Expect(0, {"scan", image_, "--deep", "--turbo"}).Out, "--deep"));

    for (std::uint32_t number = 76; number < 800; ++number) { // not in use
        volume_.PlaceRecord(number, ByteVector(1024));
    }
    volume_.WriteTo(image_);
    EXPECT_FALSE(Contains(Expect(0, {"list", image_}).Err, "Little")) << "a tenth of 804";
    volume_.PlaceRecord(75, ByteVector(1024));
    volume_.WriteTo(image_);
    Expect(0, {"list", image_},
           "Little was found: 79 records, where the volume should have about 804. --turbo may find more");
    EXPECT_FALSE(Contains(Expect(0, {"list", image_, "--turbo"}).Err, "Little"));
}

// A bad sector in a record costs that record, one in a file's data its own bytes.
TEST_F(BadMediumTest, BadSectorsAreWorkedAroundAndTold) {
    volume_.AddFile({.Number = 40, .Name = u"file.bin", .Content = PatternBytes(20000), .InClusters = true});
    volume_.AddFile(TextFile(42, u"lost.txt", "text"));
    volume_.WriteTo(image_);
    const std::string whole = ReadWholeFile(image_);
    std::string content = RunCli({"cat", image_, "/file.bin"}).Out;
    const std::uint64_t data = whole.find(content) / 512;
    const RunSetup faults = WithBadSectors(image_, {volume_.RecordSector(42), data + 1});
    for (const Words& words : {Words{"scan", image_, "--json"}, {"scan", image_, "--json", "--turbo"}}) {
        const Json totals = Json::parse(Expect(3, words, "Drive access error", faults).Out);
        EXPECT_EQ(totals["files"], 1);
        EXPECT_EQ(totals["complete"], false);
    }
    Expect(3, {"partitions", image_, "--search", "thorough"}, "Volumes whose traces lie there are missing",
           faults);
    Expect(1, {"list", image_}, "The partition table of " + image_ + " can't be read",
           WithBadSectors(image_, {0}));
    Expect(1, {"list", image_}, "look whether it is still attached",
           WithFaults(image_, "read", {{"FAULT_BAD", "0 99999999999"}}));
    content.replace(512, 512, 512, '\0');
    const RunSetup inData = WithBadSectors(image_, {data + 1});
    EXPECT_TRUE(Expect(3, {"cat", image_, "/file.bin"}, "zeros", inData).Out == content);
    Expect(3, {"save", image_, "/file.bin", "--to", target_}, "zeros", inData);
    EXPECT_TRUE(ReadWholeFile(target_ + "/file.bin") == content);
}

// The last read of each run fails, as all after it would; the run before has told which that is.
TEST_F(BadMediumTest, AMediumThatGoesIsNeverCalledDone) {
    volume_.AddFile({.Number = 40, .Name = u"file.bin", .Content = PatternBytes(200000), .InClusters = true});
    volume_.WriteTo(image_);
    const std::vector<std::pair<int, Words>> cases = {
        {3, {"scan", image_}},
        {3, {"list", image_, "-r"}},
        {1, {"cat", image_, "/file.bin"}},
        {1, {"save", image_, "--to", target_}},
        {3, {"partitions", image_, "--search", "thorough"}},
        {3, {"partitions", image_, "--search", "quick"}},
        {1, {"image", image_, At("copy")}},
    };
    for (const auto& [status, words] : cases) {
        RunCli(words, WithFaults(image_, "read", {{"FAULT_LIST", At("reads")}}));
        fs::remove(At("copy"));
        fs::remove(At("copy.map"));
        const std::string last = std::to_string(LinesOf(ReadWholeFile(At("reads"))).size());
        const RunResult run = Expect(status, words, "Error: The device is not ready",
                                     WithFaults(image_, "read", {{"FAULT_HOW", "gone"}, {"FAULT_AT", last}}));
        EXPECT_EQ(run.Err.find("Error:"), run.Err.rfind("Error:")) << "told once: " << run.Err;
    }
}

TEST_F(BadMediumTest, FilesWithoutTheRightToReadOrWrite) {
    MakeWithTable("image", {{0x07, 128, 16384}});
    fs::create_directories(target_);
    fs::permissions(target_, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                                 fs::perms::others_exec);
    fs::permissions(scratch_.Path(), fs::perms::others_exec, fs::perm_options::add);
    const RunSetup setup = {.AsNobody = ::geteuid() == 0};
    if (RunCli({"--version"}, setup).Status == 127) {
        GTEST_SKIP() << "the program can't be started here by a user without rights";
    }
    Expect(1, {"save", image_, "--to", target_}, "Cannot save to " + target_, setup);
    fs::permissions(image_, fs::perms::none);
    Expect(1, {"scan", image_}, "sudo", setup);
}

} // namespace

} // namespace thntfs::test
