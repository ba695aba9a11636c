#include "catalogue/FindWalk.h"

#include <algorithm>
#include <span>

namespace thntfs {

namespace {

// The first hit shouldn't wait for many entries, and many folders are read fastest at once.
constexpr std::size_t kFirstBatch = 256;
constexpr std::size_t kLargestBatch = 131072;
constexpr std::size_t kEntriesALook = 4096;

} // namespace

FindWalk::FindWalk(const FindCriteria& criteria, std::uint32_t startId)
    : matcher_(criteria)
    , seen_(static_cast<std::size_t>(CatalogueEntryCount()))
    , batchSize_(kFirstBatch) {
    if (offsets_.BlockOffset(startId)) {
        queue_.push_back(startId);
    }
}

std::optional<FindHit> FindWalk::Next(const std::function<bool()>& mayGoOn) {
    while (!Ended()) {
        if (next_ == batchEnd_) {
            LoadMore();
            continue; // the folders may have been empty
        }
        if (next_ % kEntriesALook == 0 && !mayGoOn()) {
            return std::nullopt;
        }
        const std::size_t place = next_++;
        if (batch_.Take(place - batchBegin_, item_) != 0 && matcher_.Matches(item_)) {
            return FindHit{folders_[place], ids_[place]};
        }
    }
    return std::nullopt;
}

void FindWalk::LoadMore() {
    if (next_ == ids_.size()) {
        Plan();
    }
    batchBegin_ = next_;
    batchEnd_ = next_ + std::min(ids_.size() - next_, kLargestBatch);
    batch_.Load(std::span(ids_).subspan(batchBegin_, batchEnd_ - batchBegin_));
}

void FindWalk::Plan() {
    ids_.clear();
    folders_.clear();
    next_ = 0;
    while (ids_.size() < batchSize_ && !queue_.empty()) {
        const std::uint32_t folder = queue_.front();
        queue_.pop_front();
        PlanFolder(folder);
    }
    batchSize_ = std::min(2 * batchSize_, kLargestBatch);
}

// Files come before folders, each in the reverse of the order in which they were added.
void FindWalk::PlanFolder(std::uint32_t folderId) {
    const auto begin = static_cast<std::ptrdiff_t>(ids_.size());
    ChildWalk children(offsets_.BlockOffset(folderId).value_or(0), &seenBlocks_);
    for (std::uint32_t child = children.Next(); child != 0; child = children.Next()) {
        if (child < seen_.size() && !seen_[child]) {
            seen_[child] = true;
            ids_.push_back(child);
        }
    }
    std::reverse(ids_.begin() + begin, ids_.end());
    const auto folders = std::stable_partition(ids_.begin() + begin, ids_.end(), [this](std::uint32_t id) {
        return !offsets_.BlockOffset(id).has_value();
    });
    queue_.insert(queue_.end(), folders, ids_.end());
    folders_.resize(ids_.size(), folderId);
}

} // namespace thntfs
