#include "disktools/CopyMapFile.h"

#include "platform/File.h"
#include "platform/ReplaceFile.h"

#include <memory>

namespace thntfs {

namespace {

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

} // namespace

std::string MapPathOf(const std::string& imagePath) { return imagePath + ".map"; }

ErrorCode SaveMap(const std::string& path, const CopyMap& map, const CopyPlace& place, const std::string& comment) {
    const std::string text = TextOfMap(map, place, comment);
    return ReplaceFile(path, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

std::optional<CopyMap> LoadMap(const std::string& path, std::uint64_t totalBytes, std::string& why) {
    std::string text;
    const ErrorCode error = ReadText(path, text);
    if (error != kErrorNone) {
        why = SystemErrorText(error);
        why.resize(why.size() - 1);
        return std::nullopt;
    }
    return MapOfText(text, totalBytes, why);
}

} // namespace thntfs
