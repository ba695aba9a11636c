#pragma once

#include "support/BuildPaths.h"
#include "support/RunProgram.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace thntfs::test {

using nlohmann::json;
using Lines = std::vector<std::string>;

/// The names of the packed images.
inline Lines ImageNames() {
    Lines names;
    for (const auto& entry : std::filesystem::directory_iterator(ManifestFolder())) {
        if (entry.path().extension() == ".json") {
            names.push_back(entry.path().stem().string());
        }
    }
    return names;
}

inline std::string ImagePath(const std::string& name) { return VolumeFolder() + "/" + name + ".img"; }

/// What the README tells of: "partitions", and in "volumes" the rows of each.
inline json ManifestOf(const std::string& name) {
    std::ifstream file(ManifestFolder() + "/" + name + ".json");
    return json::parse(file);
}

/// The SHA-256 of each file below a folder, by its path from there on, as `sha256sum` has it.
inline std::map<std::string, std::string> HashesBelow(const std::string& folder) {
    constexpr std::size_t kHashDigits = 64;
    const RunResult run = RunProgram(
        "/bin/sh", {"-c", "cd \"$0\" && find . -type f -size -1000M -exec sha256sum {} +", folder});
    std::map<std::string, std::string> hashes;
    std::istringstream lines(run.Out);
    for (std::string line; std::getline(lines, line);) {
        hashes[line.substr(kHashDigits + 3)] = line.substr(0, kHashDigits); // between them "  ."
    }
    return hashes;
}

} // namespace thntfs::test
