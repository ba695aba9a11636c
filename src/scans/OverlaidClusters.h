#pragma once

#include "scans/ClaimSpace.h"
#include "scans/ClusterSet.h"

#include <memory>

namespace thntfs {

/// The clusters of the volume in work on which another volume, one that was formatted over it, keeps
/// something by its own bitmap. Null where there is no such volume, or its bitmap can't be had. Passes
/// CUserException on.
std::unique_ptr<ClusterSet> OverlaidClusters(const ClaimSpace& space);

} // namespace thntfs
