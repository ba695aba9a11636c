#include "content/ContentJob.h"

#include "engine/EngineState.h"
#include "engine/Host.h"
#include "engine/SectorReader.h"

#include <algorithm>

namespace thntfs {

std::uint64_t VolumeByteLimit() {
    const DiskRecord& disk = Engine.SourceDisk;
    const std::uint64_t sectorBytes = std::max<std::uint64_t>(disk.BytesPerSector, 1);
    const std::uint64_t volumeSectors =
        std::min(Engine.VolumeParams.TotalSectors, ~std::uint64_t{0} / sectorBytes);
    return std::max(volumeSectors * sectorBytes, MediumBytes());
}

bool ContentStopped() {
    Host().PassGate();
    return !Engine.PreviewActive && Engine.ScanRunFlag == 0;
}

void ReportContentProgress(std::uint64_t size) {
    if (!Engine.PreviewActive) {
        Engine.ProgressDone = Engine.BytesWritten;
        Engine.ProgressTotal = size;
        Host().JobProgress();
    }
}

Bytes ContentBuffer() {
    constexpr std::size_t kPiece = std::size_t{1} << 20U;
    static_assert(kPiece <= kBigBlockBytes);
    if (Engine.ContentBlock == nullptr) {
        Engine.ContentBlock = MakeBigBlock();
    }
    return {Engine.ContentBlock.get(), kPiece};
}

} // namespace thntfs
