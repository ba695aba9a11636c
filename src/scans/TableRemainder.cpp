#include "scans/TableRemainder.h"

#include "engine/DecodeRecord.h"
#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/Host.h"
#include "engine/RecordTable.h"
#include "engine/SectorReader.h"
#include "scans/TableLosses.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr std::uint32_t kSectorsAtATime = 128;

} // namespace

TableRemainder::TableRemainder(const TriedSlots& tried, AddedRecords& added, TableLosses* losses)
    : tried_(tried)
    , added_(added)
    , losses_(losses)
    , batchRecords_(std::max(1U, kSectorsAtATime / Engine.VolumeParams.SectorsPerFileRecord))
    , batch_(std::size_t{batchRecords_} * Engine.VolumeParams.FileRecordBytes) {}

bool TableRemainder::Run() try {
    VisitTableStretches([this](const TableStretch& stretch) {
        number_ = stretch.FirstRecord;
        if (stretch.FirstRecord + stretch.Records > UINT32_MAX) {
            return false;
        }
        if (stretch.Ranges.size() > 1) {
            TakeSplit(stretch.Ranges);
        } else {
            TakeRow(stretch.Ranges.front().First, stretch.Records);
        }
        return !stopped_;
    });
    return !stopped_;
} catch (const CUserException&) {
    if (losses_ != nullptr) {
        losses_->BeginRow(number_, number_);
        losses_->LeaveUnread(static_cast<std::uint32_t>(number_));
    }
    throw;
}

void TableRemainder::TakeRow(std::uint64_t sector, std::uint64_t records) {
    while (records > 0 && !stopped_) {
        const TriedSlots::Piece piece = tried_.PieceAt(sector, records);
        std::uint64_t taken = piece.Slots;
        if (const std::uint64_t inFront = SlotsInFront(sector); inFront != 0) {
            taken = std::min(taken, inFront);
            LeaveInFront(piece.Tried ? 0 : taken);
        } else if (!piece.Tried && sector >= Engine.SourceDisk.TotalSectors) {
            LeaveBehindEnd(taken);
        } else if (!piece.Tried) {
            taken = std::min<std::uint64_t>(taken, batchRecords_);
            TakeBatch(sector, static_cast<std::uint32_t>(taken));
        }
        number_ += taken;
        sector += taken * Engine.VolumeParams.SectorsPerFileRecord;
        records -= taken;
    }
}

void TableRemainder::LeaveBehindEnd(std::uint64_t records) {
    if (losses_ != nullptr) {
        losses_->BeginRow(number_, number_);
        losses_->LeaveBehindEnd(static_cast<std::uint32_t>(number_), records);
    }
}

void TableRemainder::LeaveInFront(std::uint64_t records) {
    if (losses_ != nullptr) {
        losses_->BeginRow(number_, number_);
        losses_->LeaveInFront(static_cast<std::uint32_t>(number_), records);
    }
}

void TableRemainder::TakeBatch(std::uint64_t sector, std::uint32_t records) {
    stopped_ = !JobMayGoOn();
    if (stopped_) {
        return;
    }
    const std::uint32_t recordBytes = Engine.VolumeParams.FileRecordBytes;
    const Bytes wanted(batch_.data(), std::size_t{records} * recordBytes);
    ReportProgress();
    BeginAccount(ReadSectorsCleared(wanted, sector), sector, records);
    for (std::uint32_t i = 0; i < records; ++i) {
        TakeRecord(wanted.subspan(std::size_t{i} * recordBytes, recordBytes),
                   {sector + std::uint64_t{i} * Engine.VolumeParams.SectorsPerFileRecord,
                    static_cast<std::uint32_t>(number_ + i)});
    }
}

// Where all that is used of it lies in its first part, a walk along sectors has met it there.
void TableRemainder::TakeSplit(const std::vector<SectorRange>& parts) {
    const Bytes record = Bytes(batch_).first(Engine.VolumeParams.FileRecordBytes);
    const std::uint64_t sector = parts.front().First;
    if (tried_.PieceAt(sector, 1).Tried && ReadFileRecord(record, sector)) {
        return;
    }
    stopped_ = !JobMayGoOn();
    ReadOutcome outcome;
    std::size_t at = 0;
    for (const SectorRange& range : parts) {
        const Bytes part = record.subspan(at, range.Count * Engine.SourceDisk.BytesPerSector);
        if (!ReadSectorsCleared(part, range.First).Whole()) {
            outcome.BadSectors = {sector};
        }
        at += part.size();
    }
    BeginAccount(outcome, sector, 1);
    TakeRecord(record, {sector, static_cast<std::uint32_t>(number_), true});
}

void TableRemainder::BeginAccount(const ReadOutcome& outcome, std::uint64_t sector, std::uint32_t records) {
    if (losses_ != nullptr) {
        losses_->BeginRow(number_, number_);
        losses_->BeginBatch(outcome, sector, static_cast<std::uint32_t>(number_), records);
    }
}

void TableRemainder::TakeRecord(Bytes record, const RecordPlace& place) {
    const VolumeParams& volume = Engine.VolumeParams;
    const bool sound = CheckFileRecord(record, volume.FileRecordBytes, volume.BytesPerSector);
    if (losses_ != nullptr) {
        sound ? losses_->Accept() : losses_->Reject(record, place.Number);
    }
    if (sound) {
        added_.Take(record, place);
    }
}

void TableRemainder::ReportProgress() const {
    if (losses_ != nullptr) {
        Engine.ProgressTotal = std::max(Engine.ProgressTotal, TableRecordCount());
        Engine.ProgressDone = std::max(Engine.ProgressDone, number_);
        Host().JobProgress();
    }
}

} // namespace thntfs
