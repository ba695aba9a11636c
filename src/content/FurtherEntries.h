#pragma once

#include "catalogue/FindEntry.h"
#include "content/ExactFile.h"
#include "content/FolderChains.h"

#include <functional>
#include <set>
#include <string_view>
#include <vector>

namespace thntfs {

/// The files of the open catalogue by the names that it doesn't list them under, as entries of their own.
/// Where to look a scan has noted; of a scan that was loaded none is known. What is noted is believed only
/// once the file's records tell the same. Passes CUserException on.
class FurtherEntries {
public:
    /// Those with a path.
    std::vector<LocatedEntry> Find(std::string_view path);

    /// Of the files that stand in these folders, or below them, by further names alone: each once. Files that
    /// are in the selection themselves don't count.
    std::vector<LocatedEntry> Below(const std::vector<LocatedEntry>& selection);

private:
    using Chain = std::vector<CatalogueItem>;
    using Visit = std::function<void(const Chain& chain, LocatedEntry&& entry)>;

    void VisitFurther(const CatalogueItem& item, const Visit& visit);

    FolderChains chains_;
    ExactFile reader_;
};

/// The entries with a path, as FindEntries gives them; where there is none, the files that have it by a
/// further name.
std::vector<LocatedEntry> FindEntriesByAnyName(std::string_view path);

/// True for the name that the catalogue lists a file under.
bool IsListedName(const CatalogueItem& item, const ExactName& name);

/// True where a chain of folders leads through one of these EntryIds.
bool LeadsThrough(const std::vector<CatalogueItem>& chain, const std::set<std::uint32_t>& entryIds);

} // namespace thntfs
