#include "disktools/AdoptImage.h"

#include "disktools/CopyDisk.h"
#include "disktools/CopyMap.h"
#include "engine/EngineState.h"
#include "engine/FileWrites.h"
#include "engine/LittleEndian.h"
#include "engine/SectorReader.h"
#include "platform/files/File.h"

#include <algorithm>
#include <vector>

namespace thntfs {

namespace {

using FirstSector = std::vector<std::uint8_t>;

FirstSector EmptySector() { return FirstSector(Engine.SourceDisk.BytesPerSector); }

ErrorCode ReadFirstSector(File& image, FirstSector& sector) {
    std::size_t got = 0;
    return image.ReadAt(0, sector, got);
}

bool HasStampsOf(File& image, const FirstSector& wanted) {
    FirstSector sector = EmptySector();
    return ReadFirstSector(image, sector) == kErrorNone &&
           U64At(sector, kStampedTotalOffset) == U64At(wanted, kStampedTotalOffset) &&
           U16At(sector, kStampedSectorBytesOffset) == U16At(wanted, kStampedSectorBytesOffset);
}

void StampImage(File& image) {
    FirstSector sector = EmptySector();
    RaiseFailedWrite(ReadFirstSector(image, sector));
    const FirstSector before = sector;
    StampFirstSector(sector);
    if (sector != before) {
        WriteBlock(image, 0, sector);
    }
}

} // namespace

std::uint64_t ReadEnd(const CopyMap& map) {
    std::uint64_t end = 0;
    map.ForEach([&end](const Area& area) { end = area.State == AreaState::Read ? area.End() : end; });
    return end;
}

std::uint64_t TriedEnd(const CopyMap& map) {
    std::uint64_t end = 0;
    map.ForEach([&end](const Area& area) { end = area.State == AreaState::Unread ? end : area.End(); });
    return end;
}

bool IsStampedForSource(File& image) {
    FirstSector stamped = EmptySector();
    StampFirstSector(stamped);
    return HasStampsOf(image, stamped);
}

bool IsUnstampedCopy(File& image, const CopyMap& map) {
    const auto bad = map.Find(AreaState::Bad, 0);
    FirstSector wanted = EmptySector();
    const bool isRead = !bad || bad->First != 0;
    return (isRead && !TryReadSectors(wanted, 0)) || HasStampsOf(image, wanted);
}

void AdoptImage(File& image, const CopyMap& map) {
    const std::uint64_t end = TriedEnd(map);
    const auto unread = map.Find(AreaState::Unread, 0);
    if (end == 0 || (unread && unread->First == 0)) {
        return;
    }
    std::uint64_t size = 0;
    RaiseFailedWrite(image.Size(size));
    if (size < end) {
        RaiseFailedWrite(image.SetSize(end));
    }
    StampImage(image);
}

} // namespace thntfs
