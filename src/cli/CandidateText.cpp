#include "cli/CandidateText.h"

#include "cli/Output.h"
#include "engine/EngineState.h"
#include "platform/system/SizeText.h"

#include <array>
#include <cstdio>

namespace thntfs {

namespace {

std::string SerialText(std::uint64_t serial) {
    std::array<char, 17> text{};
    std::snprintf(text.data(), text.size(), "%016llX", static_cast<unsigned long long>(serial));
    return text.data();
}

std::string PlaceText(std::uint64_t startSector, std::uint64_t totalSectors) {
    return "start sector " + std::to_string(startSector) + ", " + std::to_string(totalSectors) +
           " sectors (" + ByteText(totalSectors * Engine.SourceDisk.BytesPerSector) + ")";
}

std::string UnusableText(const TableVolume& entry) {
    return PlaceText(entry.StartSector, entry.TotalSectors) + ": " + ProblemText(entry.State);
}

} // namespace

std::string CandidateText(unsigned number, const PartitionCandidate& candidate) {
    return std::to_string(number) + "  " + PlaceText(candidate.StartSector, candidate.TotalSectors) +
           ", clusters of " + std::to_string(candidate.ClusterBytes) + " bytes, records of " +
           std::to_string(candidate.FileRecordBytes) + " bytes, serial " + SerialText(candidate.VolumeSerial);
}

nlohmann::ordered_json CandidateJson(unsigned number, const PartitionCandidate& candidate) {
    return {{"number", number},
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
            {"serial", SerialText(candidate.VolumeSerial)},
            {"evidence", candidate.EvidenceFlags}};
}

std::string VolumeText(const ListedVolume& volume) {
    if (volume.Candidate != nullptr) {
        return CandidateText(volume.Number, *volume.Candidate);
    }
    return std::to_string(volume.Number) + "  " + UnusableText(volume.Entry);
}

nlohmann::ordered_json VolumeJson(const ListedVolume& volume) {
    if (volume.Candidate != nullptr) {
        return CandidateJson(volume.Number, *volume.Candidate);
    }
    return {{"number", volume.Number},
            {"startSector", volume.Entry.StartSector},
            {"totalSectors", volume.Entry.TotalSectors},
            {"problem", ProblemText(volume.Entry.State)}};
}

void TellUnusableVolumes() {
    bool told = false;
    for (const ListedVolume& volume : ListVolumes()) {
        if (volume.Candidate == nullptr) {
            PrintMessage("Partition " + std::to_string(volume.Number) + ", " + UnusableText(volume.Entry));
            told = true;
        }
    }
    if (told) {
        PrintMessage("It holds another file system, or its beginning is damaged. --search thorough finds an "
                     "NTFS volume in spite of that.");
    }
}

} // namespace thntfs
