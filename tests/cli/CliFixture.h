#pragma once

#include "support/LoopDevice.h"
#include "support/RunProgram.h"
#include "support/VolumeBuilder.h"

#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace thntfs::test {

using Json = nlohmann::ordered_json; // the order of fields is part of the contract
using Words = std::vector<std::string>;
using Texts = std::map<std::string, std::string>;

inline constexpr const char* kNoLoops = "loop devices or mounts are not to be had here";

/// Runs the terminal program.
RunResult RunCli(const Words& words, const RunSetup& setup = {});

/// A run whose calls on a path go wrong as tests/system/FaultyCalls.cpp tells. `calls`: "read" or "write".
RunSetup WithFaults(const std::string& path, const std::string& calls, const Texts& faults);

/// A run that can't read some sectors of a file.
RunSetup WithBadSectors(const std::string& path, const std::vector<std::uint64_t>& sectors);

/// Path of an unpacked image.
std::string PackedPath(const std::string& name);

bool Contains(const std::string& text, const std::string& part);

std::vector<std::string> LinesOf(const std::string& text);

/// The lines of an output, each as JSON. A line that is none throws.
std::vector<Json> JsonLines(const std::string& text);

/// All files below a folder by path from there on, with their bytes. Links aren't followed.
Texts FilesBelow(const std::string& folder);

/// A file with short text in it.
FileSpec TextFile(std::uint32_t number, std::u16string name, const std::string& text,
                  std::uint32_t parent = 5, bool live = true);

/// A folder to work in, a volume to be built there, and loop devices and mounts that go away at the end.
class CliTest : public testing::Test {
protected:
    ~CliTest() override;

    [[nodiscard]] std::string At(const std::string& name) const { return scratch_ / name; }

    /// Runs the program, which is to end with a status and to say something on standard error.
    static RunResult Expect(int status, const Words& words, const std::string& told = "",
                            const RunSetup& setup = {});
    /// The same, with nothing on standard output.
    static void ExpectRefused(int status, const Words& words, const std::string& told = "");

    /// Path of a loop device over an image; empty where there can be none.
    std::string Attach(const std::string& image, const std::string& options = "");

    VolumeBuilder volume_;
    ScratchFolder scratch_;
    std::string image_ = scratch_ / "image";
    std::string target_ = scratch_ / "target";
    std::string mount_ = scratch_ / "mount";

private:
    std::vector<std::unique_ptr<LoopDevice>> devices_;
};

} // namespace thntfs::test
