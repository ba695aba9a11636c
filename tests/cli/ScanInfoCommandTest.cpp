#include "CliHelpers.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>

namespace thntfs::test {

namespace {

namespace fs = std::filesystem;

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class ScanInfoCommandTest : public testing::Test {
protected:
    ScanInfoCommandTest() {
        VolumeBuilder volume;
        volume.AddFolder({.Number = 40, .Name = u"folder"});
        volume.AddFile(TextFile(41, u"one.txt", "the first", 40));
        volume.AddFile(TextFile(42, u"two.txt", "the second"));
        volume.WriteTo(Image());
    }

    [[nodiscard]] std::string Image() const { return scratch_ / "disk.img"; }
    [[nodiscard]] std::string At(const std::string& name) const { return scratch_ / name; }

    void SaveBoth() {
        ASSERT_EQ(RunCli({"scan", Image(), "--save-info", At("scan.tht")}).Status, 0);
        ASSERT_EQ(RunCli({"partitions", Image(), "--save-info", At("found.thd")}).Status, 0);
    }

    /// First and second lines of the rows of a log file, whose layout is looked at on the way.
    static std::vector<std::string> Rows(const std::string& path) {
        const std::string text = ReadWholeFile(path);
        const std::string rule = "\r\n" + std::string(68, '-');
        std::vector<std::string> rows;
        std::size_t at = text.find(rule);
        EXPECT_TRUE(text.starts_with(std::string(24, '-') +
                                     "Tarnholt Volume Salvage (NTFS) v2\t.0.1  Process Log" +
                                     std::string(24, '-') + "\r\n\r\n" + rule));
        while (at + rule.size() < text.size()) {
            const std::size_t next = text.find(rule, at + rule.size());
            std::istringstream part(text.substr(at + rule.size(), next - at - rule.size()));
            const auto line = [&part](const std::string& start) {
                std::string got;
                std::getline(part, got, '\r');
                EXPECT_TRUE(got.starts_with(start)) << got;
                return got.substr(start.size());
            };
            line("");
            const std::string name = line("\n");
            rows.push_back(name + "|" + line("\n\t\t"));
            EXPECT_EQ(line("\n\t\t").size(), std::string("Thu Nov 19 2026 06:21:28").size());
            at = next;
        }
        return rows;
    }

    ScratchFolder scratch_;
};

using Lines = std::vector<std::string>;
constexpr const char* kRule = "|-----------------------------------";

TEST_F(ScanInfoCommandTest, ASavedScanServesEveryCommand) {
    SaveBoth();
    for (const Words& words : {Words{"scan", "?", "--files"},
                               {"scan", "?", "--json"},
                               {"list", "?", "-r"},
                               {"list", "?", "/folder", "--json"},
                               {"cat", "?", "/folder/one.txt"},
                               {"cat", "?", "--record", "42"},
                               {"partitions", "?", "--json"},
                               {"partitions", "?"}}) {
        Words direct = words;
        direct[1] = Image();
        const RunResult wanted = RunCli(direct);
        EXPECT_EQ(wanted.Status, 0);
        for (const char* saved : {"scan.tht", "found.thd"}) {
            Words loaded = words;
            loaded[1] = At(saved);
            const RunResult got = RunCli(loaded);
            EXPECT_EQ(got.Status, 0) << got.Err;
            EXPECT_EQ(got.Out, wanted.Out);
            EXPECT_EQ(got.Err, "");
        }
    }
    EXPECT_EQ(RunCli({"save", At("scan.tht"), "--to", At("out")}).Status, 0);
    EXPECT_EQ(FilesBelow(At("out")), (std::map<std::string, std::string>{{"folder/one.txt", "the first"},
                                                                         {"two.txt", "the second"}}));
}

TEST_F(ScanInfoCommandTest, AScanIsNotRepeated) {
    SaveBoth();
    VolumeBuilder empty;
    empty.WriteTo(Image()); // the table no longer names the files
    const RunResult refused = RunCli({"list", At("scan.tht")});
    EXPECT_EQ(refused.Status, 2);
    EXPECT_TRUE(Contains(refused.Err, "--anyway")) << refused.Err;
    EXPECT_TRUE(Contains(RunCli({"list", At("scan.tht"), "--anyway"}).Out, "/two.txt"));
    EXPECT_FALSE(Contains(RunCli({"list", At("found.thd")}).Out, "/two.txt"));
}

TEST_F(ScanInfoCommandTest, FilesAreKnownByTheirContentAndLoadFromAnyFolder) {
    SaveBoth();
    fs::rename(At("scan.tht"), At("renamed.thd"));
    EXPECT_TRUE(Contains(RunCli({"list", At("renamed.thd")}).Out, "/two.txt"));
    fs::create_directory(At("sub"));
    fs::rename(At("found.thd"), At("sub/plain"));
    EXPECT_TRUE(Contains(RunCli({"list", At("sub/plain")}).Out, "/two.txt"));
    fs::rename(Image(), At("disk.tht"));
    EXPECT_TRUE(Contains(RunCli({"list", At("disk.tht")}).Out, "/two.txt"));
}

TEST_F(ScanInfoCommandTest, SavedAgainFromASavedResult) {
    SaveBoth();
    EXPECT_EQ(RunCli({"scan", At("scan.tht"), "--save-info", At("again.tht")}).Status, 0);
    EXPECT_EQ(ReadWholeFile(At("again.tht")), ReadWholeFile(At("scan.tht")));
    EXPECT_EQ(RunCli({"partitions", At("scan.tht"), "--save-info", At("again.thd")}).Status, 0);
    EXPECT_EQ(ReadWholeFile(At("again.thd")), ReadWholeFile(At("found.thd")));
    EXPECT_EQ(RunCli({"scan", At("found.thd"), "--save-info", At("more")}).Status, 0);
    EXPECT_EQ(ReadWholeFile(At("more.tht")), ReadWholeFile(At("scan.tht")));
}

TEST_F(ScanInfoCommandTest, FilesThatDoNotLoad) {
    SaveBoth();
    const std::string scan = ReadWholeFile(At("scan.tht"));
    const std::string found = ReadWholeFile(At("found.thd"));
    struct BadFile {
        const char* Name;
        std::string Bytes;
        const char* Told;
    };
    std::string wrongMagic = scan;
    wrongMagic[3] = 'x';
    for (const BadFile& bad :
         {BadFile{"cut.tht", scan.substr(0, scan.size() - 1), "Not a valid Partition scan information."},
          {"short.tht", scan.substr(0, 100), "Not a valid Partition scan information."},
          {"magic.tht", wrongMagic, "Not a valid Partition scan information."},
          {"empty.tht", "", "Not a valid Partition scan information."},
          {"cut.thd", found.substr(0, found.size() - 1), "Not a valid Disk scan information\n"},
          {"empty.thd", "", "Not a valid Disk scan information\n"}}) {
        const std::string text = bad.Bytes;
        WriteFileBytes(At(bad.Name), BytesOf(text));
        for (const char* command : {"partitions", "scan", "list"}) {
            const RunResult result = RunCli({command, At(bad.Name)});
            EXPECT_EQ(result.Status, 1) << bad.Name;
            EXPECT_TRUE(Contains(result.Err, bad.Told)) << result.Err;
            EXPECT_EQ(result.Out, "");
        }
    }
    fs::rename(Image(), At("moved.img"));
    const RunResult gone = RunCli({"scan", At("scan.tht")});
    EXPECT_EQ(gone.Status, 1);
    EXPECT_TRUE(Contains(gone.Err, "Failed to open Partition scan information. Errorcode =2"));
    EXPECT_TRUE(Contains(gone.Err, Image()));
    fs::rename(At("moved.img"), Image());
    for (const std::uintmax_t bytes : {fs::file_size(Image()) - 512, fs::file_size(Image()) + 512}) {
        fs::resize_file(Image(), bytes);
        const RunResult changed = RunCli({"list", At("scan.tht")});
        EXPECT_EQ(changed.Status, 0);
        EXPECT_TRUE(Contains(changed.Err, "It may be another disk")) << bytes;
    }
}

TEST_F(ScanInfoCommandTest, WordsThatMakeNoSense) {
    SaveBoth();
    for (const Words& words : {Words{"scan", At("scan.tht"), "--partition", "1"},
                               {"list", At("scan.tht"), "--turbo"},
                               {"partitions", At("scan.tht"), "--search", "quick"},
                               {"scan", At("found.thd"), "--search", "quick"},
                               {"scan", At("found.thd"), "--partition", "2"},
                               {"scan", Image(), "--save-info", ""},
                               {"scan", Image(), "--save-info", At("folder/")},
                               {"list", Image(), "--save-info", At("x")},
                               {"scan", Image(), "--save-info", At("same"), "--log", At("same.tht")}}) {
        const RunResult result = RunCli(words);
        EXPECT_EQ(result.Status, 2) << words[1];
        EXPECT_NE(result.Err, "");
    }
    EXPECT_EQ(RunCli({"scan", At("found.thd"), "--partition", "1", "--turbo"}).Status, 0);
}

TEST_F(ScanInfoCommandTest, AScanThatCannotBeSavedIsNotCalledAPartition) {
    SaveBoth();
    RunSetup setup;
    setup.MaxFileBytes = fs::file_size(At("scan.tht")) - 1;
    const RunResult result = RunCli({"scan", Image(), "--save-info", At("again.tht")}, setup);
    EXPECT_EQ(result.Status, 1);
    EXPECT_TRUE(Contains(result.Err, "Cannot save scan information to " + At("again.tht"))) << result.Err;
    EXPECT_FALSE(Contains(result.Err, "Partition")) << result.Err;
}

TEST_F(ScanInfoCommandTest, WhatCannotBeSavedIsRefusedBeforeTheScan) {
    const std::string image = ReadWholeFile(Image());
    fs::create_directories(At(std::string(200, 'd')));
    const std::string longPath = At(std::string(200, 'd') + "/" + std::string(60, 'i'));
    fs::copy_file(Image(), longPath);
    const RunResult tooLong = RunCli({"scan", longPath, "--save-info", At("x")});
    EXPECT_EQ(tooLong.Status, 1);
    EXPECT_TRUE(Contains(tooLong.Err, "255"));
    EXPECT_EQ(tooLong.Out, "");
    EXPECT_EQ(RunCli({"scan", longPath}).Status, 0);

    fs::rename(Image(), At("image.tht"));
    fs::create_hard_link(At("image.tht"), At("other.log"));
    for (const Words& words : {Words{"scan", At("image.tht"), "--save-info", At("image.tht")},
                               {"scan", At("image.tht"), "--save-info", At("image")},
                               {"scan", At("image.tht"), "--save-info", At("no/folder")},
                               {"list", At("image.tht"), "--log", At("image.tht")},
                               {"list", At("image.tht"), "--log", At("other.log")},
                               {"list", At("image.tht"), "--log", At("no/folder")},
                               {"list", At("image.tht"), "--log", scratch_.Path()}}) {
        const RunResult result = RunCli(words);
        EXPECT_EQ(result.Status, 1) << words.back();
        EXPECT_EQ(result.Out, "");
    }
    EXPECT_EQ(ReadWholeFile(At("image.tht")), image);
    EXPECT_FALSE(fs::exists(At("x.tht")));
}

TEST_F(ScanInfoCommandTest, ASavedResultGuardsItsMedium) {
    SaveBoth();
    const std::string image = ReadWholeFile(Image());
    const std::string saved = ReadWholeFile(At("scan.tht"));
    EXPECT_EQ(RunCli({"list", At("scan.tht"), "--log", Image()}).Status, 1);
    EXPECT_EQ(RunCli({"list", At("scan.tht"), "--log", At("scan.tht")}).Status, 1);
    EXPECT_EQ(RunCli({"save", At("scan.tht"), "--to", Image()}).Status, 1);
    EXPECT_EQ(ReadWholeFile(Image()), image);
    EXPECT_EQ(ReadWholeFile(At("scan.tht")), saved);
}

TEST_F(ScanInfoCommandTest, LogOfAScanAndASave) {
    EXPECT_EQ(RunCli({"scan", Image(), "--save-info", At("scan"), "--log", At("log.txt")}).Status, 0);
    EXPECT_EQ(Rows(At("log.txt")),
              (Lines{"Selected: " + Image() + "|Image Processing Mode:Partition Table",
                     "Selected NTFS logical drive 1|Starting Sector 128, Size   8.000 MB",
                     std::string("Processing Internal File System Structure...") + kRule,
                     std::string("Completed processing Internal File System Structure") + kRule,
                     std::string("Populating Directory Structure...") + kRule,
                     std::string("Completed Populating Directory Structure") + kRule,
                     "Saving Scan Info File : scan|To Location : " + scratch_.Path(),
                     "Partition scan information saved successfully.|" + At("scan.tht")}));
}

TEST_F(ScanInfoCommandTest, LogsOfLoadsAndFailures) {
    SaveBoth();
    const std::string folder = "|Location : " + scratch_.Path();
    EXPECT_EQ(RunCli({"list", At("scan.tht"), "--log", At("a.txt")}).Status, 0);
    EXPECT_EQ(Rows(At("a.txt")),
              (Lines{"Processing Scan Info File : scan.tht" + folder,
                     "Partition scan information opened successfully.|" + At("scan.tht")}));
    EXPECT_EQ(RunCli({"list", At("found.thd"), "--turbo", "--log", At("b.txt")}).Status, 0);
    EXPECT_EQ(Rows(At("b.txt")), (Lines{"Processing Scan Info File : found.thd" + folder,
                                        "Selected NTFS logical drive 1|Starting Sector 128, Size   8.000 MB",
                                        "Disk scan information opened successfully.|" + At("found.thd"),
                                        std::string("Started turbo scan of logical drive 1") + kRule,
                                        std::string("Completed turbo scan of logical drive 1") + kRule}));
    fs::remove(Image());
    EXPECT_EQ(RunCli({"list", At("found.thd"), "--log", At("b.txt")}).Status, 1); // the old log is replaced
    EXPECT_EQ(Rows(At("b.txt")),
              (Lines{"Processing Scan Info File : found.thd" + folder,
                     "Failed to open Disk scan information. Errorcode =2|" + At("found.thd")}));
    EXPECT_EQ(RunCli({"list", At("nothing"), "--log", At("c.txt")}).Status, 1);
    EXPECT_EQ(Rows(At("c.txt")), Lines{});
}

// The table has a second piece of 32 GiB, which takes seconds to walk.
TEST_F(ScanInfoCommandTest, AStoppedScanIsKeptToo) {
    VolumeBuilder volume;
    volume.AddFile(TextFile(40, u"early.txt", "text"));
    volume.PlaceRecord(volume.NewRecord(0)
                           .AddStandardInformation(EqualTimes(), 6)
                           .AddFileName({.Name = u"$MFT", .Namespace = kNamespaceBoth})
                           .AddData({.Runs = {{64, 4}, {std::uint64_t{8} << 20U, 4096}}}));
    volume.WriteTo(Image());
    fs::resize_file(Image(), std::uint64_t{33} << 30U);
    RunSetup setup;
    setup.Interrupt = [this] { return Contains(ReadWholeFile(At("log.txt")), "Processing Internal"); };
    const RunResult run =
        RunCli({"scan", Image(), "--json", "--save-info", At("scan.tht"), "--log", At("log.txt")}, setup);
    EXPECT_EQ(run.Status, 3) << run.Err;
    const std::vector<std::string> rows = Rows(At("log.txt"));
    ASSERT_EQ(rows.size(), 8U);
    EXPECT_EQ(rows[3], std::string("Aborted processing Internal File System Structure") + kRule);
    EXPECT_TRUE(rows[7].starts_with("Partition scan information saved successfully."));
    const RunResult loaded = RunCli({"scan", At("scan.tht"), "--json"});
    EXPECT_EQ(loaded.Status, 0) << loaded.Err;
    EXPECT_EQ(Json::parse(loaded.Out)["files"], Json::parse(run.Out)["files"]);
}

TEST_F(ScanInfoCommandTest, ALogIsNotWrittenOverACopy) {
    for (const std::string& log : {At("copy.th2"), At("copy.th2.map")}) {
        EXPECT_EQ(RunCli({"image", Image(), At("copy.th2"), "--log", log}).Status, 2);
        EXPECT_FALSE(fs::exists(log));
    }
    WriteFileBytes(At("clone"), ByteVector(fs::file_size(Image())));
    EXPECT_EQ(RunCli({"clone", Image(), At("clone"), "--yes", "--log", At("clone")}).Status, 2);
}

TEST_F(ScanInfoCommandTest, ALogThatCannotBeWrittenIsTold) {
    const RunResult result = RunCli({"list", Image(), "--log", "/dev/full"});
    EXPECT_EQ(result.Status, 1);
    EXPECT_TRUE(Contains(result.Err, "Error creating log file"));
    EXPECT_TRUE(Contains(result.Out, "/two.txt"));
}

} // namespace

} // namespace thntfs::test
