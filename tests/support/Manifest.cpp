#include "support/Manifest.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace thntfs::test {

namespace {

constexpr const char* kLayoutEnding = ".layout.tsv";

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t end = 0; end != std::string::npos; start = end + 1) {
        end = text.find(separator, start);
        parts.push_back(text.substr(start, end - start));
    }
    return parts;
}

std::vector<std::vector<std::string>> ReadTable(const std::string& path, std::size_t columns) {
    std::ifstream file(path);
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with('#')) {
            rows.push_back(Split(line, '\t'));
            if (rows.back().size() < columns) {
                throw std::runtime_error(path + ": short line");
            }
        }
    }
    if (rows.empty()) {
        throw std::runtime_error(path + ": nothing in it");
    }
    return rows;
}

LayoutRow MakeLayoutRow(const std::vector<std::string>& cells) {
    const auto number = [&](std::size_t i) { return std::stoull(cells[i]); };
    const auto small = [&](std::size_t i) { return static_cast<std::uint32_t>(number(i)); };
    return {small(0), number(1), small(2),  small(3),  small(4), small(5),
            small(6), number(7), number(8), number(9), cells[10]};
}

ManifestRow MakeManifestRow(const std::vector<std::string>& cells) {
    ManifestRow row{cells[0], cells[1] == "live", cells[2] == "folder", std::stoull(cells[3]), cells[4], {}};
    for (const std::string& note : Split(cells[5], ',')) {
        row.Notes.insert(note);
    }
    return row;
}

} // namespace

std::vector<ManifestRow> PackedImage::Manifest(unsigned number) const {
    const std::string part = Partitions.size() == 1 ? "" : ".p" + std::to_string(number);
    std::vector<ManifestRow> rows;
    for (const auto& cells : ReadTable(Folder + "/" + Name + part + ".manifest.tsv", 6)) {
        rows.push_back(MakeManifestRow(cells));
    }
    return rows;
}

std::vector<PackedImage> PackedImages(const std::string& manifestFolder, const std::string& volumeFolder) {
    std::vector<PackedImage> images;
    for (const auto& entry : std::filesystem::directory_iterator(manifestFolder)) {
        const std::string name = entry.path().filename().string();
        if (name.ends_with(kLayoutEnding)) {
            PackedImage image;
            image.Name = name.substr(0, name.size() - std::string(kLayoutEnding).size());
            image.Path = volumeFolder + "/" + image.Name + ".img";
            image.Folder = manifestFolder;
            for (const auto& cells : ReadTable(entry.path().string(), 11)) {
                image.Partitions.push_back(MakeLayoutRow(cells));
            }
            images.push_back(std::move(image));
        }
    }
    std::sort(images.begin(), images.end(), [](const auto& a, const auto& b) { return a.Name < b.Name; });
    return images;
}

PackedImage PackedImageNamed(const std::string& name, const std::string& manifestFolder,
                             const std::string& volumeFolder) {
    for (PackedImage& image : PackedImages(manifestFolder, volumeFolder)) {
        if (image.Name == name) {
            return std::move(image);
        }
    }
    throw std::runtime_error("no packed image " + name);
}

} // namespace thntfs::test
