#include "content/ContentJob.h"

#include "engine/EngineState.h"
#include "platform/Host.h"

#include <algorithm>

namespace thntfs {

std::uint64_t VolumeByteLimit() {
    const DiskRecord& disk = Engine.SourceDisk;
    const std::uint64_t sectorBytes = std::max<std::uint64_t>(disk.BytesPerSector, 1);
    const std::uint64_t volumeSectors =
        std::min(Engine.VolumeParams.TotalSectors, ~std::uint64_t{0} / sectorBytes);
    const std::uint64_t mediumBytes = disk.MediaHandle != nullptr ? disk.MediaHandle->SizeBytes() : 0;
    return std::max(volumeSectors * sectorBytes, mediumBytes);
}

std::uint64_t BytesBehindMedium(std::uint64_t sector, std::uint64_t bytes) {
    const DiskRecord& disk = Engine.SourceDisk;
    if (disk.MediaHandle == nullptr || disk.BytesPerSector == 0) {
        return 0;
    }
    const std::uint64_t size = disk.MediaHandle->SizeBytes();
    if (sector > size / disk.BytesPerSector) {
        return bytes;
    }
    const std::uint64_t room = size - sector * disk.BytesPerSector;
    return bytes > room ? bytes - room : 0;
}

bool ContentStopped() {
    Host().PassGate();
    return Engine.PreviewActive == 0 && Engine.ScanRunFlag == 0;
}

void ReportContentProgress(std::uint64_t size) {
    if (Engine.PreviewActive == 0) {
        Engine.ProgressDone = Engine.BytesWritten;
        Engine.ProgressTotal = size;
        Host().JobProgress();
    }
}

} // namespace thntfs
