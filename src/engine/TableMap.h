#pragma once

#include "engine/RunMap.h"

#include <cstdint>
#include <functional>

namespace thntfs {

/// The runs of the Master File Table of a volume.
struct TableMap {
    RunMap Runs;
    bool Whole = false;             ///< no piece of the table is missing
    std::uint64_t VolumeInWork = 0; ///< the volume that it is of
};

/// Makes out the runs of the table of the volume in work: by the table's own record and its attribute list,
/// else by VolumeParams.MftExtents. Passes CUserException on.
TableMap BuildTableMap();

/// Looks at a checked record and tells whether it is the wanted one.
using RecordTest = std::function<bool(ConstBytes record)>;

/// Reads a record by the runs of a table, or from those that were found, as ReadTableRecord does.
bool ReadRecordByMap(const RunMap& runs, std::uint64_t number, Bytes record, const RecordTest& fits);

} // namespace thntfs
