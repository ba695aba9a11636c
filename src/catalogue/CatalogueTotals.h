#pragma once

#include "catalogue/CatalogueReader.h"

#include <cstdint>

namespace thntfs {

/// What a catalogue holds, as far as it can be reached from the top.
struct CatalogueTotals {
    std::uint64_t Files = 0;
    std::uint64_t Folders = 0;
    std::uint64_t Bytes = 0;
    std::uint64_t DeletedFiles = 0;
    std::uint64_t DeletedFolders = 0;
    std::uint64_t LostFolders = 0; ///< of the deleted folders, those known by number alone
};

/// True for a folder that is known by its number alone. For an entry and for an item.
template <typename Entry>
bool IsLostFolder(const Entry& entry) {
    return (entry.Flags & (kFlagFolder | kFlagLive)) == kFlagFolder && entry.RecordSector == 0;
}

/// Counts the open catalogue. An entry that can't be read shows its box and isn't counted. Throws
/// CUserException, after a box, where a block of a chain can't be read.
CatalogueTotals CountCatalogue();

} // namespace thntfs
