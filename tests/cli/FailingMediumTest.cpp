#include "CliHelpers.h"
#include "support/BuildPaths.h"
#include "support/FaultyMount.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace thntfs::test {

namespace {

using nlohmann::json;

constexpr std::size_t kSector = 512;

std::uint64_t FilesOf(const std::string& medium, bool turbo, int status = 0) {
    Words words = {"scan", medium, "--json"};
    if (turbo) {
        words.emplace_back("--turbo");
    }
    const RunResult run = RunCli(words);
    EXPECT_EQ(run.Status, status) << run.Err;
    EXPECT_EQ(json::parse(run.Out)["complete"], status == 0);
    return json::parse(run.Out)["files"];
}

/// The first live file of a listing that is plain and of a size between two.
json FirstFileOf(const std::string& medium, std::uint64_t least, std::uint64_t most) {
    std::istringstream lines(RunCli({"list", medium, "--recursive", "--json"}).Out);
    for (std::string line; std::getline(lines, line);) {
        json entry = json::parse(line);
        if (!entry["folder"] && entry["live"] && entry["size"] >= least && entry["size"] <= most &&
            (entry["flags"].get<unsigned>() & 0xA00) == 0) {
            return entry;
        }
    }
    return {};
}

// A bad sector in a record costs that record, one in a file's data its own bytes.
TEST(FailingMediumTest, ScansAndSavesAroundBadSectors) {
    const ScratchFolder scratch;
    const std::string image = VolumeFolder() + "/basic.img";
    const json damaged = FirstFileOf(image, 20000, 1000000);
    const json lost = FirstFileOf(image, 1, 500);
    std::string content = RunCli({"cat", image, damaged["path"]}).Out;
    const std::size_t data = ReadWholeFile(image).find(content.substr(0, 4 * kSector));
    ASSERT_NE(data, std::string::npos);

    std::filesystem::create_directory(scratch / "mount");
    const std::uint64_t record = lost["recordSector"].get<std::uint64_t>() * kSector;
    FaultyMount::Setup setup;
    setup.BadBytes = {{record + 100, 1}, {data + kSector + 100, 1}};
    const auto mount = FaultyMount::Start(image, scratch / "mount", setup);
    if (mount == nullptr) {
        GTEST_SKIP() << kNoFaultyMount;
    }
    for (const bool turbo : {false, true}) {
        EXPECT_EQ(FilesOf(mount->Path(), turbo, 3) + 1, FilesOf(image, turbo));
    }
    const RunResult run = RunCli({"save", mount->Path(), damaged["path"], "--to", scratch / "out"});
    EXPECT_EQ(run.Status, 3);
    EXPECT_NE(run.Err.find("zeros"), std::string::npos) << run.Err;
    content.replace(kSector, kSector, kSector, '\0');
    EXPECT_TRUE(ReadWholeFile(scratch / ("out" + damaged["path"].get<std::string>())) == content);
}

} // namespace

} // namespace thntfs::test
