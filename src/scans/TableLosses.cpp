#include "scans/TableLosses.h"

#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/RecordTable.h"
#include "engine/SectorReader.h"
#include "scans/TablePlaces.h"

#include <algorithm>

namespace thntfs {

namespace {

// Of a volume in use a record for each so many bytes is few.
constexpr std::uint64_t kBytesForARecord = std::uint64_t{4} << 20U;

std::uint64_t StatedRecords() { return Engine.TableBytes / Engine.VolumeParams.FileRecordBytes; }

std::uint64_t RecordsOfVolume() {
    const VolumeParams& volume = Engine.VolumeParams;
    const std::uint64_t held = MediumBytes() / volume.BytesPerSector;
    return std::min(volume.TotalSectors, held) * volume.BytesPerSector / kBytesForARecord;
}

} // namespace

TableLosses::TableLosses() {
    std::uint64_t held = 0;
    for (const MftExtent& extent : Engine.VolumeParams.MftExtents) {
        held += RecordsInExtent(extent);
    }
    const std::uint64_t stated = StatedRecords();
    known_ = Engine.TableBytes == 0 ? held : std::min(stated, held);
    Engine.Losses.Missing = stated > held ? stated - held : 0;
    if (Engine.TableCut && Engine.TableBytes == 0) {
        Engine.Losses.Missing = 1;
    }
}

void TableLosses::UseExactMap(const TablePlaces& places) {
    const std::uint64_t stated = StatedRecords();
    known_ = Engine.TableBytes == 0 ? TableRecordCount() : stated;
    Engine.Losses.Missing = stated - places.PlacedBelow(stated);
    if (!TableIsWhole() && Engine.TableBytes == 0) {
        Engine.Losses.Missing = 1;
    }
}

void TableLosses::BeginRow(std::uint64_t firstSlot, std::optional<std::uint64_t> firstRecord) {
    counts_ = firstRecord.has_value();
    ahead_ = firstRecord.value_or(firstSlot) - firstSlot;
}

void TableLosses::BeginBatch(const ReadOutcome& outcome, std::uint64_t firstSector, std::uint32_t firstSlot,
                             std::uint32_t records) {
    const DiskRecord& disk = Engine.SourceDisk;
    const std::uint64_t recordBytes = Engine.VolumeParams.FileRecordBytes;
    const std::uint64_t first = firstSector * disk.BytesPerSector;
    const std::uint64_t end = MediumBytes();
    batchFirst_ = firstSlot;
    endSlot_ = firstSlot + (end > first ? (end - first) / recordBytes : 0);
    unread_.clear();
    for (const std::uint64_t sector : outcome.BadSectors) {
        unread_.push_back(firstSlot + static_cast<std::uint32_t>((sector - firstSector) *
                                                                 disk.BytesPerSector / recordBytes));
    }
    if (outcome.UntriedFrom != kAllWereTried) {
        const std::uint64_t untried = (outcome.UntriedFrom - firstSector) * disk.BytesPerSector / recordBytes;
        for (std::uint64_t i = untried; i < records; ++i) {
            unread_.push_back(firstSlot + static_cast<std::uint32_t>(i));
        }
    }
}

void TableLosses::Accept() {
    foundRecords_ = true;
    ++Engine.Yield.Met;
}

void TableLosses::Reject(ConstBytes record, std::uint32_t slot) {
    Engine.Yield.Met += U32At(record, 0) == kFileMagic ? 1U : 0U;
    if (!counts_ || slot + ahead_ >= known_) {
        return;
    }
    if (slot >= endSlot_) {
        ++Engine.Losses.BehindEnd;
    } else if (IsUnread(slot)) {
        ++Engine.Losses.Unread;
    } else if (IsDamaged(record, slot + ahead_)) {
        ++Engine.Losses.Damaged;
    }
}

bool TableLosses::IsUnread(std::uint32_t slot) const {
    return !unread_.empty() && std::binary_search(unread_.begin(), unread_.end(), slot);
}

// Drivers write a record to each slot up to the place that the table states. A slot that was freed or not yet
// used has an empty record, which is not in use; one that was never written is zeros, and so is one that was
// wiped.
bool TableLosses::IsDamaged(ConstBytes record, std::uint64_t number) {
    if (Engine.TableBytes == 0) {
        return false;
    }
    if (U64At(record, 0) == 0) {
        if (!bitmap_) {
            bitmap_.emplace();
        }
        return bitmap_->ShouldHoldRecord(number);
    }
    return U32At(record, 0) != kFileMagic || IsInUse(record);
}

void TableLosses::NoteList() {
    if (Engine.Lists.Unread) {
        ++Engine.Losses.Unread;
    } else if (Engine.Lists.Ended && !Engine.Lists.Stopped) {
        ++Engine.Losses.Damaged;
    }
}

std::uint64_t TableLosses::SlotsFrom(std::uint64_t slot) const {
    const std::uint64_t record = slot + ahead_;
    return known_ > record ? known_ - record : 0;
}

void TableLosses::LeaveBehindEnd(std::uint32_t slot, std::uint64_t slots) const {
    Engine.Losses.BehindEnd += counts_ ? std::min(slots, SlotsFrom(slot)) : 0;
}

void TableLosses::LeaveInFront(std::uint32_t slot, std::uint64_t slots) const {
    Engine.Losses.Missing += counts_ ? std::min(slots, SlotsFrom(slot)) : 0;
}

void TableLosses::LeaveUnread(std::uint32_t slot) const { Engine.Losses.Unread += SlotsFrom(slot); }

void TableLosses::Finish() const {
    Engine.Losses.NoTable = !foundRecords_;
    Engine.Yield.Expected = std::max(known_, RecordsOfVolume());
}

} // namespace thntfs
