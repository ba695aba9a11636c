#include "CliHelpers.h"

#include "support/BuildPaths.h"

#include <filesystem>
#include <sstream>

namespace thntfs::test {

namespace fs = std::filesystem;

RunResult RunCli(const Words& words, const RunSetup& setup) { return RunProgram(CliPath(), words, setup); }

std::string PackedPath(const std::string& name) { return VolumeFolder() + "/" + name + ".img"; }

std::vector<Json> JsonLines(const std::string& text) {
    std::vector<Json> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(Json::parse(line));
    }
    return lines;
}

std::map<std::string, std::string> FilesBelow(const std::string& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file() && !entry.is_symlink()) {
            files[entry.path().string().substr(folder.size() + 1)] = ReadWholeFile(entry.path().string());
        }
    }
    return files;
}

FileSpec TextFile(std::uint32_t number, std::u16string name, const std::string& text, std::uint32_t parent) {
    return {.Number = number, .Parent = parent, .Name = std::move(name), .Content = BytesOf(text)};
}

} // namespace thntfs::test
