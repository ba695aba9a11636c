#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace thntfs {

/// A folder of the tree. Places are indexes into FolderNodes::Nodes.
struct FolderNode {
    std::uint64_t DirectBytes = 0; ///< its own size and those of the files right in it
    std::uint64_t NameStart = 0;   ///< in FolderNodes::Names
    std::uint32_t EntryId = 0;
    std::uint32_t Parent = 0; ///< place of the parent; the top's is its own
    std::uint32_t End = 0;    ///< behind the place of the last folder below it
    std::uint32_t DirectFiles = 0;
    std::uint16_t NameUnits = 0;
    bool Live = true;
};

/// All folders of the catalogue. The top is at place 0; each folder is followed by what is below it, the
/// folders of one parent in the order of the catalogue.
struct FolderNodes {
    std::vector<FolderNode> Nodes;
    std::u16string Names;

    [[nodiscard]] std::u16string_view Name(std::uint32_t place) const;
};

/// Walks through the catalogue that is open, on the thread that calls, and reports the progress to the host.
/// Sets the totals of the engine state. A catalogue that can't be read to its end has shown its box and gives
/// what was found till then, the top at least.
FolderNodes CollectFolders();

} // namespace thntfs
