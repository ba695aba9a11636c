#pragma once

namespace thntfs {

/// How far a scan goes beyond its own walk. Whatever is found additionally stands behind the entries of that
/// walk, which are the same with and without it.
struct ScanReach {
    /// Records of the table that its plain runs miss, records at sectors that the walk passes over, and names
    /// that stand in extension records it can't get to.
    bool Exact = false;
    /// Records without a usable name are listed, behind all others: under their short name or as "#" and
    /// their number. Otherwise they are counted.
    bool Deep = false;
    /// What is still there of deleted files is judged. Without it, it is unknown.
    bool Conditions = true;
};

} // namespace thntfs
