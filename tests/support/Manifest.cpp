#include "support/Manifest.h"

#include "support/BuildPaths.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace thntfs::test {

namespace {

constexpr const char* kLayoutEnding = ".layout.tsv";

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

/// The cells of each row of a list of tests/volumes.
std::vector<std::vector<std::string>> ReadTable(const std::string& name) {
    std::ifstream file(ManifestFolder() + "/" + name);
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with('#')) {
            rows.push_back(Split(line, '\t'));
        }
    }
    return rows.empty() ? throw std::runtime_error(name + ": nothing in it") : rows;
}

} // namespace

std::vector<ManifestRow> PackedImage::Manifest(unsigned number) const {
    const std::string part = Partitions.size() == 1 ? "" : ".p" + std::to_string(number);
    std::vector<ManifestRow> rows;
    for (const auto& cells : ReadTable(Name + part + ".manifest.tsv")) {
        const std::vector<std::string> notes = Split(cells.at(5), ',');
        rows.push_back({cells[0],
                        cells[1] == "live",
                        cells[2] == "folder",
                        std::stoull(cells[3]),
                        cells[4],
                        {notes.begin(), notes.end()}});
    }
    return rows;
}

PackedImage PackedImageNamed(const std::string& name) {
    PackedImage image{name, VolumeFolder() + "/" + name + ".img", {}};
    for (const auto& cells : ReadTable(name + kLayoutEnding)) {
        const auto number = [&cells](std::size_t i) { return std::stoull(cells.at(i)); };
        const auto small = [&](std::size_t i) { return static_cast<std::uint32_t>(number(i)); };
        image.Partitions.push_back({small(0), number(1), small(2), small(3), small(4), small(5), small(6),
                                    number(7), number(8), number(9), cells.at(10)});
    }
    return image;
}

std::vector<PackedImage> PackedImages() {
    std::vector<PackedImage> images;
    for (const auto& entry : std::filesystem::directory_iterator(ManifestFolder())) {
        const std::string name = entry.path().filename().string();
        if (name.ends_with(kLayoutEnding)) {
            images.push_back(PackedImageNamed(name.substr(0, name.find('.'))));
        }
    }
    std::sort(images.begin(), images.end(), [](const auto& a, const auto& b) { return a.Name < b.Name; });
    return images;
}

} // namespace thntfs::test
