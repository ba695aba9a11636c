#include "cli/CandidateText.h"

#include "cli/Output.h"
#include "engine/EngineState.h"

#include <array>
#include <cstdio>

namespace thntfs {

namespace {

std::string SerialText(std::uint64_t serial) {
    std::array<char, 17> text{};
    std::snprintf(text.data(), text.size(), "%016llX", static_cast<unsigned long long>(serial));
    return text.data();
}

} // namespace

std::string CandidateText(unsigned number, const PartitionCandidate& candidate) {
    const std::uint64_t bytes = candidate.TotalSectors * Engine.SourceDisk.BytesPerSector;
    return std::to_string(number) + "  start sector " + std::to_string(candidate.StartSector) + ", " +
           std::to_string(candidate.TotalSectors) + " sectors (" + ByteText(bytes) + "), clusters of " +
           std::to_string(candidate.ClusterBytes) + " bytes, records of " +
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

} // namespace thntfs
