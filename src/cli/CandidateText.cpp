#include "cli/CandidateText.h"

#include "cli/Output.h"
#include "engine/EngineState.h"
#include "partitions/VolumeText.h"
#include "platform/system/Text.h"

#include <algorithm>

namespace thntfs {

namespace {

const char* SourceWord(VolumeSource source) {
    switch (source) {
    case VolumeSource::Mbr:
        return "mbr";
    case VolumeSource::Gpt:
        return "gpt";
    case VolumeSource::GptBackup:
        return "gpt-backup";
    case VolumeSource::WholeMedium:
        return "whole";
    case VolumeSource::Search:
        return "search";
    default:
        return "saved";
    }
}

nlohmann::ordered_json CandidateJson(unsigned number, const PartitionCandidate& candidate,
                                     const VolumeFacts& facts) {
    nlohmann::ordered_json json = {{"number", number},
                                   {"startSector", candidate.StartSector},
                                   {"totalSectors", candidate.TotalSectors},
                                   {"bytesPerSector", candidate.BytesPerSector},
                                   {"sectorsPerCluster", candidate.SectorsPerCluster},
                                   {"clusterBytes", candidate.ClusterBytes},
                                   {"fileRecordBytes", candidate.FileRecordBytes},
                                   {"indexBlockBytes", candidate.IndexBlockBytes},
                                   {"mftSector", candidate.MftSector},
                                   {"mftCluster", candidate.MftCluster},
                                   {"mftMirrCluster", candidate.MftMirrCluster},
                                   {"serial", VolumeSerialText(candidate.VolumeSerial)},
                                   {"evidence", candidate.EvidenceFlags},
                                   {"table", SourceWord(facts.Source)},
                                   {"verified", facts.Verified},
                                   {"label", NarrowText(facts.Label)},
                                   {"records", facts.Records}};
    if (const std::uint64_t before = SectorsBeforeMedium(candidate); before != 0) {
        json["sectorsBeforeMedium"] = before;
    }
    return json;
}

// The candidate that stands for an entry which can't be taken; null where none does.
const ListedVolume* FoundElsewhere(const std::vector<ListedVolume>& volumes, const TableVolume& entry) {
    const auto found = std::find_if(volumes.begin(), volumes.end(), [&entry](const ListedVolume& volume) {
        return volume.Candidate != nullptr && volume.Candidate->StartSector == entry.StartSector;
    });
    return found == volumes.end() ? nullptr : &*found;
}

} // namespace

nlohmann::ordered_json VolumeJson(const ListedVolume& volume) {
    if (volume.Candidate != nullptr) {
        return CandidateJson(volume.Number, *volume.Candidate, volume.Facts);
    }
    return {{"number", volume.Number},
            {"startSector", volume.Entry.StartSector},
            {"totalSectors", volume.Entry.TotalSectors},
            {"table", SourceWord(volume.Entry.Source)},
            {"encrypted", volume.Entry.State == TableVolumeState::Encrypted},
            {"problem", ProblemText(volume.Entry.State)}};
}

void TellUnusableVolumes() {
    const std::vector<ListedVolume> volumes = ListVolumes();
    bool mayBeDamaged = false;
    for (const ListedVolume& volume : volumes) {
        if (volume.Candidate != nullptr) {
            continue;
        }
        const ListedVolume* same = FoundElsewhere(volumes, volume.Entry);
        PrintMessage("Partition " + std::to_string(volume.Number) + ", " + UnusableText(volume.Entry) +
                     (same == nullptr ? ""
                                      : "; partition " + std::to_string(same->Number) +
                                            " is what is left of its volume"));
        mayBeDamaged = mayBeDamaged || (same == nullptr && volume.Entry.State != TableVolumeState::Encrypted);
    }
    if (mayBeDamaged) {
        PrintMessage("It holds another file system, or its beginning is damaged. --search thorough finds an "
                     "NTFS volume in spite of that.");
    }
}

} // namespace thntfs
