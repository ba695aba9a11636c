#include "CliFixture.h"

#include <chrono>
#include <fstream>

namespace thntfs::test {

namespace {

constexpr std::uint64_t kGibibyte = 1U << 30U;
constexpr std::uint64_t kFarCluster = 4096; ///< behind the small volume, in the part that is all hole

class StopTest : public CliTest {
protected:
    StopTest() { fs::create_directories(temp_); }

    /// The image goes on as one hole, up to its last sector.
    void WriteImage(std::uint64_t bytes) {
        volume_.WriteTo(image_);
        fs::resize_file(image_, bytes - 512);
        std::ofstream(image_, std::ios::app) << std::string(512, '\0');
    }

    /// A run with the temporary folder of the test, stopped a while after the scan has begun.
    RunSetup StoppedScan() {
        RunSetup setup = {.Environment = {{"TMPDIR", temp_}}};
        setup.Interrupt = [this, begun = std::optional<std::chrono::steady_clock::time_point>()]() mutable {
            const auto now = std::chrono::steady_clock::now();
            if (!begun && !fs::is_empty(temp_)) {
                begun = now;
            }
            return begun && now - *begun > std::chrono::milliseconds(150);
        };
        return setup;
    }

    std::string temp_ = At("temp");
};

// The table has a second piece of 32 GiB, which takes seconds to walk.
TEST_F(StopTest, ScanShowsAndKeepsWhatWasFoundBeforeCtrlC) {
    volume_.AddFile(TextFile(40, u"early.txt", "text"));
    const std::vector<test::Run> runs = {{64, 4}, {32 * kGibibyte / 4096, kFarCluster}};
    volume_.PlaceRecord(volume_.NewRecord(0)
                            .AddStandardInformation(EqualTimes(), 6)
                            .AddFileName({.Name = u"$MFT", .Namespace = kNamespaceBoth})
                            .AddData({.Runs = runs}));
    WriteImage(33 * kGibibyte);
    const std::string told = "Stopped: what was found so far is shown.";
    const Words scan = {"scan", image_, "--json", "--save-info", At("scan.tht"), "--log", At("log")};
    const Json shown = Json::parse(Expect(3, scan, told, StoppedScan()).Out);
    EXPECT_EQ(shown["files"], 1);
    EXPECT_EQ(shown["complete"], false);
    EXPECT_TRUE(Contains(ReadWholeFile(At("log")), "\nAborted processing Internal File System Structure"));
    EXPECT_EQ(Json::parse(Expect(0, {"scan", At("scan.tht"), "--json"}).Out)["files"], 1);
    RunSetup counted = WithFaults(image_, "read", {{"FAULT_LIST", At("reads")}, {"TMPDIR", temp_}});
    counted.Interrupt = StoppedScan().Interrupt;
    EXPECT_EQ(Json::parse(Expect(3, {"list", image_, "--json", "/"}, told, counted).Out)["path"],
              "/early.txt");
    EXPECT_LT(LinesOf(ReadWholeFile(At("reads"))).size(), 100U) << "a hole is not read";
    Expect(3, {"save", image_, "--to", target_}, "was not scanned to its end", StoppedScan());
    EXPECT_TRUE(FilesBelow(target_).empty());
    EXPECT_TRUE(fs::is_empty(temp_)) << "the temporary folder stayed";
}

TEST_F(StopTest, NothingIsShownWhereTheVolumeWasNotFoundYet) {
    volume_.WriteTo(image_);
    RunSetup slow = WithFaults(image_, "read",
                               {{"FAULT_SLOW", "200000"}, {"FAULT_LIST", At("reads")}, {"TMPDIR", temp_}});
    slow.Interrupt = [this] { return Contains(ReadWholeFile(At("reads")), "\t0\t512"); };
    EXPECT_EQ(Expect(3, {"list", image_}, "Stopped before the volume was found.", slow).Out, "");
}

TEST_F(StopTest, SaveLeavesNoHalfWrittenFile) {
    constexpr std::uint64_t kBytes = 6 * kGibibyte;
    if (fs::space(scratch_.Path()).available < 2 * kBytes) {
        GTEST_SKIP() << "not enough room for a long save";
    }
    volume_.AddFile(TextFile(40, u"first.txt", "text"));
    volume_.PlaceRecord(volume_.NewRecord(41)
                            .AddStandardInformation()
                            .AddFileName({.Name = u"endless.bin"})
                            .AddData({.Runs = {{kBytes / 4096, kFarCluster}}, .RealSize = kBytes}));
    WriteImage(kBytes + kGibibyte);
    RunSetup setup = {.Environment = {{"TMPDIR", temp_}}};
    setup.Interrupt = [&] { // it has its own name when it is whole
        return fs::exists(target_) && std::any_of(fs::directory_iterator(target_), fs::directory_iterator(),
                                                  [](const fs::directory_entry& entry) {
                                                      return entry.path().extension() == ".part";
                                                  });
    };
    const Json totals = Json::parse(Expect(3, {"save", image_, "--to", target_, "--json", "--as-stored"},
                                           "/endless.bin: not saved: stopped", setup)
                                        .Out);
    EXPECT_EQ(FilesBelow(target_), (Texts{{"first.txt", "text"}}));
    EXPECT_EQ(totals["files"], 1);
    EXPECT_EQ(totals["complete"], false);
    EXPECT_TRUE(fs::is_empty(temp_)) << "the temporary folder stayed";
}

TEST_F(StopTest, AReaderThatHasGoneIsNoFailureAndAFullDiskIsOne) {
    const std::string image = PackedPath("basic");
    for (const Words& words : {Words{"partitions", image},
                               {"partitions", image, "--json"},
                               {"scan", image, "--files"},
                               {"scan", image, "--json"},
                               {"list", image, "--recursive"},
                               {"list", image, "--recursive", "--json"},
                               {"cat", image, "/Sizes kept/700000.txt"}}) {
        EXPECT_EQ(Expect(0, words, "", {.BrokenPipe = true}).Err, "");
        Expect(1, words, "not enough space", {.OutPath = "/dev/full"});
    }
}

// A write that passes when it is made again is told all the same.
TEST_F(StopTest, TemporaryFilesThatCannotBeMadeOrWritten) {
    const Words scan = {"scan", PackedPath("basic"), "--json"};
    Expect(1, scan, "temporary folder", {.Environment = {{"TMPDIR", At("nowhere")}}});
    RunSetup setup = WithFaults(temp_, "write", {{"FAULT_LIST", At("calls")}, {"TMPDIR", temp_}});
    Expect(0, scan, "", setup);
    const std::vector<std::string> calls = LinesOf(ReadWholeFile(At("calls")));
    int tried = 0;
    for (std::size_t call = 0; call < calls.size(); ++call) {
        for (const char* how : {"full", "once"}) {
            if (calls[call].starts_with("create") || calls[call].starts_with("pwrite")) {
                setup.Environment["FAULT_HOW"] = how;
                setup.Environment["FAULT_AT"] = std::to_string(call + 1);
                const RunResult run = RunCli(scan, setup);
                EXPECT_NE(run.Status, 0) << how << calls[call];
                EXPECT_NE(run.Err, "") << how << calls[call];
                ++tried;
            }
        }
    }
    EXPECT_GE(tried, 12) << "three files";
}

} // namespace

} // namespace thntfs::test
