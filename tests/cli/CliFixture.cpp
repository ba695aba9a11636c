#include "CliFixture.h"

#include "support/BuildPaths.h"

#include <numeric>
#include <sstream>

namespace thntfs::test {

RunResult RunCli(const Words& words, const RunSetup& setup) { return RunProgram(CliPath(), words, setup); }

RunSetup WithFaults(const std::string& path, const std::string& calls, const Texts& faults) {
    const char* options = std::getenv("ASAN_OPTIONS");
    RunSetup setup;
    setup.Environment = faults;
    setup.Environment["LD_PRELOAD"] = FaultyCallsPath();
    setup.Environment["ASAN_OPTIONS"] =
        std::string(options == nullptr ? "" : options) + ":verify_asan_link_order=0";
    setup.Environment["FAULT_UNDER"] = path;
    setup.Environment["FAULT_CALLS"] = calls;
    return setup;
}

RunSetup WithBadSectors(const std::string& path, const std::vector<std::uint64_t>& sectors) {
    std::string bad;
    for (const std::uint64_t sector : sectors) {
        bad += std::to_string(sector * 512 + 100) + " 1 ";
    }
    return WithFaults(path, "read", {{"FAULT_BAD", bad}});
}

std::string PackedPath(const std::string& name) { return VolumeFolder() + "/" + name + ".img"; }

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::vector<Json> JsonLines(const std::string& text) {
    std::vector<Json> lines;
    for (const std::string& line : LinesOf(text)) {
        lines.push_back(Json::parse(line));
    }
    return lines;
}

Texts FilesBelow(const std::string& folder) {
    Texts files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file() && !entry.is_symlink()) {
            files[entry.path().string().substr(folder.size() + 1)] = ReadWholeFile(entry.path().string());
        }
    }
    return files;
}

FileSpec TextFile(std::uint32_t number, std::u16string name, const std::string& text, std::uint32_t parent,
                  bool live) {
    return {
        .Number = number, .Parent = parent, .Name = std::move(name), .Content = BytesOf(text), .Live = live};
}

CliTest::~CliTest() { OutputOf("umount '" + mount_ + "'"); }

RunResult CliTest::Expect(int status, const Words& words, const std::string& told, const RunSetup& setup) {
    RunResult run = RunCli(words, setup);
    const std::string what = std::accumulate(words.begin(), words.end(), std::string("th-ntfs-cli"),
                                             [](const auto& l, const auto& r) { return l + " " + r; });
    EXPECT_EQ(run.Status, status) << what << "\n" << run.Err;
    EXPECT_TRUE(Contains(run.Err, told)) << what << "\ndoesn't tell " << told << ", but: " << run.Err;
    return run;
}

void CliTest::ExpectRefused(int status, const Words& words, const std::string& told) {
    const RunResult run = Expect(status, words, told);
    EXPECT_EQ(run.Out, "") << words.front();
    EXPECT_NE(run.Err, "") << words.front();
}

std::string CliTest::Attach(const std::string& image, const std::string& options) {
    auto device = LoopDevice::Attach(image, options);
    if (device == nullptr) {
        return {};
    }
    devices_.push_back(std::move(device));
    return devices_.back()->Path();
}

} // namespace thntfs::test
