#include "catalogue/EntryWalk.h"

#include "platform/system/Text.h"

namespace thntfs {

namespace {

constexpr std::size_t kMaxPathUnits = 32767; // the longest path of NTFS
constexpr std::size_t kMaxPathBytes = 3 * kMaxPathUnits;
constexpr std::size_t kWholeBatch = 131072;
constexpr std::size_t kNoLimit = ~std::size_t{0};

} // namespace

Descent::Descent(std::uint32_t blockOffset)
    : seen_(static_cast<std::size_t>(CatalogueEntryCount())) {
    levels_.emplace_back(blockOffset, &seenBlocks_);
}

void Descent::Enter(std::uint32_t blockOffset) {
    if (levels_.size() < kMaxPathUnits) {
        levels_.emplace_back(blockOffset, &seenBlocks_);
    }
}

std::uint32_t Descent::Next() {
    while (!levels_.empty()) {
        const std::uint32_t child = levels_.back().Next();
        if (child == 0) {
            levels_.pop_back();
        } else if (child < seen_.size() && !seen_[child]) {
            seen_[child] = true;
            return child;
        }
    }
    return 0;
}

EntryWalk::EntryWalk(WalkStart start, WalkReach reach)
    : underTop_(start.IsTop)
    , batchSize_(reach == WalkReach::Whole ? kWholeBatch : 1)
    , descent_(start.BlockOffset)
    , path_(std::move(start.Path))
    , pathLengths_{path_.size()}
    , maxDepth_(kNoLimit) {
    if (reach == WalkReach::Whole) {
        offsets_ = std::make_unique<FolderOffsets>();
    }
}

bool EntryWalk::Next() {
    for (;; ++next_) {
        if (next_ == ids_.size() && !Plan()) {
            return false;
        }
        const std::size_t depth = depths_[next_];
        if (depth > maxDepth_) {
            continue;
        }
        maxDepth_ = kNoLimit;
        if (batch_.Take(next_, item_) != 0) {
            item_.EntryId = ids_[next_++];
            EnterPath(depth);
            return true;
        }
        maxDepth_ = depth; // what is below an entry that can't be read can't be placed
    }
}

void EntryWalk::SkipFolder() {
    maxDepth_ = Depth();
    if (entered_ == item_.EntryId) {
        entered_.reset();
    }
}

bool EntryWalk::Plan() {
    ids_.clear();
    depths_.clear();
    next_ = 0;
    while (ids_.size() < batchSize_ && PlanNext()) {
    }
    batch_.Load(ids_);
    return !ids_.empty();
}

bool EntryWalk::PlanNext() {
    if (entered_) {
        if (const auto blockOffset = BlockOffsetOf(*entered_)) {
            descent_.Enter(*blockOffset);
        }
    }
    entered_.reset();
    const std::uint32_t child = descent_.Next();
    if (child == 0) {
        return false;
    }
    ids_.push_back(child);
    depths_.push_back(descent_.Depth());
    entered_ = child;
    return true;
}

// A walk that doesn't plan ahead has the entry itself in hand.
std::optional<std::uint32_t> EntryWalk::BlockOffsetOf(std::uint32_t entryId) const {
    if (offsets_ != nullptr) {
        return offsets_->BlockOffset(entryId);
    }
    return item_.EntryId == entryId && item_.IsFolder() ? std::optional(item_.BlockOffset) : std::nullopt;
}

void EntryWalk::EnterPath(std::size_t depth) {
    path_.resize(pathLengths_[depth]);
    if (item_.EntryId == kRootEntryId && underTop_ && depth == 0) {
        path_.clear(); // what stands under it starts with the slash
    } else {
        if (!underTop_ || depth > 0) {
            path_ += '/';
        }
        AppendNarrowText(path_, item_.Name);
    }
    pathLengths_.resize(depth + 1);
    pathLengths_.push_back(path_.size());
    if (path_.size() > kMaxPathBytes) {
        SkipFolder();
    }
}

} // namespace thntfs
