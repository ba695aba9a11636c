#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace thntfs {

/// Which entries are folders, and where their chains begin: a bit an entry and 4 bytes a folder, from one
/// pass along EntryFile. With it the order of a walk over the whole catalogue is known before any entry is
/// loaded.
class FolderOffsets {
public:
    /// Reads the catalogue that is open. Entries that can't be read count as files.
    FolderOffsets();

    /// Byte offset in TreeFile of a folder's first block; nothing for a file.
    [[nodiscard]] std::optional<std::uint32_t> BlockOffset(std::uint32_t entryId) const;

    /// False where not all entries could be read.
    [[nodiscard]] bool Whole() const { return whole_; }

private:
    static constexpr std::size_t kGroupEntries = 64;

    void Add(std::uint32_t entryId, bool folder, std::uint32_t blockOffset);

    std::vector<std::uint64_t> folderBits_;    ///< a word a group of 64 entries
    std::vector<std::uint32_t> foldersBefore_; ///< folders in front of each group
    std::vector<std::uint32_t> blockOffsets_;  ///< of the folders, by rising EntryId
    bool whole_;                               ///< set last, by the pass that fills the others
};

} // namespace thntfs
