#include "engine/EngineState.h"
#include "partitions/MftEvidence.h"

#include <map>
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

// Of many copies of one record almost all pairs come here for nothing, so a candidate is made to last only
// once it is going to be listed.
void AddOrMark(PartitionCandidate&& candidate, CandidateIndex& index) {
    if (PartitionCandidate* known = index.FindSameLayout(candidate); known != nullptr) {
        known->EvidenceFlags |= candidate.EvidenceFlags;
    } else if (index.HasRoom()) {
        index.Add(std::make_unique<PartitionCandidate>(std::move(candidate)));
    }
}

PartitionCandidate VolumeOfMftTwins(const MftEvidence& first, const MftEvidence& second) {
    auto candidate = CandidateOf(second, kEvidenceTwins);
    candidate.MftSector = second.SectorNumber;
    candidate.MftCluster = second.DataCluster;
    candidate.MftMirrCluster =
        second.DataCluster + (second.SectorNumber - first.SectorNumber) / first.SectorsPerCluster;
    TakeSizeFromMirror(candidate);
    candidate.StartSector = second.SectorNumber - candidate.TotalSectors / 2;
    return candidate;
}

PartitionCandidate VolumeOfMirrTwins(const MftEvidence& first, const MftEvidence& second) {
    auto candidate = CandidateOf(second, kEvidenceTwins);
    candidate.MftMirrCluster = second.DataCluster;
    candidate.MftSector = second.SectorNumber - second.SectorsPerRecord; // record 0 stands one record before
    candidate.MftCluster =
        second.DataCluster - (second.SectorNumber - first.SectorNumber) / second.SectorsPerCluster;
    TakeSizeFromMirror(candidate);
    candidate.StartSector = second.SectorNumber - candidate.TotalSectors / 2 - second.SectorsPerRecord;
    return candidate;
}

using TwinKey =
    std::tuple<std::uint64_t, std::uint32_t, std::uint32_t, std::uint64_t, std::uint64_t, std::uint64_t>;

TwinKey KeyOf(const MftEvidence& evidence) {
    return {evidence.DataCluster, evidence.RecordBytes,    evidence.ClusterBytes,
            evidence.FormatTime,  evidence.ContentHash[0], evidence.ContentHash[1]};
}

// Pairs each evidence with every copy of it that stands behind it in the list.
template <typename MakeVolume>
void PairTwins(const EvidenceList& list, MakeVolume makeVolume, CandidateIndex& index) {
    std::map<TwinKey, std::vector<MftEvidence*>> copies;
    for (MftEvidence* evidence = list.First(); evidence != nullptr; evidence = evidence->Next.get()) {
        copies[KeyOf(*evidence)].push_back(evidence);
    }
    for (MftEvidence* first = list.First(); first != nullptr; first = first->Next.get()) {
        bool behind = false;
        for (MftEvidence* second : copies[KeyOf(*first)]) {
            if (behind) {
                first->Paired = 1;
                second->Paired = 1;
                AddOrMark(makeVolume(*first, *second), index);
            }
            behind = behind || second == first;
        }
    }
}

bool AgreeOnVolume(const MftEvidence& mft, const MftEvidence& mirr) {
    return mft.SectorsPerCluster == mirr.SectorsPerCluster && mft.SectorsPerRecord == mirr.SectorsPerRecord &&
           mft.ClusterBytes == mirr.ClusterBytes && mft.FormatTime == mirr.FormatTime;
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
    AddOrMark(std::move(candidate), index);
}

} // namespace

void PairMftTwins(const EvidenceList& mftList, CandidateIndex& index) {
    PairTwins(mftList, VolumeOfMftTwins, index);
}

void PairMirrTwins(const EvidenceList& mirrList, CandidateIndex& index) {
    PairTwins(mirrList, VolumeOfMirrTwins, index);
}

void PairMftWithMirr(const EvidenceList& mftList, const EvidenceList& mirrList, CandidateIndex& index) {
    for (const MftEvidence* mft = mftList.First(); mft != nullptr; mft = mft->Next.get()) {
        if (mft->Paired != 0) {
            continue;
        }
        for (const MftEvidence* mirr = mirrList.First(); mirr != nullptr; mirr = mirr->Next.get()) {
            if (mirr->Paired == 0 && AgreeOnVolume(*mft, *mirr)) {
                PairOneMftWithMirr(*mft, *mirr, index);
            }
        }
    }
}

} // namespace thntfs
