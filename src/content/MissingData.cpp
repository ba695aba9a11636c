#include "content/MissingData.h"

#include "engine/EngineState.h"
#include "engine/SectorReader.h"

#include <algorithm>
#include <iterator>

namespace thntfs {

void MissingData::AddSector(std::uint64_t sector) {
    if (SectorsUnread++ == 0) {
        FirstSectorUnread = sector;
    }
}

void MissingData::AddBehindEnd(std::uint64_t sector, std::uint64_t bytes) {
    const DiskRecord& disk = Engine.SourceDisk;
    if (disk.MediaHandle == nullptr || disk.BytesPerSector == 0) {
        return;
    }
    const std::uint64_t size = MediumBytes();
    const std::uint64_t room = sector > size / disk.BytesPerSector ? 0 : size - sector * disk.BytesPerSector;
    BytesBehindEnd += bytes - std::min(bytes, room);
}

void MissingData::AddMissingOf(const ReadOutcome& outcome, std::uint64_t sector, std::uint64_t bytes) {
    AddBehindEnd(sector, bytes);
    const std::uint64_t sectorBytes = std::max<std::uint64_t>(Engine.SourceDisk.BytesPerSector, 1);
    for (const std::uint64_t unread :
         UnreadSectors(outcome, sector + (bytes + sectorBytes - 1) / sectorBytes)) {
        AddSector(unread);
    }
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

} // namespace thntfs
