#include "content/ContentJob.h"

#include "engine/EngineState.h"
#include "engine/Host.h"
#include "engine/SectorReader.h"

#include <algorithm>
#include <iterator>

namespace thntfs {

std::uint64_t VolumeByteLimit() {
    const DiskRecord& disk = Engine.SourceDisk;
    const std::uint64_t sectorBytes = std::max<std::uint64_t>(disk.BytesPerSector, 1);
    const std::uint64_t volumeSectors =
        std::min(Engine.VolumeParams.TotalSectors, ~std::uint64_t{0} / sectorBytes);
    return std::max(volumeSectors * sectorBytes, MediumBytes());
}

std::uint64_t BytesBehindMedium(std::uint64_t sector, std::uint64_t bytes) {
    const DiskRecord& disk = Engine.SourceDisk;
    if (disk.MediaHandle == nullptr || disk.BytesPerSector == 0) {
        return 0;
    }
    const std::uint64_t size = MediumBytes();
    if (sector > size / disk.BytesPerSector) {
        return bytes;
    }
    const std::uint64_t room = size - sector * disk.BytesPerSector;
    return bytes > room ? bytes - room : 0;
}

std::vector<std::uint64_t> UnreadSectors(const ReadOutcome& outcome, std::uint64_t end) {
    std::vector<std::uint64_t> unread;
    std::copy_if(outcome.BadSectors.begin(), outcome.BadSectors.end(), std::back_inserter(unread),
                 [end](std::uint64_t sector) { return sector < end; });
    for (std::uint64_t sector = outcome.UntriedFrom; sector < end; ++sector) {
        unread.push_back(sector);
    }
    return unread;
}

void NoteUnreadSector(std::uint64_t sector) {
    if (Engine.SectorsUnread++ == 0) {
        Engine.FirstSectorUnread = sector;
    }
}

void NoteMissingData(const ReadOutcome& outcome, std::uint64_t sector, std::uint64_t bytes) {
    Engine.BytesBehindEnd += BytesBehindMedium(sector, bytes);
    const std::uint64_t sectorBytes = std::max<std::uint64_t>(Engine.SourceDisk.BytesPerSector, 1);
    for (const std::uint64_t unread :
         UnreadSectors(outcome, sector + (bytes + sectorBytes - 1) / sectorBytes)) {
        NoteUnreadSector(unread);
    }
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
