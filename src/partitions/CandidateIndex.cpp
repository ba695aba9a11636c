#include "partitions/CandidateIndex.h"

#include "engine/EngineState.h"

#include <algorithm>

namespace thntfs {

namespace {

// At least the sectors of a listed candidate's cluster.
std::uint64_t FarthestBelow(const PartitionCandidate& wanted) {
    return std::max<std::uint64_t>(255, wanted.ClusterBytes / 512);
}

} // namespace

CandidateIndex::CandidateIndex() {
    Engine.SourceDisk.Partitions.Clear();
    Engine.TableVolumes.clear();
    Engine.SearchLimits = 0;
}

CandidateIndex::Layout CandidateIndex::LayoutOf(const PartitionCandidate& candidate) {
    return {candidate.MftCluster, candidate.MftMirrCluster, candidate.ClusterBytes,
            candidate.FileRecordBytes};
}

PartitionCandidate* CandidateIndex::FindSameVolume(const PartitionCandidate& wanted) const {
    const auto found = volumes_.find({wanted.VolumeSerial, LayoutOf(wanted)});
    return found == volumes_.end() ? nullptr : found->second;
}

PartitionCandidate* CandidateIndex::FindSameLayout(const PartitionCandidate& wanted) const {
    const auto layout = layouts_.find(LayoutOf(wanted));
    if (layout == layouts_.end()) {
        return nullptr;
    }
    const std::uint64_t start = wanted.StartSector;
    const std::uint64_t below = start - FarthestBelow(wanted);
    const Listed* first = nullptr;
    if (below <= start) {
        TakeFirst(layout->second, below, start, start, first);
    } else {
        // Starts worked out from records may have wrapped below zero.
        TakeFirst(layout->second, 0, start, start, first);
        TakeFirst(layout->second, below, ~std::uint64_t{0}, start, first);
    }
    return first == nullptr ? nullptr : first->Candidate;
}

// Looks among the starts from lowest to highest for one that lies at most a cluster below `start`.
void CandidateIndex::TakeFirst(const ByStart& starts, std::uint64_t lowest, std::uint64_t highest,
                               std::uint64_t start, const Listed*& first) {
    for (auto at = starts.lower_bound(lowest); at != starts.end() && at->first <= highest; ++at) {
        const Listed& listed = at->second;
        if (start - at->first <= listed.Candidate->SectorsPerCluster &&
            (first == nullptr || listed.Position < first->Position)) {
            first = &listed;
        }
    }
}

bool CandidateIndex::HasRoom() const {
    if (count_ < kMaxCandidates) {
        return true;
    }
    Engine.SearchLimits |= kLimitCandidates;
    return false;
}

bool CandidateIndex::Add(std::unique_ptr<PartitionCandidate> candidate) {
    if (!HasRoom()) {
        return false;
    }
    PartitionCandidate& added = Engine.SourceDisk.Partitions.Append(std::move(candidate));
    volumes_.try_emplace({added.VolumeSerial, LayoutOf(added)}, &added);
    layouts_[LayoutOf(added)].emplace(added.StartSector, Listed{&added, count_});
    ++count_;
    return true;
}

} // namespace thntfs
