#include "partitions/VolumeList.h"

#include "partitions/CandidateIndex.h"
#include "partitions/MftEvidence.h"

namespace thntfs {

namespace {

unsigned NextNumber(const std::vector<ListedVolume>& volumes) {
    return static_cast<unsigned>(volumes.size() + 1);
}

} // namespace

std::vector<ListedVolume> ListVolumes() {
    std::vector<ListedVolume> volumes;
    const std::vector<PartitionCandidate>& candidates = Engine.SourceDisk.Partitions;
    auto candidate = candidates.begin();
    for (const TableVolume& entry : Engine.TableVolumes) {
        const bool usable = entry.State == TableVolumeState::Usable && candidate != candidates.end();
        volumes.push_back({NextNumber(volumes), usable ? &*candidate++ : nullptr, entry});
    }
    for (; candidate != candidates.end(); ++candidate) {
        volumes.push_back({NextNumber(volumes), &*candidate, {}});
    }
    return volumes;
}

std::string ProblemText(TableVolumeState state) {
    switch (state) {
    case TableVolumeState::NoBootSector:
        return "no NTFS boot sector stands there";
    case TableVolumeState::LostTable:
        return "the table of the partitions from here on can't be read";
    default:
        return "its boot sector can't be read";
    }
}

std::string SearchLimitText() {
    std::string text;
    if ((Engine.SearchLimits & kLimitCandidates) != 0) {
        text = "The list is full: it holds " + std::to_string(CandidateIndex::kMaxCandidates) +
               " volumes, and the search has found more.";
    }
    if ((Engine.SearchLimits & kLimitEvidence) != 0) {
        text += std::string(text.empty() ? "" : " ") + "The search met more than " +
                std::to_string(EvidenceCollector::kMaxEvidence) +
                " records of one kind and has left out the rest.";
    }
    return text.empty() ? text : text + " Search a smaller range of sectors to find what was left out.";
}

} // namespace thntfs
