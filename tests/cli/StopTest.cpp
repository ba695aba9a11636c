#include "CliHelpers.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>

namespace thntfs::test {

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kGibibyte = 1U << 30U;
constexpr std::uint64_t kFarCluster = 4096; ///< behind the small volume, in the part that is all hole

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class StopTest : public testing::Test {
protected:
    StopTest() { fs::create_directories(temp_); }

    /// The image goes on as one hole, up to `bytes`.
    void WriteImage(std::uint64_t bytes) {
        volume_.WriteTo(image_);
        fs::resize_file(image_, bytes);
    }

    VolumeBuilder volume_;
    ScratchFolder scratch_;
    std::string image_ = scratch_ / "image";
    std::string temp_ = scratch_ / "temp";
    std::string target_ = scratch_ / "target";
};

/// Says yes a while after a condition has become true.
class Later {
public:
    explicit Later(std::function<bool()> condition)
        : condition_(std::move(condition)) {}

    bool operator()() {
        using namespace std::chrono;
        if (!met_ && condition_()) {
            met_ = steady_clock::now();
        }
        return met_ && steady_clock::now() - *met_ > milliseconds(150);
    }

private:
    std::function<bool()> condition_;
    std::optional<std::chrono::steady_clock::time_point> met_;
};

// The table has a second piece of 32 GiB, which takes seconds to walk.
TEST_F(StopTest, ScanShowsWhatWasFoundBeforeCtrlC) {
    volume_.AddFile(TextFile(40, u"early.txt", "text"));
    const std::vector<test::Run> runs = {{64, 4}, {32 * kGibibyte / 4096, kFarCluster}};
    volume_.PlaceRecord(volume_.NewRecord(0)
                            .AddStandardInformation(EqualTimes(), 6)
                            .AddFileName({.Name = u"$MFT", .Namespace = kNamespaceBoth})
                            .AddData({.Runs = runs}));
    WriteImage(33 * kGibibyte);
    for (const Words& words : {Words{"scan", image_, "--json"}, Words{"list", image_, "--json", "/"}}) {
        RunSetup setup;
        setup.TempFolder = temp_;
        setup.Interrupt = Later([&] { return !fs::is_empty(temp_); });
        const RunResult run = RunCli(words, setup);
        EXPECT_EQ(run.Status, 3) << run.Err;
        EXPECT_TRUE(Contains(run.Err, "Stopped: what was found so far is shown.")) << run.Err;
        const Json shown = Json::parse(run.Out);
        if (words.front() == "scan") {
            EXPECT_EQ(shown["files"], 1);
            EXPECT_EQ(shown["complete"], false);
        } else {
            EXPECT_EQ(shown["path"], "/early.txt");
        }
        EXPECT_TRUE(fs::is_empty(temp_)) << "the temporary folder stayed";
    }
    RunSetup setup;
    setup.TempFolder = temp_;
    setup.Interrupt = Later([&] { return !fs::is_empty(temp_); });
    const RunResult run = RunCli({"save", image_, "--to", target_}, setup);
    EXPECT_EQ(run.Status, 3) << run.Err;
    EXPECT_TRUE(FilesBelow(target_).empty());
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
    RunSetup setup;
    setup.TempFolder = temp_;
    setup.Interrupt = [&] { // it has its own name when it is whole
        return fs::exists(target_) && std::any_of(fs::directory_iterator(target_), fs::directory_iterator(),
                                                  [](const fs::directory_entry& entry) {
                                                      return entry.path().extension() == ".part";
                                                  });
    };
    const RunResult run = RunCli({"save", image_, "--to", target_, "--json"}, setup);
    EXPECT_EQ(run.Status, 3) << run.Err;
    EXPECT_TRUE(Contains(run.Err, "/endless.bin: not saved: stopped")) << run.Err;
    ASSERT_FALSE(fs::exists(target_ + "/endless.bin")) << "it was saved whole";
    EXPECT_EQ(FilesBelow(target_), (std::map<std::string, std::string>{{"first.txt", "text"}}));
    const Json totals = Json::parse(run.Out);
    EXPECT_EQ(totals["files"], 1);
    EXPECT_EQ(totals["complete"], false);
    EXPECT_TRUE(fs::is_empty(temp_)) << "the temporary folder stayed";
}

std::vector<Words> PrintingCommands() {
    const std::string image = PackedPath("office");
    return {{"partitions", image},
            {"partitions", image, "--json"},
            {"scan", image, "--files"},
            {"scan", image, "--json"},
            {"list", image, "--recursive"},
            {"list", image, "--recursive", "--json"},
            {"cat", image, "--record", "300"}};
}

TEST_F(StopTest, AReaderThatHasGoneEndsTheProgramWithoutAWord) {
    for (const Words& words : PrintingCommands()) {
        RunSetup setup;
        setup.BrokenPipe = true;
        const RunResult run = RunCli(words, setup);
        EXPECT_EQ(run.Status, 0) << words.front();
        EXPECT_EQ(run.Err, "") << words.front();
    }
}

TEST_F(StopTest, OutputThatCannotBeWrittenIsAFailure) {
    if (!fs::exists("/dev/full")) {
        GTEST_SKIP() << "no /dev/full here";
    }
    for (const Words& words : PrintingCommands()) {
        RunSetup setup;
        setup.OutPath = "/dev/full";
        const RunResult run = RunCli(words, setup);
        EXPECT_EQ(run.Status, 1) << words.front();
        EXPECT_TRUE(Contains(run.Err, "not enough space")) << words.front() << run.Err;
    }
}

TEST_F(StopTest, NoTemporaryFolderCanBeMade) {
    RunSetup setup;
    setup.TempFolder = scratch_ / "nowhere";
    const RunResult run = RunCli({"scan", PackedPath("basic")}, setup);
    EXPECT_EQ(run.Status, 1);
    EXPECT_TRUE(Contains(run.Err, "temporary folder")) << run.Err;
}

} // namespace

} // namespace thntfs::test
