#include "partitions/VolumeText.h"

#include "engine/EngineState.h"
#include "platform/system/EscapedText.h"
#include "platform/system/SizeText.h"
#include "platform/system/Text.h"

#include <array>
#include <cstdio>

namespace thntfs {

namespace {

std::string SizeInSectors(std::uint64_t totalSectors) {
    return std::to_string(totalSectors) + " sectors (" +
           ByteText(totalSectors * Engine.SourceDisk.BytesPerSector) + ")";
}

std::string PlaceText(std::uint64_t startSector, std::uint64_t totalSectors) {
    return "start sector " + std::to_string(startSector) + ", " + SizeInSectors(totalSectors);
}

std::string PlaceText(const PartitionCandidate& candidate) {
    const std::uint64_t before = SectorsBeforeMedium(candidate);
    return before == 0 ? PlaceText(candidate.StartSector, candidate.TotalSectors)
                       : "begins " + CountText(before, "sector", "sectors") + " before the medium, " +
                             SizeInSectors(candidate.TotalSectors);
}

std::string FactsText(const VolumeFacts& facts) {
    std::string text = ", " + SourceText(facts.Source);
    if (!facts.Examined) {
        return text;
    }
    if (!facts.Verified) {
        return text + ", not verified: no file table stands where it should";
    }
    text += ", verified, " + CountText(facts.Records, "record", "records");
    if (!facts.Label.empty()) {
        text += ", label \"";
        AppendPrintable(text, NarrowText(facts.Label));
        text += '"';
    }
    return text;
}

std::string CandidateText(unsigned number, const PartitionCandidate& candidate, const VolumeFacts& facts) {
    return std::to_string(number) + "  " + PlaceText(candidate) + ", clusters of " +
           std::to_string(candidate.ClusterBytes) + " bytes, records of " +
           std::to_string(candidate.FileRecordBytes) + " bytes, serial " +
           VolumeSerialText(candidate.VolumeSerial) + FactsText(facts);
}

} // namespace

std::string VolumeSerialText(std::uint64_t serial) {
    std::array<char, 17> text{};
    std::snprintf(text.data(), text.size(), "%016llX", static_cast<unsigned long long>(serial));
    return text.data();
}

std::string UnusableText(const TableVolume& entry) {
    const std::string place = entry.TotalSectors == 0 ? "start sector " + std::to_string(entry.StartSector)
                                                      : PlaceText(entry.StartSector, entry.TotalSectors);
    return place + ": " + ProblemText(entry.State);
}

std::string VolumeText(const ListedVolume& volume) {
    if (volume.Candidate != nullptr) {
        return CandidateText(volume.Number, *volume.Candidate, volume.Facts);
    }
    return std::to_string(volume.Number) + "  " + UnusableText(volume.Entry);
}

} // namespace thntfs
