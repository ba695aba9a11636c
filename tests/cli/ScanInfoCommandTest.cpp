#include "CliFixture.h"

#include <array>
#include <regex>

namespace thntfs::test {

namespace {

class ScanInfoCommandTest : public CliTest {
protected:
    ScanInfoCommandTest() {
        volume_.AddFolder({.Number = 40, .Name = u"folder"});
        volume_.AddFile(TextFile(41, u"one.txt", "the first", 40));
        volume_.AddFile(TextFile(42, u"two.txt", "the second"));
        volume_.WriteTo(image_);
    }

    void SaveBoth() {
        Expect(0, {"scan", image_, "--save-info", tree_});
        Expect(0, {"partitions", image_, "--save-info", found_});
    }

    /// First and second lines of the rows of a log file.
    static std::vector<std::string> Rows(const std::string& path) {
        std::string text = ReadWholeFile(path);
        std::erase(text, '\r');
        const std::string rule = "\n" + std::string(68, '-');
        std::vector<std::string> rows;
        for (std::size_t at = text.find(rule) + rule.size(); at < text.size();) {
            const std::size_t end = text.find(rule, at);
            const std::vector<std::string> lines = LinesOf(text.substr(at + 1, end - at));
            rows.push_back(lines.at(0) + "|" + lines.at(1).substr(2));
            at = end + rule.size();
        }
        return rows;
    }

    std::string tree_ = At("scan.tht");
    std::string found_ = At("found.thd");
};

const std::string kRule = "|-----------------------------------";

TEST_F(ScanInfoCommandTest, ASavedScanServesEveryCommand) {
    SaveBoth();
    for (const Words& words : {Words{"scan", "?", "--json"},
                               {"list", "?", "-r"},
                               {"list", "?", "/folder", "--json"},
                               {"cat", "?", "/folder/one.txt"},
                               {"partitions", "?", "--json"}}) {
        Words direct = words;
        direct[1] = image_;
        const RunResult wanted = Expect(0, direct);
        for (const std::string& saved : {tree_, found_}) {
            Words loaded = words;
            loaded[1] = saved;
            const RunResult got = Expect(0, loaded);
            EXPECT_EQ(got.Out, std::regex_replace(wanted.Out, std::regex("\"mbr\""), "\"saved\""));
            EXPECT_EQ(got.Err, "");
        }
    }
    Expect(0, {"save", tree_, "--to", target_});
    EXPECT_EQ(FilesBelow(target_), (Texts{{"folder/one.txt", "the first"}, {"two.txt", "the second"}}));

    Expect(0, {"scan", found_, "--save-info", At("more")});
    EXPECT_EQ(ReadWholeFile(At("more.tht")), ReadWholeFile(tree_));

    fs::rename(image_, At("disk.tht")); // known by its content
    EXPECT_TRUE(Contains(RunCli({"list", At("disk.tht")}).Out, "/two.txt"));
}

TEST_F(ScanInfoCommandTest, AScanIsNotRepeated) {
    SaveBoth();
    VolumeBuilder().WriteTo(image_); // the table no longer names the files
    ExpectRefused(2, {"list", tree_}, "--anyway");
    EXPECT_TRUE(Contains(RunCli({"list", tree_, "--anyway"}).Out, "/two.txt"));
    EXPECT_FALSE(Contains(RunCli({"list", found_}).Out, "/two.txt"));
}

TEST_F(ScanInfoCommandTest, FilesThatDoNotLoad) {
    SaveBoth();
    const Texts cases = {{"magic.tht", "Not a valid Partition scan information."},
                         {"empty.tht", "Not a valid Partition scan information."},
                         {"empty.thd", "Not a valid Disk scan information\n"}};
    WriteFileBytes(At("empty.tht"), {});
    WriteFileBytes(At("empty.thd"), {});
    WriteFileBytes(At("magic.tht"), BytesOf("thnx" + ReadWholeFile(tree_).substr(4)));
    for (const auto& [name, told] : cases) {
        for (const char* command : {"partitions", "list"}) {
            ExpectRefused(1, {command, At(name)}, told);
        }
    }
    fs::rename(image_, At("moved.img"));
    const std::string gone = "Failed to open Partition scan information. Errorcode =2";
    EXPECT_TRUE(Contains(Expect(1, {"scan", tree_}, gone).Err, image_));
    fs::rename(At("moved.img"), image_);
    for (const std::uintmax_t bytes : {fs::file_size(image_) - 512, fs::file_size(image_) + 512}) {
        fs::resize_file(image_, bytes);
        Expect(0, {"list", tree_}, "It may be another disk");
    }
}

TEST_F(ScanInfoCommandTest, WhatCannotBeSavedIsToldAndMostOfItBeforeTheScan) {
    SaveBoth();
    const RunResult run = Expect(1, {"scan", image_, "--save-info", At("again")},
                                 "Cannot save scan information to " + At("again.tht"),
                                 {.MaxFileBytes = fs::file_size(tree_) - 1});
    EXPECT_FALSE(Contains(run.Err, "Partition")) << run.Err;

    fs::create_directories(At(std::string(200, 'd')));
    const std::string longPath = At(std::string(200, 'd') + "/" + std::string(60, 'i'));
    fs::copy_file(image_, longPath);
    ExpectRefused(1, {"scan", longPath, "--save-info", At("x")}, "255");
    Expect(0, {"scan", longPath});
    EXPECT_FALSE(fs::exists(At("x.tht")));

    const std::string image = ReadWholeFile(image_);
    const std::string saved = ReadWholeFile(tree_);
    fs::create_hard_link(image_, At("other.log"));
    fs::create_symlink(image_, At("image.tht"));
    for (const Words& words : {Words{"scan", image_, "--save-info", At("image.tht")},
                               {"scan", image_, "--save-info", At("image")},
                               {"scan", tree_, "--save-info", At("image")},
                               {"scan", image_, "--save-info", At("no/folder")},
                               {"list", image_, "--log", image_},
                               {"list", image_, "--log", At("other.log")},
                               {"list", image_, "--log", At("no/folder")},
                               {"list", image_, "--log", scratch_.Path()},
                               {"list", tree_, "--log", image_},
                               {"list", tree_, "--log", tree_},
                               {"save", tree_, "--to", image_}}) {
        ExpectRefused(1, words);
    }
    EXPECT_TRUE(ReadWholeFile(image_) == image && ReadWholeFile(tree_) == saved);
}

TEST_F(ScanInfoCommandTest, LogsTellWhatWasDone) {
    using Lines = std::vector<std::string>;
    const std::string selected = "Selected NTFS logical drive 1|Starting Sector 128, Size   8.000 MB";
    const std::string log = At("log"); // each run replaces it
    Expect(0, {"scan", image_, "--save-info", At("scan"), "--log", log});
    EXPECT_EQ(Rows(log), (Lines{"Selected: " + image_ + "|Image Processing Mode:Partition Table", selected,
                                "Processing Internal File System Structure..." + kRule,
                                "Completed processing Internal File System Structure" + kRule,
                                "Populating Directory Structure..." + kRule,
                                "Completed Populating Directory Structure" + kRule,
                                "Saving Scan Info File : scan|To Location : " + scratch_.Path(),
                                "Partition scan information saved successfully.|" + tree_}));
    const std::string end = std::to_string(fs::file_size(image_) / 512);
    for (const std::string& last : {end, std::string("999999999")}) {
        Expect(0, {"partitions", image_, "--search", "thorough", "--range", "5:" + last, "--log", log});
        EXPECT_EQ(Rows(log).at(1), "Searching Logical Volumes|Sectors Range 5 to " + end);
    }
    SaveBoth();
    const std::string folder = "|Location : " + scratch_.Path();
    Expect(0, {"list", tree_, "--log", log});
    EXPECT_EQ(Rows(log), (Lines{"Processing Scan Info File : scan.tht" + folder,
                                "Partition scan information opened successfully.|" + tree_}));
    Expect(0, {"list", found_, "--turbo", "--log", log});
    EXPECT_EQ(Rows(log), (Lines{"Processing Scan Info File : found.thd" + folder, selected,
                                "Disk scan information opened successfully.|" + found_,
                                "Started turbo scan of logical drive 1" + kRule,
                                "Completed turbo scan of logical drive 1" + kRule}));
    Expect(1, {"list", At("nothing"), "--log", log});
    EXPECT_EQ(Rows(log), Lines{});
}

// The log's file is made, written and closed; each of these calls fails once.
TEST_F(ScanInfoCommandTest, ALogThatIsNotWholeIsTold) {
    const Words words = {"list", image_, "--log", At("log")};
    RunSetup setup = WithFaults(At("log"), "write", {{"FAULT_LIST", At("calls")}});
    Expect(0, words, "", setup);
    const std::size_t calls = LinesOf(ReadWholeFile(At("calls"))).size();
    EXPECT_GT(calls, 8U);
    setup.Environment["FAULT_HOW"] = "once";
    for (std::size_t call = 1; call <= calls; ++call) {
        setup.Environment["FAULT_AT"] = std::to_string(call);
        const RunResult run = Expect(1, words, "Error creating log file " + At("log"), setup);
        EXPECT_EQ(call > 1, Contains(run.Out, "/two.txt")) << call;
    }
}

} // namespace

} // namespace thntfs::test
