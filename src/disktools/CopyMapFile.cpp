#include "disktools/CopyMapFile.h"

#include "platform/files/File.h"
#include "platform/files/ReplacementFile.h"
#include "platform/system/Text.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

namespace thntfs {

namespace {

constexpr const char* kSourceWord = "Source: ";
constexpr const char* kSerialWord = "Serial number: ";
constexpr std::uint64_t kMaxMapBytes = std::uint64_t{64} << 20U; ///< well over what kMaxAreas areas take

ErrorCode ReadText(const std::string& path, std::string& text) {
    std::unique_ptr<File> file;
    std::uint64_t size = 0;
    ErrorCode error = Files().Open(path, FileMode::OpenRead, file);
    if (error == kErrorNone) {
        error = file->Size(size);
    }
    if (error == kErrorNone && size > kMaxMapBytes) {
        error = kErrorFileTooLarge;
    }
    if (error != kErrorNone) {
        return error;
    }
    text.resize(static_cast<std::size_t>(size));
    std::size_t got = 0;
    error = file->ReadAt(0, {reinterpret_cast<std::uint8_t*>(text.data()), text.size()}, got);
    text.resize(got);
    return error;
}

/// What a comment line says behind its first word; empty where there is no such line.
std::string CommentIn(std::string_view text, std::string_view word) {
    const std::string line = "# " + std::string(word);
    const std::size_t start = text.starts_with(line) ? 0 : text.find("\n" + line);
    if (start == std::string_view::npos) {
        return {};
    }
    const std::size_t first = text.find(word, start) + word.size();
    return std::string(text.substr(first, std::min(text.find_first_of("\r\n", first), text.size()) - first));
}

} // namespace

std::string MapPathOf(const std::string& imagePath) { return imagePath + ".map"; }

ErrorCode SaveMap(const std::string& path, const CopyMap& map, const CopyPlace& place,
                  const std::string& comment) {
    const std::string text = TextOfMap(map, place, comment);
    ReplacementFile file;
    ErrorCode code = file.Create(path);
    if (code == kErrorNone) {
        code = file.Handle().Write(TextBytes(text));
    }
    return code == kErrorNone ? file.Commit() : code;
}

std::string OneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, '?');
    return text;
}

std::string MapComment(const std::string& source, const std::string& serial) {
    std::string comment = "Map of a disk image, by Tarnholt Volume Salvage (NTFS)\n";
    comment.append(kSourceWord).append(OneLine(source));
    if (!serial.empty()) {
        comment.append("\n").append(kSerialWord).append(OneLine(serial));
    }
    return comment;
}

std::optional<SavedMap> LoadMap(const std::string& path, std::uint64_t totalBytes, std::string& why) {
    std::string text;
    const ErrorCode error = ReadText(path, text);
    if (error != kErrorNone) {
        why = SystemErrorText(error);
        why.resize(why.size() - 1);
        return std::nullopt;
    }
    auto map = MapOfText(text, totalBytes, why);
    if (!map) {
        return std::nullopt;
    }
    return SavedMap{std::move(*map), CommentIn(text, kSourceWord), CommentIn(text, kSerialWord)};
}

} // namespace thntfs
