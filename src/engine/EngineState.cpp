#include "engine/EngineState.h"

#include "platform/files/PagedFile.h"
namespace thntfs {

EngineState Engine;

// Here the files' types are known, which the header spares all who include it.
EngineState::EngineState() = default;
EngineState::~EngineState() = default;

namespace {

template <typename Number>
Number OrDefault(Number value, Number fallback) {
    return value != 0 ? value : fallback;
}

} // namespace

void LoadVolumeParams(const PartitionCandidate& candidate) {
    VolumeParams& volume = Engine.VolumeParams;
    ++Engine.VolumeInWork;
    Engine.Table.reset();
    Engine.Found.reset();
    Engine.OverlaidBy.reset();
    volume.BytesPerSector = OrDefault(candidate.BytesPerSector, Engine.SourceDisk.BytesPerSector);
    const std::uint32_t sectorBytes = volume.BytesPerSector;

    volume.SectorsPerFileRecord = OrDefault<std::uint8_t>(candidate.SectorsPerFileRecord, 2);
    volume.FileRecordBytes =
        OrDefault<std::uint32_t>(candidate.FileRecordBytes, volume.SectorsPerFileRecord * sectorBytes);
    const std::uint32_t sectorsPerCluster = OrDefault<std::uint32_t>(candidate.SectorsPerCluster, 8);
    volume.ClusterBytes = OrDefault(candidate.ClusterBytes, sectorsPerCluster * sectorBytes);
    volume.SectorsPerIndexBlock = OrDefault<std::uint8_t>(candidate.SectorsPerIndexBlock, 8);
    volume.IndexBlockBytes = OrDefault(candidate.IndexBlockBytes, volume.SectorsPerIndexBlock * sectorBytes);

    volume.MftSector = candidate.MftSector;
    volume.StartSector = candidate.StartSector;
    volume.MftCluster = candidate.MftCluster;
    volume.MftMirrCluster = candidate.MftMirrCluster;
    volume.TotalSectors = candidate.TotalSectors;
    volume.VolumeSerial = candidate.VolumeSerial;
    volume.SectorsPerCluster = candidate.SectorsPerCluster;
}

void ResetEngineState() {
    Engine.VolumeParams = VolumeParams();
    Engine.SourceDisk = DiskRecord();
    Engine.TargetDisk = DiskRecord();
    Engine.Losses = ScanLosses();
    Engine.Yield = ScanYield();
    Engine.Lists = ListReads();
    Engine.TableBytes = 0;
    Engine.TableCut = false;
    Engine.Table.reset();
    Engine.Found.reset();
    Engine.OverlaidBy.reset();
    Engine.TableVolumes.clear();
    Engine.VolumeFacts.clear();
    Engine.SearchLimits = 0;
    ++Engine.VolumeInWork;
}

void ClaimCatalogue() { Engine.CatalogueVolume = Engine.VolumeInWork; }

bool CatalogueIsOfVolumeInWork() { return Engine.CatalogueVolume == Engine.VolumeInWork; }

std::uint64_t SectorOfCluster(std::uint64_t cluster) {
    return Engine.VolumeParams.StartSector + cluster * Engine.VolumeParams.SectorsPerCluster;
}

std::uint32_t RecordsInExtent(const MftExtent& extent) {
    const VolumeParams& volume = Engine.VolumeParams;
    return extent.Clusters * volume.SectorsPerCluster / volume.SectorsPerFileRecord;
}

} // namespace thntfs
