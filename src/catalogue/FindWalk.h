#pragma once

#include "catalogue/EntryBatch.h"
#include "catalogue/FindCriteria.h"
#include "catalogue/FolderOffsets.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

namespace thntfs {

/// An entry that was found, and the folder that it stands in.
struct FindHit {
    std::uint32_t Folder = 0;
    std::uint32_t Entry = 0;
};

/// The entries below a folder that meet criteria, one after the other: breadth first, the children of a
/// folder in the order in which ListFolder gives them. The folder itself is never one. No entry comes twice,
/// however a damaged catalogue links them.
///
/// Stands where it has got to, so that the next hit costs what lies between the two. In memory are the
/// folders still to come, a bit an entry, and some thousand entries read ahead. It is of the catalogue that
/// was open when it was made.
class FindWalk {
public:
    FindWalk(const FindCriteria& criteria, std::uint32_t startId);
    FindWalk(const FindWalk&) = delete;
    FindWalk& operator=(const FindWalk&) = delete;

    /// The next hit; none behind the last, or where `mayGoOn`, asked now and then, says no: the walk goes on
    /// from there at the next call. Throws CUserException, after a box, where a block can't be read.
    std::optional<FindHit> Next(const std::function<bool()>& mayGoOn);

    /// The entry that Next has just given.
    [[nodiscard]] const CatalogueItem& Item() const { return item_; }

    /// True once all entries have been looked at.
    [[nodiscard]] bool Ended() const { return next_ == ids_.size() && queue_.empty(); }

private:
    void LoadMore();
    void Plan();
    void PlanFolder(std::uint32_t folderId);

    FindMatcher matcher_;
    FolderOffsets offsets_;
    SeenBlocks seenBlocks_;
    std::vector<bool> seen_;          ///< by EntryId
    std::deque<std::uint32_t> queue_; ///< folders whose children are still to come

    // Entries in their order, of which a part is loaded.
    std::vector<std::uint32_t> ids_;
    std::vector<std::uint32_t> folders_; ///< in which each of them stands
    std::size_t next_ = 0;               ///< the one to look at
    std::size_t batchSize_;
    EntryBatch batch_;
    std::size_t batchBegin_ = 0;
    std::size_t batchEnd_ = 0;
    CatalogueItem item_;
};

} // namespace thntfs
