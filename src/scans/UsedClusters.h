#pragma once

#include "scans/ClaimSpace.h"
#include "scans/VolumeBitmap.h"

#include <cstdint>

namespace thntfs {

/// What is known to be free in a range.
struct FreeSpace {
    std::uint64_t Sectors = 0;
    bool Known = true; ///< false where more may be free, or less
};

/// What tells which clusters are in use.
enum class UsedBy {
    Set,         ///< a set alone
    SetAndBitmap ///< the volume's bitmap, and the set of what live files claim, whatever the bitmap says
};

/// Which clusters are in use now. Ranges are to be asked for in rising order: a page of the bitmap is read
/// once.
class UsedClusters {
public:
    /// `live` must outlive it. Passes CUserException on.
    UsedClusters(const ClusterSet& live, UsedBy by, const ClaimSpace& space)
        : live_(live)
        , by_(by)
        , space_(space) {}

    /// The free ones among the sectors of the volume from `first` up to `end`, which lie in the claim space.
    /// Passes CUserException on.
    FreeSpace FreeSectors(std::uint64_t first, std::uint64_t end);

private:
    FreeSpace FreeClusters(std::uint64_t first, std::uint64_t end);
    void LoadPage(std::uint64_t page);

    const ClusterSet& live_;
    UsedBy by_;
    ClaimSpace space_;
    VolumeBitmap bitmap_;
    std::uint64_t page_ = ~std::uint64_t{0};
    ClusterSet::Page used_{};
    bool known_ = false;
};

} // namespace thntfs
