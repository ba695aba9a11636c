#include "disktools/CopySums.h"

#include "engine/EngineState.h"

namespace thntfs {

std::uint64_t SectorsOf(std::uint64_t bytes) {
    const std::uint64_t sectorBytes = Engine.SourceDisk.BytesPerSector;
    return (bytes + sectorBytes - 1) / sectorBytes;
}

CopySums SumsOf(const CopyMap& map) {
    return {SectorsOf(map.TotalBytes()), SectorsOf(map.BytesOf(AreaState::Bad)),
            SectorsOf(map.BytesOf(AreaState::Unread))};
}

} // namespace thntfs
