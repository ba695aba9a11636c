#include "engine/EngineState.h"
#include "engine/SectorReader.h"
#include "partitions/MftEvidence.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <vector>

namespace thntfs {

namespace {

// Fields shared by every candidate that is made from records alone.
PartitionCandidate CandidateOf(const MftEvidence& evidence, std::uint8_t evidenceFlag) {
    PartitionCandidate candidate;
    candidate.ClusterBytes = evidence.ClusterBytes;
    candidate.FileRecordBytes = static_cast<std::uint16_t>(evidence.RecordBytes);
    candidate.SectorsPerCluster = evidence.SectorsPerCluster;
    candidate.SectorsPerFileRecord = evidence.SectorsPerRecord;
    candidate.BytesPerSector = static_cast<std::uint16_t>(evidence.ClusterBytes / evidence.SectorsPerCluster);
    candidate.EvidenceFlags = evidenceFlag;
    return candidate;
}

// The mirror is taken to stand in the middle of the volume.
void TakeSizeFromMirror(PartitionCandidate& candidate) {
    candidate.TotalSectors = 2 * std::uint64_t{candidate.SectorsPerCluster} * candidate.MftMirrCluster;
}

void AddOrMark(const PartitionCandidate& candidate, CandidateIndex& index) {
    if (PartitionCandidate* known = index.FindSameLayout(candidate); known != nullptr) {
        known->EvidenceFlags |= candidate.EvidenceFlags;
    } else {
        index.Add(candidate);
    }
}

// While the search runs, pairs are made until there are no more. After a stop those that take no time are
// made.
class PairBudget {
public:
    [[nodiscard]] bool MayGoOn() { return JobMayGoOn() || pairsAfterStop_-- > 0; }

private:
    std::int32_t pairsAfterStop_ = 1 << 20;
};

// ------------------------------------------------------------------ twins

/// Two copies of record 0, one in the table and one in its mirror.
struct MftTwins {
    static PartitionCandidate Volume(const MftEvidence& first, const MftEvidence& second) {
        auto candidate = CandidateOf(second, kEvidenceTwins);
        candidate.MftSector = second.SectorNumber;
        candidate.MftCluster = second.DataCluster;
        candidate.MftMirrCluster =
            second.DataCluster + (second.SectorNumber - first.SectorNumber) / first.SectorsPerCluster;
        TakeSizeFromMirror(candidate);
        candidate.StartSector = second.SectorNumber - candidate.TotalSectors / 2;
        return candidate;
    }

    /// What the copies of which `listed` would be the volume give for their data.
    static std::uint64_t DataCluster(const PartitionCandidate& listed) { return listed.MftCluster; }
};

/// The same of record 1.
struct MirrTwins {
    static PartitionCandidate Volume(const MftEvidence& first, const MftEvidence& second) {
        auto candidate = CandidateOf(second, kEvidenceTwins);
        candidate.MftMirrCluster = second.DataCluster;
        // Record 0 stands one record before.
        candidate.MftSector = second.SectorNumber - second.SectorsPerRecord;
        candidate.MftCluster =
            second.DataCluster - (second.SectorNumber - first.SectorNumber) / second.SectorsPerCluster;
        TakeSizeFromMirror(candidate);
        candidate.StartSector = second.SectorNumber - candidate.TotalSectors / 2 - second.SectorsPerRecord;
        return candidate;
    }

    static std::uint64_t DataCluster(const PartitionCandidate& listed) { return listed.MftMirrCluster; }
};

using TwinKey =
    std::tuple<std::uint64_t, std::uint32_t, std::uint32_t, std::uint64_t, std::uint64_t, std::uint64_t>;

TwinKey KeyOf(const MftEvidence& evidence) {
    return {evidence.DataCluster, evidence.RecordBytes,    evidence.ClusterBytes,
            evidence.FormatTime,  evidence.ContentHash[0], evidence.ContentHash[1]};
}

/// All copies of one record, by rising sector.
struct Copies {
    std::vector<const MftEvidence*> Evidence;
    std::size_t Passed = 0; ///< of these, copies that have been paired with all behind them
};
using CopiesByKey = std::map<TwinKey, Copies>;

CopiesByKey GroupCopies(EvidenceList& list) {
    CopiesByKey groups;
    for (const MftEvidence& evidence : list) {
        groups[KeyOf(evidence)].Evidence.push_back(&evidence);
    }
    for (MftEvidence& evidence : list) {
        evidence.Paired = groups[KeyOf(evidence)].Evidence.size() > 1;
    }
    return groups;
}

// Once the list is full a pair can do no more than mark a listed volume. Only copies at the volume's distance
// from each other can, so no other pair is made.
template <typename Twins>
void MarkListed(const PartitionCandidate& listed, const Copies& copies, PairBudget& budget,
                CandidateIndex& index) {
    const std::uint64_t clusterSectors = copies.Evidence.front()->SectorsPerCluster;
    const std::uint64_t distance = (listed.MftMirrCluster - listed.MftCluster) * clusterSectors;
    const auto end = copies.Evidence.end();
    for (auto first = copies.Evidence.begin(); first != end && budget.MayGoOn(); ++first) {
        const std::uint64_t from = (*first)->SectorNumber + distance;
        auto second =
            std::lower_bound(first + 1, end, from, [](const MftEvidence* one, std::uint64_t sector) {
                return one->SectorNumber < sector;
            });
        for (; second != end && (*second)->SectorNumber - from < clusterSectors; ++second) {
            AddOrMark(Twins::Volume(**first, **second), index);
        }
    }
}

template <typename Twins>
void MarkAllListed(const CopiesByKey& groups, PairBudget& budget, CandidateIndex& index) {
    std::multimap<std::uint64_t, const Copies*> byCluster;
    for (const auto& [key, copies] : groups) {
        byCluster.emplace(copies.Evidence.front()->DataCluster, &copies);
    }
    for (const PartitionCandidate& listed : Engine.SourceDisk.Partitions) {
        auto [copies, end] = byCluster.equal_range(Twins::DataCluster(listed));
        for (; copies != end && (listed.EvidenceFlags & kEvidenceTwins) == 0; ++copies) {
            MarkListed<Twins>(listed, *copies->second, budget, index);
        }
    }
}

// Pairs each evidence with every copy of it that stands behind it in the list.
template <typename Twins>
void PairTwins(EvidenceList& list, CandidateIndex& index) {
    CopiesByKey groups = GroupCopies(list);
    PairBudget budget;
    for (const MftEvidence& first : list) {
        Copies& copies = groups[KeyOf(first)];
        ++copies.Passed;
        for (std::size_t behind = copies.Passed; behind < copies.Evidence.size(); ++behind) {
            if (!index.HasRoom()) {
                MarkAllListed<Twins>(groups, budget, index);
                return;
            }
            if (!budget.MayGoOn()) {
                return;
            }
            AddOrMark(Twins::Volume(first, *copies.Evidence[behind]), index);
        }
    }
}

// ------------------------------------------------------------------ a record with its mirror's

using VolumeKey = std::tuple<std::uint32_t, std::uint32_t, std::uint32_t, std::uint64_t>;

VolumeKey VolumeOf(const MftEvidence& evidence) {
    return {evidence.SectorsPerCluster, evidence.SectorsPerRecord, evidence.ClusterBytes,
            evidence.FormatTime};
}

void PairOneMftWithMirr(const MftEvidence& mft, const MftEvidence& mirr, CandidateIndex& index) {
    auto candidate = CandidateOf(mft, kEvidenceMftWithMirr);
    candidate.MftSector = mft.SectorNumber;
    candidate.MftCluster = mft.DataCluster;
    candidate.MftMirrCluster = mirr.DataCluster;
    TakeSizeFromMirror(candidate);
    if (mirr.SectorNumber - mft.SectorNumber == mft.SectorsPerRecord) {
        // Neighbours: records 0 and 1 of the mirror.
        candidate.StartSector = mft.SectorNumber - candidate.TotalSectors / 2;
        if (candidate.StartSector >= Engine.SourceDisk.TotalSectors) {
            return;
        }
    } else {
        candidate.StartSector = mirr.SectorNumber - candidate.TotalSectors / 2;
    }
    AddOrMark(candidate, index);
}

/// The tables of listed volumes that no pair has marked yet.
std::set<std::uint64_t> UnmarkedTables() {
    std::set<std::uint64_t> clusters;
    for (const PartitionCandidate& listed : Engine.SourceDisk.Partitions) {
        if ((listed.EvidenceFlags & kEvidenceMftWithMirr) == 0) {
            clusters.insert(listed.MftCluster);
        }
    }
    return clusters;
}

} // namespace

void PairMftTwins(EvidenceList& mftList, CandidateIndex& index) { PairTwins<MftTwins>(mftList, index); }

void PairMirrTwins(EvidenceList& mirrList, CandidateIndex& index) { PairTwins<MirrTwins>(mirrList, index); }

void PairMftWithMirr(const EvidenceList& mftList, const EvidenceList& mirrList, CandidateIndex& index) {
    std::map<VolumeKey, std::vector<const MftEvidence*>> mirrors;
    for (const MftEvidence& mirr : mirrList) {
        if (!mirr.Paired) {
            mirrors[VolumeOf(mirr)].push_back(&mirr);
        }
    }
    PairBudget budget;
    std::optional<std::set<std::uint64_t>> unmarked; // of the full list, which only marks can change
    for (const MftEvidence& mft : mftList) {
        const auto& agreeing = mirrors[VolumeOf(mft)];
        if (mft.Paired || agreeing.empty()) {
            continue;
        }
        if (!index.HasRoom() && !unmarked) {
            unmarked = UnmarkedTables();
        }
        if (unmarked && !unmarked->contains(mft.DataCluster)) {
            continue;
        }
        for (const MftEvidence* mirr : agreeing) {
            if (!budget.MayGoOn()) {
                return;
            }
            PairOneMftWithMirr(mft, *mirr, index);
        }
    }
}

} // namespace thntfs
