#include "scans/ClaimSpace.h"

#include "engine/EngineState.h"
#include "engine/SectorReader.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr std::uint64_t kMaxClusters = std::uint64_t{1} << 36U; // sixteen times what any driver makes

std::uint64_t SectorsBehindStart() {
    const DiskRecord& disk = Engine.SourceDisk;
    if (disk.MediaHandle == nullptr || disk.BytesPerSector == 0) {
        return 0;
    }
    const std::uint64_t sectors = MediumBytes() / disk.BytesPerSector;
    const std::uint64_t start = Engine.VolumeParams.StartSector;
    const bool beforeMedium = start >= std::uint64_t{1} << 63U; // such a start is wrapped
    return beforeMedium ? sectors - start : sectors - std::min(sectors, start);
}

} // namespace

// A size that no boot sector states is a guess: then the medium's end counts alone.
ClaimSpace ClaimSpaceOfVolume() {
    const VolumeParams& volume = Engine.VolumeParams;
    if (volume.SectorsPerCluster == 0 || volume.BytesPerSector == 0) {
        return {};
    }
    const bool stated = volume.VolumeSerial != 0 && volume.TotalSectors != 0;
    const std::uint64_t sectors =
        std::min(SectorsBehindStart(), stated ? volume.TotalSectors : ~std::uint64_t{0});
    return {std::min(sectors / volume.SectorsPerCluster, kMaxClusters), volume.SectorsPerCluster};
}

} // namespace thntfs
