#pragma once

#include "catalogue/CatalogueReader.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace thntfs {


/// The entries below a folder, depth first: a folder's children in the order in which the catalogue holds them,
/// each folder followed by what is below it. No entry comes twice, however a damaged catalogue links them, and a
/// path longer than NTFS allows isn't followed further down, so every walk ends.
class EntryWalk {
public:
    /// `blockOffset`: byte offset in TreeFile of the folder's first block. `path`: its path, "" for the top and
    /// for " Root" (whose children start with a slash, as told by `underTop` being false).
    EntryWalk(std::uint32_t blockOffset, std::string path, bool underTop);

    /// Moves to the next entry; false behind the last. Throws CUserException where a block can't be read.
    bool Next();

    /// Called after Next gave a folder: its children are passed over.
    void SkipFolder() { descend_ = false; }

    [[nodiscard]] const CatalogueItem& Item() const { return item_; }
    [[nodiscard]] const std::string& Path() const { return path_; }
    /// Levels below the folder that the walk started from, 0 for its direct children.
    [[nodiscard]] std::size_t Depth() const { return levels_.size() - 1; }

private:
    struct Level {
        ChildWalk Children;
        std::size_t PathLength; ///< of the folder's own path
    };

    bool Visit(std::uint32_t entryId);
    void Descend();

    std::vector<Level> levels_;
    std::vector<bool> seen_;
    CatalogueItem item_;
    std::string path_;
    bool underTop_;
    bool descend_ = false;
};

} // namespace thntfs
