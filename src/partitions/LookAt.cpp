#include "partitions/LookAt.h"

#include "engine/EngineState.h"
#include "engine/SectorReader.h"

#include <algorithm>

namespace thntfs {

bool LookAt(Bytes buffer, std::uint64_t sector) {
    if (TryReadSectors(buffer, sector)) {
        return true;
    }
    std::fill(buffer.begin(), buffer.end(), std::uint8_t{0});
    Engine.UnreadLook = Engine.UnreadLook.value_or(sector);
    return false;
}

} // namespace thntfs
