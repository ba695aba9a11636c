#include "content/FolderChains.h"

#include "catalogue/CatalogueTotals.h"
#include "catalogue/EntryPass.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr std::size_t kMaxChain = 4096; // deeper than any path

} // namespace

const std::vector<CatalogueItem>& FolderChains::ChainTo(std::uint32_t recordNumber) {
    if (last_ != recordNumber) {
        Gather();
        chain_ = Climb(recordNumber);
        last_ = recordNumber;
    }
    return chain_;
}

// Of several folders with one number the live one counts, else the first.
void FolderChains::Gather() {
    if (gathered_) {
        return;
    }
    gathered_ = true;
    std::vector<bool> live(CatalogueEntryCount());
    PassEntries([&](std::uint32_t id, const CatalogueEntry& entry) {
        if (id == kTopEntryId || (entry.Flags & kFlagFolder) == 0) {
            return;
        }
        live[id] = (entry.Flags & kFlagLive) != 0;
        const auto [place, added] = entryOf_.try_emplace(entry.RecordNumber, id);
        if (!added && live[id] && !live[place->second]) {
            place->second = id;
        }
    });
}

std::vector<CatalogueItem> FolderChains::Climb(std::uint32_t recordNumber) const {
    std::vector<CatalogueItem> chain;
    while (chain.size() < kMaxChain) {
        const auto place = entryOf_.find(recordNumber);
        CatalogueItem folder;
        if (place == entryOf_.end() || LoadEntryInto(place->second, folder) == 0) {
            return {};
        }
        folder.EntryId = place->second;
        chain.push_back(folder);
        if (folder.EntryId == kRootEntryId || IsLostFolder(folder)) {
            std::reverse(chain.begin(), chain.end());
            return chain;
        }
        recordNumber = folder.ParentNumber;
    }
    return {};
}

} // namespace thntfs
