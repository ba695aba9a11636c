#include "catalogue/EntryWalk.h"

#include "platform/Text.h"

namespace thntfs {

namespace {

constexpr std::uint32_t kRootEntryId = 1;
constexpr std::size_t kMaxPathBytes = std::size_t{3} * 32767; // a path of NTFS has at most 32,767 UTF-16 units

} // namespace

EntryWalk::EntryWalk(std::uint32_t blockOffset, std::string path, bool underTop)
    : seen_(static_cast<std::size_t>(CatalogueEntryCount()))
    , path_(std::move(path))
    , underTop_(underTop) {
    levels_.push_back({ChildWalk(blockOffset), path_.size()});
}

bool EntryWalk::Next() {
    if (descend_) {
        Descend();
    }
    while (!levels_.empty()) {
        path_.resize(levels_.back().PathLength);
        const std::uint32_t child = levels_.back().Children.Next();
        if (child == 0) {
            levels_.pop_back();
        } else if (Visit(child)) {
            return true;
        }
    }
    return false;
}

bool EntryWalk::Visit(std::uint32_t entryId) {
    if (entryId >= seen_.size() || seen_[entryId] || LoadEntryInto(entryId, item_) == 0) {
        return false;
    }
    seen_[entryId] = true;
    item_.EntryId = entryId;
    if (!underTop_ || levels_.size() > 1) {
        path_ += '/';
    }
    if (entryId == kRootEntryId) {
        path_.clear(); // what stands under it starts with the slash
    } else {
        AppendNarrowText(path_, item_.Name);
    }
    descend_ = item_.IsFolder();
    return true;
}

void EntryWalk::Descend() {
    descend_ = false;
    if (path_.size() <= kMaxPathBytes) {
        levels_.push_back({ChildWalk(item_.BlockOffset), path_.size()});
    }
}

} // namespace thntfs
