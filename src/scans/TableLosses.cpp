#include "scans/TableLosses.h"

#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/SectorReader.h"

#include <algorithm>

namespace thntfs {

TableLosses::TableLosses() {
    const VolumeParams& volume = Engine.VolumeParams;
    for (const MftExtent& extent : volume.MftExtents) {
        held_ += RecordsInExtent(extent);
    }
    const std::uint64_t stated = Engine.TableBytes / volume.FileRecordBytes;
    known_ = Engine.TableBytes == 0 ? held_ : std::min(stated, held_);
    Engine.Losses.Missing = stated > held_ ? stated - held_ : 0;
    if (Engine.TableCut && Engine.TableBytes == 0) {
        Engine.Losses.Missing = 1;
    }
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

void TableLosses::Reject(ConstBytes record, std::uint32_t slot) {
    if (slot >= known_) {
        return;
    }
    if (slot >= endSlot_) {
        ++Engine.Losses.BehindEnd;
    } else if (IsUnread(slot)) {
        ++Engine.Losses.Unread;
    } else if (IsDamaged(record)) {
        ++Engine.Losses.Damaged;
    }
}

bool TableLosses::IsUnread(std::uint32_t slot) const {
    return !unread_.empty() && std::binary_search(unread_.begin(), unread_.end(), slot);
}

// Drivers write a record to each slot up to the place that the table states. A slot that was freed or not yet
// used has an empty record, which is not in use; one that was never written is zeros.
bool TableLosses::IsDamaged(ConstBytes record) const {
    if (Engine.TableBytes == 0 || U64At(record, 0) == 0) {
        return false;
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

std::uint64_t TableLosses::SlotsFrom(std::uint64_t slot) const { return known_ > slot ? known_ - slot : 0; }

void TableLosses::LeaveBehindEnd(std::uint32_t slot, std::uint32_t slots) const {
    Engine.Losses.BehindEnd += std::min<std::uint64_t>(slots, SlotsFrom(slot));
}

void TableLosses::LeaveUnread(std::uint32_t slot) const { Engine.Losses.Unread += SlotsFrom(slot); }

void TableLosses::Finish() const { Engine.Losses.NoTable = !foundRecords_; }

} // namespace thntfs
