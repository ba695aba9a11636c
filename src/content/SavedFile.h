#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace thntfs {

/// What became of a file, or of a stream that is saved as one.
struct SavedFile {
    std::string Path; ///< in the catalogue; of a stream with a colon and its name behind it
    std::uint32_t Record = 0;
    std::uint64_t Size = 0;            ///< bytes that it should have
    std::uint64_t Bytes = 0;           ///< bytes written, holes among them
    const char* Condition = "unknown"; ///< a word of ConditionWord
    bool IsStream = false;
    bool Whole = false;
    std::string Sha256;               ///< of these bytes; empty where nobody asked or nothing was written
    std::vector<std::string> Reasons; ///< why it isn't whole, or isn't there
    std::vector<std::string> Links;   ///< paths of the further names that it has in the target
};

} // namespace thntfs
