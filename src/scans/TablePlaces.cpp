#include "scans/TablePlaces.h"

#include "engine/EngineState.h"
#include "engine/RecordTable.h"

#include <algorithm>

namespace thntfs {

namespace {

// Sectors in front of the medium come first.
bool IsBefore(std::uint64_t a, std::uint64_t b) {
    return static_cast<std::int64_t>(a) < static_cast<std::int64_t>(b);
}

} // namespace

bool SectorsFitRecords() {
    const VolumeParams& volume = Engine.VolumeParams;
    return volume.BytesPerSector == Engine.SourceDisk.BytesPerSector &&
           std::uint32_t{volume.SectorsPerFileRecord} * volume.BytesPerSector == volume.FileRecordBytes;
}

std::uint64_t SlotsInFront(std::uint64_t sector) {
    const VolumeParams& volume = Engine.VolumeParams;
    return IsBefore(volume.StartSector, 0) && IsBefore(sector, 0)
               ? (0 - sector + volume.SectorsPerFileRecord - 1) / volume.SectorsPerFileRecord
               : 0;
}

TablePlaces::TablePlaces() {
    VisitTableStretches([this](const TableStretch& stretch) {
        if (stretch.Ranges.size() == 1) {
            stretches_.push_back({stretch.Ranges.front().First, stretch.FirstRecord, stretch.Records});
        } else {
            split_.push_back(stretch.FirstRecord);
        }
        return true;
    });
    std::sort(stretches_.begin(), stretches_.end(),
              [](const Stretch& a, const Stretch& b) { return IsBefore(a.FirstSector, b.FirstSector); });
}

std::optional<std::uint64_t> TablePlaces::RecordAt(std::uint64_t sector) const {
    const auto behind = std::upper_bound(
        stretches_.begin(), stretches_.end(), sector,
        [](std::uint64_t wanted, const Stretch& stretch) { return IsBefore(wanted, stretch.FirstSector); });
    if (behind == stretches_.begin()) {
        return std::nullopt;
    }
    const Stretch& stretch = behind[-1];
    const std::uint64_t sectors = sector - stretch.FirstSector;
    const std::uint64_t record = sectors / Engine.VolumeParams.SectorsPerFileRecord;
    if (sectors % Engine.VolumeParams.SectorsPerFileRecord != 0 || record >= stretch.Records) {
        return std::nullopt;
    }
    return stretch.FirstRecord + record;
}

std::uint64_t TablePlaces::PlacedBelow(std::uint64_t number) const {
    std::uint64_t placed = 0;
    for (const Stretch& stretch : stretches_) {
        placed += number > stretch.FirstRecord ? std::min(stretch.Records, number - stretch.FirstRecord) : 0;
    }
    return placed + static_cast<std::uint64_t>(std::count_if(
                        split_.begin(), split_.end(), [number](std::uint64_t n) { return n < number; }));
}

TriedSlots::TriedSlots(std::vector<SlotRow> rows)
    : rows_(std::move(rows)) {
    std::sort(rows_.begin(), rows_.end(),
              [](const SlotRow& a, const SlotRow& b) { return IsBefore(a.FirstSector, b.FirstSector); });
}

TriedSlots::Piece TriedSlots::PieceAt(std::uint64_t sector, std::uint64_t slots) const {
    const std::uint64_t slotSectors = Engine.VolumeParams.SectorsPerFileRecord;
    const auto behind =
        std::upper_bound(rows_.begin(), rows_.end(), sector, [](std::uint64_t wanted, const SlotRow& row) {
            return IsBefore(wanted, row.FirstSector);
        });
    if (behind != rows_.begin()) {
        const SlotRow& row = behind[-1];
        const std::uint64_t sectors = sector - row.FirstSector;
        if (sectors % slotSectors == 0 && sectors / slotSectors < row.Slots) {
            return {std::min(slots, row.Slots - sectors / slotSectors), true};
        }
    }
    if (behind == rows_.end()) {
        return {slots, false};
    }
    const std::uint64_t before = (behind->FirstSector - sector + slotSectors - 1) / slotSectors;
    return {std::min(slots, before), false};
}

} // namespace thntfs
