#include "content/FolderChains.h"

#include "catalogue/CatalogueTotals.h"
#include "catalogue/EntryPass.h"
#include "engine/AttributePieces.h"
#include "engine/DecodeRecord.h"
#include "engine/EngineState.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr std::size_t kMaxChain = 4096; // deeper than any path

} // namespace

const std::vector<CatalogueItem>& FolderChains::ChainTo(std::uint64_t reference) {
    const std::uint64_t number = NumberOf(reference);
    if (last_ != number) {
        Gather();
        chain_ =
            number > 0xFFFFFFFF ? std::vector<CatalogueItem>() : Climb(static_cast<std::uint32_t>(number));
        last_ = number;
    }
    return chain_;
}

// The number goes up when a folder is deleted. The root and lost folders have no record here.
bool FolderChains::IsFolderOf(const CatalogueItem& folder, std::uint16_t sequence) {
    if (folder.RecordSector == 0 || sequence == 0) {
        return true;
    }
    if (lastSector_ != folder.RecordSector) {
        std::vector<std::uint8_t> record(Engine.VolumeParams.FileRecordBytes);
        lastSequence_ = ReadFileRecord(record, folder.RecordSector) ? RecordSequence(record) : 0;
        lastSector_ = folder.RecordSector;
    }
    const bool deletedSince = !folder.IsLive() && lastSequence_ == static_cast<std::uint16_t>(sequence + 1);
    return lastSequence_ == 0 || lastSequence_ == sequence || deletedSince;
}

// Of several folders with one number the live one counts, else the first.
void FolderChains::Gather() {
    if (gathered_) {
        return;
    }
    gathered_ = true;
    std::vector<bool> live(CatalogueEntryCount());
    PassEntries([&](std::uint32_t id, const CatalogueEntry& entry) {
        constexpr std::uint32_t kAskEvery = 0x10000;
        if (id % kAskEvery == 0 && mayGoOn_ && !mayGoOn_()) {
            return false;
        }
        if (id == kTopEntryId || (entry.Flags & kFlagFolder) == 0) {
            return true;
        }
        live[id] = (entry.Flags & kFlagLive) != 0;
        const auto [place, added] = entryOf_.try_emplace(entry.RecordNumber, id);
        if (!added && live[id] && !live[place->second]) {
            place->second = id;
        }
        return true;
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
