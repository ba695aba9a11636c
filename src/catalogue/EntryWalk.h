#pragma once

#include "catalogue/CatalogueReader.h"
#include "catalogue/EntryBatch.h"
#include "catalogue/FolderOffsets.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace thntfs {

/// The folder that a walk starts from.
struct WalkStart {
    std::uint32_t BlockOffset = 0; ///< byte offset in TreeFile of its first block
    std::string Path;              ///< "" for the top and for " Root"
    bool IsTop = true;             ///< the top: its children's paths have no slash in front
};

/// How much of the catalogue a walk is going to see. The order is the same; a walk over the whole plans
/// ahead, so that the files are read along and not across.
enum class WalkReach { Part, Whole };

/// The ids below a folder, depth first, as far as the user enters the folders among them. No id comes twice,
/// however a damaged catalogue links them.
class Descent {
public:
    /// `blockOffset`: byte offset in TreeFile of the first folder's first block.
    explicit Descent(std::uint32_t blockOffset);
    Descent(const Descent&) = delete;
    Descent& operator=(const Descent&) = delete;

    /// The next id, 0 behind the last. Throws CUserException, after a box, where a block can't be read.
    std::uint32_t Next();
    /// What is in this folder, the one that Next gave, comes next.
    void Enter(std::uint32_t blockOffset);
    /// Folders above the id that Next gave, but for the first.
    [[nodiscard]] std::size_t Depth() const { return levels_.size() - 1; }
    [[nodiscard]] bool HasGiven(std::uint32_t entryId) const { return seen_[entryId]; }

private:
    SeenBlocks seenBlocks_;
    std::vector<ChildWalk> levels_;
    std::vector<bool> seen_;
};

/// The entries below a folder, depth first: a folder's children in the order in which the catalogue holds
/// them, each folder followed by what is below it. No entry comes twice, however a damaged catalogue links
/// them, and a path longer than NTFS allows isn't followed further down, so every walk ends.
///
/// Path: what stands under " Root" is "/name", under the top the bare name, below any other folder that
/// folder's path, a slash and the name. " Root" itself has the path "".
class EntryWalk {
public:
    explicit EntryWalk(WalkStart start, WalkReach reach = WalkReach::Part);

    /// Moves to the next entry; false behind the last. Throws CUserException where a block can't be read.
    bool Next();

    /// Called after Next gave a folder: its children are passed over.
    void SkipFolder();

    [[nodiscard]] const CatalogueItem& Item() const { return item_; }
    [[nodiscard]] const std::string& Path() const { return path_; }
    /// Levels below the folder that the walk started from, 0 for its direct children.
    [[nodiscard]] std::size_t Depth() const { return pathLengths_.size() - 2; }

private:
    bool Plan();
    bool PlanNext();
    [[nodiscard]] std::optional<std::uint32_t> BlockOffsetOf(std::uint32_t entryId) const;
    void EnterPath(std::size_t depth);

    bool underTop_;
    std::size_t batchSize_;
    std::unique_ptr<FolderOffsets> offsets_; ///< of a walk over the whole

    // The plan: ids in order, with the depth of each.
    Descent descent_;
    std::optional<std::uint32_t> entered_; ///< the entry planned last; its children come next if it has any
    std::vector<std::uint32_t> ids_;
    std::vector<std::size_t> depths_;
    EntryBatch batch_;
    std::size_t next_ = 0;

    CatalogueItem item_;
    std::string path_;
    std::vector<std::size_t>
        pathLengths_;      ///< of the paths of the folders above the entry in hand, and its own
    std::size_t maxDepth_; ///< entries below it belong to a folder that is passed over
};

} // namespace thntfs
