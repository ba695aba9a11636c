#pragma once

#include "catalogue/CatalogueReader.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

namespace thntfs {

/// The folders of the open catalogue by their record numbers, which further names of files are told by. One
/// pass along the catalogue gathers them when the first is asked for.
class FolderChains {
public:
    FolderChains() = default;
    /// Gathers no further once `mayGoOn` says no; folders may then be missing.
    explicit FolderChains(std::function<bool()> mayGoOn)
        : mayGoOn_(std::move(mayGoOn)) {}

    /// The folders on the way from the top down to the one that a file reference names by its number, " Root"
    /// or a lost folder first. Empty where the catalogue has none, or its way doesn't begin at the top.
    const std::vector<CatalogueItem>& ChainTo(std::uint64_t reference);

    /// False where another folder has the record by now: its sequence number went up. Passes CUserException
    /// on.
    bool IsFolderOf(const CatalogueItem& folder, std::uint16_t sequence);

private:
    void Gather();
    [[nodiscard]] std::vector<CatalogueItem> Climb(std::uint32_t recordNumber) const;

    std::function<bool()> mayGoOn_; ///< empty for no limit
    bool gathered_ = false;
    std::unordered_map<std::uint32_t, std::uint32_t> entryOf_; ///< EntryId by record number
    std::optional<std::uint64_t> last_;                        ///< number of what chain_ leads to
    std::vector<CatalogueItem> chain_;
    std::optional<std::uint64_t> lastSector_; ///< of the folder whose sequence number was read last
    std::uint16_t lastSequence_ = 0;
};

} // namespace thntfs
