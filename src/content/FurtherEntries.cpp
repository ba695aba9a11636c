#include "content/FurtherEntries.h"

#include "engine/EngineState.h"
#include "platform/system/Text.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace thntfs {

namespace {

// As EntryWalk gives it: what stands under " Root" begins with a slash.
std::string PathOf(const std::vector<CatalogueItem>& chain, const std::u16string& name) {
    std::string path;
    for (const CatalogueItem& folder : chain) {
        path += folder.EntryId == kRootEntryId ? "/" : NarrowText(folder.Name) + "/";
    }
    return path + NarrowText(name);
}

LocatedEntry Locate(const std::vector<CatalogueItem>& chain, CatalogueItem item, const ExactName& name) {
    LocatedEntry entry;
    entry.Path = PathOf(chain, name.Name);
    entry.Folders.assign(chain.begin() + (chain.front().EntryId == kRootEntryId ? 1 : 0), chain.end());
    item.ParentNumber = static_cast<std::uint32_t>(NumberOf(name.Parent));
    item.Name = name.Name;
    item.NameLength = static_cast<std::uint16_t>(name.Name.size());
    entry.Item = std::move(item);
    return entry;
}

// Calls take(item) for each file that is noted to have a further name in a folder that is wanted.
template <typename Wanted, typename Take>
void TakeNoted(Wanted wanted, Take take) {
    std::set<std::uint32_t> taken;
    for (const FurtherParent& noted : Engine.FurtherParents) {
        CatalogueItem item;
        if (wanted(noted.ParentNumber) && taken.insert(noted.EntryId).second &&
            LoadEntryInto(noted.EntryId, item) != 0) {
            item.EntryId = noted.EntryId;
            take(item);
        }
    }
}

} // namespace

bool IsListedName(const CatalogueItem& item, const ExactName& name) {
    return static_cast<std::uint32_t>(NumberOf(name.Parent)) == item.ParentNumber && name.Name == item.Name;
}

bool LeadsThrough(const std::vector<CatalogueItem>& chain, const std::set<std::uint32_t>& entryIds) {
    return std::any_of(chain.begin(), chain.end(), [&entryIds](const CatalogueItem& folder) {
        return entryIds.contains(folder.EntryId);
    });
}

void FurtherEntries::VisitFurther(const CatalogueItem& item, const Visit& visit) {
    if (!reader_.Open(item)) {
        return;
    }
    for (const ExactName& name : reader_.Names()) {
        if (IsListedName(item, name)) {
            continue;
        }
        const Chain& chain = chains_.ChainTo(name.Parent);
        if (!chain.empty() && chains_.IsFolderOf(chain.back(), SequenceOf(name.Parent))) {
            visit(chain, Locate(chain, item, name));
        }
    }
}

std::vector<LocatedEntry> FurtherEntries::Find(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos || Engine.FurtherParents.empty()) {
        return {};
    }
    std::set<std::uint32_t> numbers;
    for (const LocatedEntry& folder : FindEntries(path.substr(0, std::max<std::size_t>(slash, 1)))) {
        numbers.insert(folder.Item.RecordNumber);
    }
    std::vector<LocatedEntry> found;
    TakeNoted([&](std::uint32_t number) { return numbers.contains(number); },
              [&](const CatalogueItem& item) {
                  VisitFurther(item, [&](const Chain&, LocatedEntry&& entry) {
                      if (entry.Path == path) {
                          found.push_back(std::move(entry));
                      }
                  });
              });
    return found;
}

std::vector<LocatedEntry> FurtherEntries::Below(const std::vector<LocatedEntry>& selection) {
    std::set<std::uint32_t> selected;
    for (const LocatedEntry& entry : selection) {
        selected.insert(entry.Item.EntryId);
    }
    std::vector<LocatedEntry> found;
    if (selected.contains(kTopEntryId)) {
        return found;
    }
    std::unordered_map<std::uint32_t, bool> below; // by the folder's number: many names share one
    const auto wanted = [&](std::uint32_t number) {
        const auto [place, added] = below.try_emplace(number, false);
        if (added) {
            place->second = LeadsThrough(chains_.ChainTo(number), selected);
        }
        return place->second;
    };
    TakeNoted(wanted, [&](const CatalogueItem& item) {
        if (selected.contains(item.EntryId) || wanted(item.ParentNumber)) {
            return;
        }
        bool taken = false;
        VisitFurther(item, [&](const Chain& chain, LocatedEntry&& entry) {
            if (!taken && LeadsThrough(chain, selected)) {
                taken = true;
                found.push_back(std::move(entry));
            }
        });
    });
    return found;
}

std::vector<LocatedEntry> FindEntriesByAnyName(std::string_view path) {
    std::vector<LocatedEntry> found = FindEntries(path);
    return found.empty() ? FurtherEntries().Find(path) : found;
}

} // namespace thntfs
