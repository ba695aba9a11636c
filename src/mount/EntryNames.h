#pragma once

#include "mount/MountIndex.h"
#include "platform/system/BigBlock.h"

#include <cstddef>
#include <cstdint>

namespace thntfs {

struct SaveOptions;

/// What the tree of a mount needs of all entries, by EntryId, 16 bytes each; the index keeps the names. One
/// pass along the catalogue, in the order in which its files hold them, costs a part of what loading them in
/// the tree's order does.
class EntryNames {
public:
    /// Reads the catalogue that is open, until it is told to stop (ScanRunFlag). Entries that can't be read
    /// are left out.
    EntryNames(const SaveOptions& options, MountIndex& index);

    [[nodiscard]] std::size_t Count() const { return facts_.Count(); }
    [[nodiscard]] bool IsIn(std::uint32_t entryId) const { return facts_.At(entryId).Readable; }
    [[nodiscard]] bool IsFolder(std::uint32_t entryId) const { return facts_.At(entryId).Folder; }
    /// Byte offset in TreeFile of a folder's first block.
    [[nodiscard]] std::uint32_t BlockOffsetOf(std::uint32_t entryId) const {
        return facts_.At(entryId).BlockOffset;
    }
    /// Whether the options take the entry; of a folder, for its own sake.
    [[nodiscard]] bool IsWanted(std::uint32_t entryId) const { return facts_.At(entryId).Wanted; }
    /// The name under which it is saved where that is free; of files that aren't wanted none is kept.
    [[nodiscard]] MountIndex::KeptName NameOf(std::uint32_t entryId) const { return facts_.At(entryId).Name; }

private:
    struct Facts {
        MountIndex::KeptName Name;
        std::uint32_t BlockOffset = 0;
        bool Readable = false;
        bool Folder = false;
        bool Wanted = false;
    };

    BigBlockPool<Facts> facts_;
};

} // namespace thntfs
