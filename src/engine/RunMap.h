#pragma once

#include "platform/system/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace thntfs {

/// A run of a non-resident attribute. Vcn counts clusters within the attribute, Lcn within the volume.
struct MapRun {
    std::uint64_t Vcn = 0;
    std::uint64_t Clusters = 0; ///< never 0
    std::uint64_t Lcn = 0;      ///< 0 for a hole
    bool Hole = false;

    [[nodiscard]] std::uint64_t End() const { return Vcn + Clusters; }
};

/// No cluster of an attribute has a number as large as this.
inline constexpr std::uint64_t kVcnLimit = std::uint64_t{1} << 54U;
/// Nor one of a volume as this: with the largest clusters a byte's place takes 63 bits.
inline constexpr std::uint64_t kLcnLimit = std::uint64_t{1} << 42U;

[[nodiscard]] inline bool FitsVolume(std::uint64_t lcn, std::uint64_t clusters) {
    return lcn < kLcnLimit && clusters <= kLcnLimit - lcn;
}

/// Where the clusters of an attribute lie, by VCN. Its pieces come from one or more records, in any order;
/// what no piece tells of has no run.
class RunMap {
public:
    /// Decodes the run list at the start of some bytes, whose first cluster is `firstVcn`, and takes its
    /// runs. Fields have up to 8 bytes, the second of them with a sign. False where the list is malformed,
    /// has no closing zero, or tells of clusters that another piece has told of: of a malformed list the runs
    /// in front of the fault are taken, of a second teller none. With `endVcn` runs that reach beyond it are
    /// malformed too.
    bool Add(ConstBytes runList, std::uint64_t firstVcn, std::uint64_t endVcn = kVcnLimit);

    /// Takes a run that lies behind all others.
    void Append(std::uint64_t clusters, std::uint64_t lcn);

    /// The run that holds a cluster; null where none does.
    [[nodiscard]] const MapRun* Find(std::uint64_t vcn) const;
    /// The first run that ends behind a cluster: the one that holds it, or the next. Null behind the last.
    [[nodiscard]] const MapRun* FindFrom(std::uint64_t vcn) const;

    /// The same, but holes are passed over.
    [[nodiscard]] const MapRun* FindAllocated(std::uint64_t vcn) const;

    /// Takes away what doesn't fit a volume whose clusters from `first` up to `end` can be had: parts of runs
    /// that lie outside, and all that comes behind as many allocated clusters as it has. The parts are handed
    /// over by VCN and length.
    void CutToVolume(std::uint64_t first, std::uint64_t end,
                     const std::function<void(std::uint64_t, std::uint64_t)>& lost);

    /// In order of their VCN, without overlaps.
    [[nodiscard]] const std::vector<MapRun>& Runs() const { return runs_; }
    [[nodiscard]] std::uint64_t EndVcn() const { return runs_.empty() ? 0 : runs_.back().End(); }
    /// Clusters that aren't holes.
    [[nodiscard]] std::uint64_t AllocatedClusters() const;

private:
    bool Insert(const std::vector<MapRun>& piece);

    std::vector<MapRun> runs_;
};

} // namespace thntfs
