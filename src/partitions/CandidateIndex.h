#pragma once

#include "engine/StoredRecords.h"

#include <cstdint>
#include <map>
#include <tuple>

namespace thntfs {

/// The candidate list of SourceDisk while a search fills it, with the two look-ups that a search needs. A
/// disk full of look-alikes would make a candidate of every pair of them; beyond kMaxCandidates none is
/// added, and SearchLimits says so.
class CandidateIndex {
public:
    static constexpr std::size_t kMaxCandidates = 10000;

    /// Frees the list of SourceDisk, and what was known of the partition table's volumes.
    CandidateIndex();

    /// The first candidate with the same serial, clusters of the table and its mirror, cluster and record
    /// size, wherever it starts; null where there is none. Valid until the next Add.
    [[nodiscard]] PartitionCandidate* FindSameVolume(const PartitionCandidate& wanted) const;

    /// The first candidate with the same layout, whatever its serial, that starts where the wanted one starts
    /// or at most its own SectorsPerCluster sectors below; null where there is none.
    [[nodiscard]] PartitionCandidate* FindSameLayout(const PartitionCandidate& wanted) const;

    /// True where one more has its place. Where it hasn't, that is noted in SearchLimits.
    [[nodiscard]] bool HasRoom() const;

    /// Adds a candidate at the tail of the list. Gives false, and drops it, where the list is full.
    bool Add(const PartitionCandidate& candidate);

private:
    using Layout = std::tuple<std::uint64_t, std::uint64_t, std::uint32_t, std::uint16_t>;
    using Volume = std::pair<std::uint64_t, Layout>;

    using Place = std::size_t; ///< in the list
    using ByStart = std::multimap<std::uint64_t, Place>;

    static Place FirstWithin(const ByStart& starts, std::uint64_t lowest, std::uint64_t highest,
                             std::uint64_t start);
    static Layout LayoutOf(const PartitionCandidate& candidate);

    std::map<Volume, Place> volumes_; ///< the first of each
    std::map<Layout, ByStart> layouts_;
};

} // namespace thntfs
