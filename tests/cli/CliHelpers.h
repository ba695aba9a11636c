#pragma once

#include "support/RunProgram.h"
#include "support/VolumeBuilder.h"

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace thntfs::test {

using Json = nlohmann::ordered_json; // the order of fields is part of the contract
using Words = std::vector<std::string>;

/// Runs the terminal program.
RunResult RunCli(const Words& words, const RunSetup& setup = {});

/// Path of an unpacked image.
std::string PackedPath(const std::string& name);

/// The lines of an output, each as JSON. A line that is none throws.
std::vector<Json> JsonLines(const std::string& text);

/// All files below a folder by path from there on, with their bytes. Links aren't followed.
std::map<std::string, std::string> FilesBelow(const std::string& folder);

/// A file with short text in it.
FileSpec TextFile(std::uint32_t number, std::u16string name, const std::string& text,
                  std::uint32_t parent = 5);

} // namespace thntfs::test
