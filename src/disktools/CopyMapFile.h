#pragma once

#include "disktools/CopyMapText.h"
#include "platform/system/ErrorCodes.h"

#include <optional>
#include <string>

namespace thntfs {

/// Path of the map that lies beside an image.
std::string MapPathOf(const std::string& imagePath);

/// Puts a map into its file, whose old content stands until the new one is on the disk.
ErrorCode SaveMap(const std::string& path, const CopyMap& map, const CopyPlace& place,
                  const std::string& comment);

/// What a map file tells.
struct SavedMap {
    CopyMap Map;
    std::string Source; ///< path that was read, as its comment has it; empty where it has none
    std::string Serial; ///< of the disk that was read, as its comment has it; empty where it has none
};

/// A text as it stands in a comment, which is a line: control characters become '?'.
std::string OneLine(std::string text);

/// The comment of a map: what was read, and the serial number of the disk if it is known.
std::string MapComment(const std::string& source, const std::string& serial);

/// Reads the map file of a source of `totalBytes`. None where that fails; `why` then says so in a sentence
/// without its full stop.
std::optional<SavedMap> LoadMap(const std::string& path, std::uint64_t totalBytes, std::string& why);

} // namespace thntfs
