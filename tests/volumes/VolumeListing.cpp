#include "VolumeListing.h"

#include "content/TargetName.h"
#include "platform/system/Text.h"
#include "support/BuildPaths.h"
#include "support/RunProgram.h"

#include <sstream>
#include <stdexcept>

namespace thntfs::test {

std::vector<std::string> VolumeCase::Words(const std::string& command) const {
    std::vector<std::string> words = {command, Image.Path};
    if (Image.Partitions.size() > 1) {
        words.insert(words.end(), {"--partition", std::to_string(Layout.Number)});
    }
    return words;
}

std::vector<VolumeCase> AllVolumes() {
    std::vector<VolumeCase> volumes;
    for (const PackedImage& image : PackedImages()) {
        for (const LayoutRow& layout : image.Partitions) {
            volumes.push_back({image, layout});
        }
    }
    return volumes;
}

VolumeListing::VolumeListing(const VolumeCase& volume) {
    std::vector<std::string> words = volume.Words("list");
    words.insert(words.end(), {"--recursive", "--json"});
    const RunResult run = RunProgram(CliPath(), words);
    if (run.Status != 0) {
        throw std::runtime_error("list ended with " + std::to_string(run.Status) + ": " + run.Err);
    }
    std::istringstream lines(run.Out);
    for (std::string line; std::getline(lines, line);) {
        Entries.push_back(nlohmann::json::parse(line));
        byPath_.emplace(Entries.back()["path"], Entries.size() - 1);
        byName_.emplace(Entries.back()["name"], Entries.size() - 1);
    }
}

const nlohmann::json* VolumeListing::Find(const ManifestRow& row) const {
    const bool anywhere = row.Has("orphan");
    const std::string key = anywhere ? row.Path.substr(row.Path.rfind('/') + 1) : row.Path;
    const auto range = anywhere ? byName_.equal_range(key) : byPath_.equal_range(key);
    for (auto found = range.first; found != range.second; ++found) {
        const nlohmann::json& entry = Entries[found->second];
        if (entry["live"] == row.Live && entry["folder"] == row.Folder && entry["size"] == row.Size) {
            return &entry;
        }
    }
    return nullptr;
}

std::string VolumeListing::TargetPath(const std::string& path) {
    std::string target;
    std::istringstream parts(path.substr(1));
    for (std::string part; std::getline(parts, part, '/');) {
        target += '/' + TargetName(WideText(part));
    }
    return target;
}

} // namespace thntfs::test
