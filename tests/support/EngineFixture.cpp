#include "support/EngineFixture.h"

#include "partitions/BootSector.h"
#include "platform/media/Medium.h"
#include "support/RunProgram.h"

namespace thntfs::test {

PartitionCandidate CandidateOf(const VolumeGeometry& geometry) {
    PartitionCandidate candidate;
    DecodeTableBootSector(EncodeBootSector(BootFieldsOf(geometry)), geometry.StartSector,
                          static_cast<std::uint32_t>(geometry.TotalSectors), candidate);
    return candidate;
}

void SetTableRuns(const std::vector<Run>& runs) {
    Engine.VolumeParams.MftExtents.clear();
    for (const Run& run : runs) {
        Engine.VolumeParams.MftExtents.push_back(
            {run.Start ? static_cast<std::uint32_t>(run.Clusters) : 0, run.Start.value_or(0)});
    }
}

std::vector<std::pair<std::uint32_t, std::uint64_t>> RunsIn(const std::vector<MftExtent>& extents) {
    std::vector<std::pair<std::uint32_t, std::uint64_t>> runs;
    for (const MftExtent& extent : extents) {
        runs.emplace_back(extent.Clusters, extent.StartCluster);
    }
    return runs;
}

FileNameValue NameIn(std::uint32_t parent, std::u16string name, std::uint8_t nameSpace) {
    return {.Parent = FileReference(parent), .Name = std::move(name), .Namespace = nameSpace};
}

ByteVector NumberedSectors(std::size_t sectors) {
    ByteVector bytes(sectors * 512);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(i / 512 + 1);
    }
    return bytes;
}

ByteVector ReadFileBytes(const std::string& path) { return BytesOf(ReadWholeFile(path)); }

EngineFixture::EngineFixture() { ResetEngineState(); }

EngineFixture::~EngineFixture() {
    ResetEngineState();
    Engine.ScanRunFlag = 0;
    Engine.PreviewActive = false;
}

void EngineFixture::OpenDisk(ByteVector bytes, std::uint16_t sectorBytes) {
    OpenDisk(std::make_shared<ByteVector>(std::move(bytes)), sectorBytes);
}

void EngineFixture::OpenDisk(std::shared_ptr<ByteVector> bytes, std::uint16_t sectorBytes,
                             std::uint32_t deviceSectorBytes) {
    Plan->SectorBytes = sectorBytes;
    Engine.SourceDisk.BytesPerSector = sectorBytes;
    Engine.SourceDisk.TotalSectors = bytes->size() / sectorBytes;
    Engine.SourceDisk.MediaHandle =
        MakeFaultyMedium(MakeMemoryMedium(std::move(bytes), deviceSectorBytes), Plan);
}

void EngineFixture::CloseDisk() { Engine.SourceDisk.MediaHandle.reset(); }

void EngineFixture::OpenVolume(const VolumeBuilder& volume) {
    const VolumeGeometry& geometry = volume.Geometry();
    OpenDisk(volume.SharedImage(), static_cast<std::uint16_t>(geometry.SectorBytes));
    LoadVolumeParams(CandidateOf(geometry));
    SetTableRuns(geometry.MftRuns);
}

} // namespace thntfs::test
