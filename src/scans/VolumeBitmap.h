#pragma once

#include "engine/RunMap.h"
#include "scans/ClusterSet.h"

#include <cstdint>

namespace thntfs {

/// The volume's own account of its clusters, read page by page.
class VolumeBitmap {
public:
    /// Finds it by its record, which a search may have met outside the table, and by that record's attribute
    /// list. Without it no page can be read. Passes CUserException on.
    VolumeBitmap();

    /// Reads the bits of the clusters page * kPageClusters and those behind it. False where it doesn't hold
    /// the first `clusters` of them, or they can't be read. Passes CUserException on.
    bool ReadPage(std::uint64_t page, std::uint64_t clusters, ClusterSet::Page& bits) const;

private:
    RunMap runs_;
    std::uint64_t bytes_ = 0; ///< that have been written
};

} // namespace thntfs
