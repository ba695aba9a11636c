#include "partitions/VolumeList.h"

#include "partitions/CandidateIndex.h"
#include "partitions/MftEvidence.h"
#include "platform/system/CoreText.h"

#include <algorithm>

namespace thntfs {

namespace {

// The place of a volume's kind in the list.
int RankOf(const ListedVolume& volume) {
    switch (volume.Source) {
    case VolumeSource::Mbr:
    case VolumeSource::Gpt:
    case VolumeSource::GptBackup:
        return 0;
    default:
        return volume.Candidate == nullptr ? 3 : volume.Facts.Verified ? 1 : 2;
    }
}

VolumeFacts FactsOf(const PartitionCandidate& candidate) {
    const auto at = static_cast<std::size_t>(&candidate - Engine.SourceDisk.Partitions.data());
    return at < Engine.VolumeFacts.size() ? Engine.VolumeFacts[at] : VolumeFacts();
}

} // namespace

std::vector<ListedVolume> ListVolumes() {
    std::vector<ListedVolume> volumes;
    const std::vector<PartitionCandidate>& candidates = Engine.SourceDisk.Partitions;
    auto candidate = candidates.begin();
    for (const TableVolume& entry : Engine.TableVolumes) {
        const bool usable = entry.State == TableVolumeState::Usable && candidate != candidates.end();
        volumes.push_back({0, usable ? &*candidate : nullptr, entry.Source, entry, {}});
        candidate += usable ? 1 : 0;
    }
    for (; candidate != candidates.end(); ++candidate) {
        volumes.push_back({0, &*candidate, FactsOf(*candidate).Source, {}, {}});
    }
    for (ListedVolume& volume : volumes) {
        volume.Facts = volume.Candidate == nullptr ? VolumeFacts() : FactsOf(*volume.Candidate);
    }
    std::stable_sort(volumes.begin(), volumes.end(), [](const ListedVolume& one, const ListedVolume& other) {
        return RankOf(one) < RankOf(other);
    });
    for (std::size_t i = 0; i < volumes.size(); ++i) {
        volumes[i].Number = static_cast<unsigned>(i + 1);
    }
    return volumes;
}

const ListedVolume* OnlyVerified(const std::vector<ListedVolume>& volumes) {
    const auto isVerified = [](const ListedVolume& volume) { return volume.Facts.Verified; };
    const auto found = std::find_if(volumes.begin(), volumes.end(), isVerified);
    return found != volumes.end() && std::none_of(found + 1, volumes.end(), isVerified) ? &*found : nullptr;
}

std::uint64_t SectorsBeforeMedium(const PartitionCandidate& volume) {
    return volume.StartSector >= std::uint64_t{1} << 63U ? ~volume.StartSector + 1 : 0;
}

std::string SourceText(VolumeSource source) {
    switch (source) {
    case VolumeSource::Mbr:
        return CoreText("Core", "MBR");
    case VolumeSource::Gpt:
        return CoreText("Core", "GPT");
    case VolumeSource::GptBackup:
        return CoreText("Core", "backup GPT");
    case VolumeSource::WholeMedium:
        return CoreText("Core", "whole medium");
    case VolumeSource::Search:
        return CoreText("Core", "search");
    default:
        return CoreText("Core", "saved list");
    }
}

std::string ProblemText(TableVolumeState state) {
    switch (state) {
    case TableVolumeState::NoBootSector:
        return CoreText("Core", "no NTFS boot sector stands there");
    case TableVolumeState::Encrypted:
        return CoreText("Core",
                        "this volume is fully encrypted; unlock or decrypt it with its own system first");
    case TableVolumeState::LostTable:
        return CoreText("Core", "the table of the partitions from here on can't be read");
    default:
        return CoreText("Core", "its boot sector can't be read");
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
