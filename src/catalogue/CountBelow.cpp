#include "catalogue/CountBelow.h"

#include "catalogue/CatalogueReader.h"
#include "engine/EngineState.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace thntfs {

namespace {

constexpr std::size_t kIdsAtATime = 16384;

/// The ids below a folder, group by group, in an order that suits the files: nothing depends on it.
class BelowWalk {
public:
    explicit BelowWalk(std::uint32_t blockOffset)
        : folders_{blockOffset}
        , seenIds_(static_cast<std::size_t>(CatalogueEntryCount())) {}
    BelowWalk(const BelowWalk&) = delete;
    BelowWalk& operator=(const BelowWalk&) = delete;

    void Enter(std::uint32_t blockOffset) { folders_.push_back(blockOffset); }

    /// The next ids, in the order of EntryFile; none at the end.
    const std::vector<std::uint32_t>& NextGroup() {
        ids_.clear();
        while (ids_.size() < kIdsAtATime && (children_ || EnterNext())) {
            TakeChild(children_->Next());
        }
        std::sort(ids_.begin(), ids_.end());
        return ids_;
    }

private:
    bool EnterNext() {
        if (folders_.empty()) {
            return false;
        }
        const std::uint32_t blockOffset = folders_.back();
        folders_.pop_back();
        children_.emplace(blockOffset, &seenBlocks_);
        return true;
    }

    void TakeChild(std::uint32_t child) {
        if (child == 0) {
            children_.reset();
        } else if (child < seenIds_.size() && !seenIds_[child]) {
            seenIds_[child] = true;
            ids_.push_back(child);
        }
    }

    std::vector<std::uint32_t> folders_; ///< BlockOffsets of those yet to be entered
    std::optional<ChildWalk> children_;  ///< of the folder in hand
    SeenBlocks seenBlocks_;
    std::vector<bool> seenIds_;
    std::vector<std::uint32_t> ids_;
};

// One box is enough where the file fails.
CatalogueEntry EntryOf(std::uint32_t entryId) {
    CatalogueEntry entry;
    if (LoadStoredEntry(entryId, entry) == 0) {
        throw CUserException();
    }
    return entry;
}

} // namespace

BelowCounts CountBelow(std::uint32_t blockOffset,
                       const std::function<bool(const BelowCounts& soFar)>& mayGoOn) {
    BelowCounts below;
    BelowWalk walk(blockOffset);
    while (mayGoOn(below)) {
        const std::vector<std::uint32_t>& ids = walk.NextGroup();
        if (ids.empty()) {
            break;
        }
        for (const std::uint32_t id : ids) {
            const CatalogueEntry entry = EntryOf(id);
            below.Bytes += entry.Size;
            if ((entry.Flags & kFlagFolder) != 0) {
                ++below.Folders;
                walk.Enter(entry.BlockOffset);
            } else {
                ++below.Files;
            }
        }
    }
    return below;
}

} // namespace thntfs
