#include "partitions/CandidateIndex.h"

#include "engine/EngineState.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr std::size_t kNowhere = ~std::size_t{0};

// At least the sectors of a listed candidate's cluster.
std::uint64_t FarthestBelow(const PartitionCandidate& wanted) {
    return std::max<std::uint64_t>(255, wanted.ClusterBytes / 512);
}

} // namespace

CandidateIndex::CandidateIndex() {
    Engine.SourceDisk.Partitions.clear();
    Engine.TableVolumes.clear();
    Engine.VolumeFacts.clear();
    Engine.SearchLimits = 0;
}

CandidateIndex::Layout CandidateIndex::LayoutOf(const PartitionCandidate& candidate) {
    return {candidate.MftCluster, candidate.MftMirrCluster, candidate.ClusterBytes,
            candidate.FileRecordBytes};
}

PartitionCandidate* CandidateIndex::FindSameVolume(const PartitionCandidate& wanted) const {
    const auto found = volumes_.find({wanted.VolumeSerial, LayoutOf(wanted)});
    return found == volumes_.end() ? nullptr : &Engine.SourceDisk.Partitions[found->second];
}

PartitionCandidate* CandidateIndex::FindSameLayout(const PartitionCandidate& wanted) const {
    const auto layout = layouts_.find(LayoutOf(wanted));
    if (layout == layouts_.end()) {
        return nullptr;
    }
    const std::uint64_t start = wanted.StartSector;
    const std::uint64_t below = start - FarthestBelow(wanted);
    // Starts worked out from records may have wrapped below zero.
    const Place first = below <= start
                            ? FirstWithin(layout->second, below, start, start)
                            : std::min(FirstWithin(layout->second, 0, start, start),
                                       FirstWithin(layout->second, below, ~std::uint64_t{0}, start));
    return first == kNowhere ? nullptr : &Engine.SourceDisk.Partitions[first];
}

// The first in the list that starts from lowest to highest and at most its own cluster below `start`.
CandidateIndex::Place CandidateIndex::FirstWithin(const ByStart& starts, std::uint64_t lowest,
                                                  std::uint64_t highest, std::uint64_t start) {
    Place first = kNowhere;
    for (auto at = starts.lower_bound(lowest); at != starts.end() && at->first <= highest; ++at) {
        if (start - at->first <= Engine.SourceDisk.Partitions[at->second].SectorsPerCluster) {
            first = std::min(first, at->second);
        }
    }
    return first;
}

bool CandidateIndex::HasRoom() const {
    if (Engine.SourceDisk.Partitions.size() < kMaxCandidates) {
        return true;
    }
    Engine.SearchLimits |= kLimitCandidates;
    return false;
}

bool CandidateIndex::Add(const PartitionCandidate& candidate) {
    if (!HasRoom()) {
        return false;
    }
    const Place place = Engine.SourceDisk.Partitions.size();
    Engine.SourceDisk.Partitions.push_back(candidate);
    volumes_.try_emplace({candidate.VolumeSerial, LayoutOf(candidate)}, place);
    layouts_[LayoutOf(candidate)].emplace(candidate.StartSector, place);
    return true;
}

} // namespace thntfs
