#include "content/FurtherNames.h"

#include "content/FurtherEntries.h"
#include "platform/system/Text.h"

namespace thntfs {

void FurtherNames::Select(const std::vector<LocatedEntry>& entries) {
    for (const LocatedEntry& entry : entries) {
        if (entry.Item.IsFolder()) {
            selected_.insert(entry.Item.EntryId);
        }
    }
}

bool FurtherNames::GoTo(const ExactName& name) {
    if (selected_.empty()) {
        return false;
    }
    const std::vector<CatalogueItem>& chain = chains_.ChainTo(name.Parent);
    if (chain.empty() || !Selected(chain) || !chains_.IsFolderOf(chain.back(), SequenceOf(name.Parent))) {
        return false;
    }
    way_.EnterChain(chain);
    return true;
}

bool FurtherNames::Selected(const std::vector<CatalogueItem>& chain) const {
    return selected_.contains(kTopEntryId) || LeadsThrough(chain, selected_);
}

std::string FurtherNames::PathOf(const std::u16string& name) const {
    return way_.Path() + "/" + NarrowText(name);
}

} // namespace thntfs
