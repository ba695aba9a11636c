#include "catalogue/CatalogueTotals.h"

#include "catalogue/EntryPass.h"
#include "catalogue/EntryWalk.h"

#include <optional>

namespace thntfs {

namespace {

// With names of the length that a record can hold, no path down to this depth is one that a walk doesn't
// follow.
constexpr std::size_t kDeepestSure = 120;
constexpr std::uint16_t kLongestSure = 256;

template <typename Entry>
void Count(const Entry& entry, CatalogueTotals& totals) {
    const bool folder = (entry.Flags & kFlagFolder) != 0;
    ++(folder ? totals.Folders : totals.Files);
    totals.Bytes += entry.Size;
    if ((entry.Flags & kFlagLive) == 0) {
        ++(folder ? totals.DeletedFolders : totals.DeletedFiles);
    }
    totals.LostFolders += IsLostFolder(entry) ? 1U : 0U;
}

bool MarkReached(Descent& descent, const FolderOffsets& offsets) {
    for (std::uint32_t id = descent.Next(); id != 0; id = descent.Next()) {
        if (descent.Depth() > kDeepestSure) {
            return false;
        }
        if (const auto blockOffset = offsets.BlockOffset(id)) {
            descent.Enter(*blockOffset);
        }
    }
    return true;
}

// The chains tell what is reached, two passes along EntryFile the rest: nothing is read in the order of the
// tree but the chains. Nothing where the result might not be that of a walk.
std::optional<CatalogueTotals> CountInPasses() {
    const FolderOffsets offsets;
    Descent descent(0);
    if (!offsets.Whole() || !MarkReached(descent, offsets)) {
        return std::nullopt;
    }
    CatalogueTotals totals;
    bool sure = true;
    const bool whole = PassEntries([&](std::uint32_t id, const CatalogueEntry& entry) {
        if (descent.HasGiven(id)) {
            Count(entry, totals);
            sure = sure && entry.NameLength <= kLongestSure;
        }
    });
    return whole && sure ? std::optional(totals) : std::nullopt;
}

CatalogueTotals CountInWalk() {
    CatalogueTotals totals;
    EntryWalk walk(WalkStart{}, WalkReach::Whole);
    while (walk.Next()) {
        Count(walk.Item(), totals);
    }
    return totals;
}

} // namespace

CatalogueTotals CountCatalogue() {
    const auto totals = CountInPasses();
    return totals ? *totals : CountInWalk();
}

} // namespace thntfs
