#pragma once

#include "engine/CatalogueRecords.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace thntfs {

/// An entry loaded from the catalogue.
struct CatalogueItem {
    std::uint64_t RecordSector = 0;
    std::uint64_t Size = 0;
    std::uint32_t EntryId = 0;
    std::uint32_t RecordNumber = 0;
    std::uint32_t ParentNumber = 0;
    std::uint32_t BlockOffset = 0;
    std::u16string Name;
    std::uint16_t CreatedDate = 0;
    std::uint16_t AccessedDate = 0;
    std::uint16_t Flags = 0;
    std::uint16_t NameLength = 0;

    [[nodiscard]] bool IsFolder() const { return (Flags & kFlagFolder) != 0; }
    [[nodiscard]] bool IsLive() const { return (Flags & kFlagLive) != 0; }
};

using EntryList = std::vector<CatalogueItem>;

/// Number of entries: the size of EntryFile in bytes / 44. 0 where no catalogue is open.
std::uint64_t CatalogueEntryCount();

/// Loads one entry; null, after a box with the system's text, where it can't be read. An id behind the last
/// entry gives an item that is all zero with an empty name.
std::unique_ptr<CatalogueItem> LoadEntry(std::uint32_t entryId);

/// The same into an item that the caller keeps, which saves two allocations an entry. Gives 1 or 0.
int LoadEntryInto(std::uint32_t entryId, CatalogueItem& item);

/// The parts of which loading is made. LoadStoredEntry gives 1 or, after its box, 0. AppendName appends what
/// NameFile holds of an entry's name. FillItem copies all fields but the name.
int LoadStoredEntry(std::uint32_t entryId, CatalogueEntry& entry);
void AppendName(const CatalogueEntry& entry, std::u16string& names);
void FillItem(const CatalogueEntry& entry, CatalogueItem& item);

/// Which blocks of TreeFile a walk has been through. In a sound catalogue no two folders share one.
class SeenBlocks {
public:
    SeenBlocks();
    /// False where the block at this byte offset has been marked before, or lies outside the file.
    bool Mark(std::uint32_t blockOffset);

private:
    std::vector<bool> seen_;
};

/// The children of a folder, in the order in which they were added. Blocks of a chain lie one behind the
/// other in the file, as they were begun; a link that leads back ends the walk, so it ends in a damaged
/// catalogue too.
class ChildWalk {
public:
    /// `blockOffset`: byte offset in TreeFile of the folder's first block. With `seen`, which must outlive
    /// the walk, it ends at a block that has been marked there before.
    explicit ChildWalk(std::uint32_t blockOffset, SeenBlocks* seen = nullptr);

    /// The next child's EntryId; 0 behind the last. Throws CUserException, after a box, where a block can't
    /// be read.
    std::uint32_t Next();

private:
    void LoadBlock();

    FolderBlock block_;
    std::uint32_t blockOffset_;
    std::size_t slot_ = 0;
    SeenBlocks* seen_;
};

/// Lists a folder: files first, then folders, each group in the reverse of the order in which they were
/// added. The three counters are added to. With `keepFiles` false, files are counted and summed but not
/// listed. Throws CUserException where a block can't be read.
EntryList ListFolder(std::uint32_t blockOffset, std::uint64_t& totalBytes, std::uint32_t& fileCount,
                     std::uint32_t& folderCount, bool keepFiles);

} // namespace thntfs
