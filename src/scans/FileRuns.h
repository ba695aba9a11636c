#pragma once

#include "engine/Attribute.h"

#include <cstdint>

namespace thntfs {

// The runs that decide whether a file is still there: those of its unnamed data, and where the system has
// compressed it, of the stream that holds the data then.

/// Whether an attribute of a checked record holds such data.
bool HoldsFileData(ConstBytes record, const Attribute& attribute);

/// Sectors per cluster of the volume that an unfragmented attribute was laid out on, as its own sizes tell;
/// 0 where they make no sense. An attribute without clusters gives those of the volume in work.
std::uint64_t OwnClusterSectors(const Attribute& data);

/// Clusters at the front of an attribute that hold bytes of the file. Those behind were set aside, and
/// nothing is lost with them.
std::uint64_t NeededClusters(const Attribute& data, std::uint64_t clusterBytes);

} // namespace thntfs
