#include "content/FurtherNames.h"

#include "content/ExactFile.h"
#include "engine/DecodeRecord.h"
#include "engine/EngineState.h"
#include "platform/system/Text.h"

#include <algorithm>

namespace thntfs {

void FurtherNames::Select(const std::vector<LocatedEntry>& entries) {
    for (const LocatedEntry& entry : entries) {
        if (entry.Item.IsFolder()) {
            selected_.insert(entry.Item.EntryId);
        }
    }
}

bool FurtherNames::GoTo(const ExactName& name) {
    if (selected_.empty() || NumberOf(name.Parent) > 0xFFFFFFFF) {
        return false;
    }
    const std::vector<CatalogueItem>& chain =
        chains_.ChainTo(static_cast<std::uint32_t>(NumberOf(name.Parent)));
    if (chain.empty() || !Selected(chain) || !IsFolderOf(chain.back(), SequenceOf(name.Parent))) {
        return false;
    }
    way_.EnterChain(chain);
    return true;
}

bool FurtherNames::Selected(const std::vector<CatalogueItem>& chain) const {
    return selected_.contains(kTopEntryId) ||
           std::any_of(chain.begin(), chain.end(),
                       [this](const CatalogueItem& folder) { return selected_.contains(folder.EntryId); });
}

// A record's sequence number goes up when its folder is deleted. The root and lost folders have no record
// here.
bool FurtherNames::IsFolderOf(const CatalogueItem& folder, std::uint16_t sequence) {
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

std::string FurtherNames::PathOf(const std::u16string& name) const {
    return way_.Path() + "/" + NarrowText(name);
}

} // namespace thntfs
