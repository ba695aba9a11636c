#pragma once

#include "catalogue/CatalogueReader.h"
#include "catalogue/EntryWalk.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace thntfs {

/// An entry and the folders above it, from below " Root" or from a top-level folder down.
struct LocatedEntry {
    CatalogueItem Item;
    std::vector<CatalogueItem> Folders; ///< on the way, outermost first; " Root" left out
    std::string Path;                   ///< as EntryWalk gives it, but "/" for " Root"
};

/// All entries with a path, live and deleted, in catalogue order. "/" is " Root"; "" is the top. A name may
/// hold a slash. Throws CUserException where a block can't be read.
std::vector<LocatedEntry> FindEntries(std::string_view path);

/// The entries with these EntryIds, 0 for the top among them, in catalogue order; those that no walk meets
/// are left out. Throws CUserException where a block can't be read.
std::vector<LocatedEntry> LocateEntries(const std::vector<std::uint32_t>& entryIds);

/// Where a walk over what is below a located folder starts.
WalkStart StartAt(const LocatedEntry& folder);

} // namespace thntfs
