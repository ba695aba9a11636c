#include "scans/PresentTable.h"

#include "engine/EngineState.h"
#include "engine/FileRecord.h"
#include "engine/RecordTable.h"

#include <algorithm>

namespace thntfs {

// What lies behind the part of the table that holds records was never written by this volume's drivers.
PresentTable::PresentTable()
    : known_(Engine.TableBytes == 0 ? ~std::uint64_t{0}
                                    : Engine.TableBytes / std::max(1U, Engine.VolumeParams.FileRecordBytes)) {
    AddExtents();
    JoinPieces();
}

void PresentTable::AddExtents() {
    std::uint64_t number = 0;
    for (const MftExtent& extent : Engine.VolumeParams.MftExtents) {
        const std::uint32_t records = RecordsInExtent(extent);
        AddPiece(SectorOfCluster(extent.StartCluster), number, records);
        number += records;
    }
}

// Made out when a record first lies outside the extents, since the medium is read for it. A record that is
// split between two runs counts where it begins.
void PresentTable::AddExactMap() {
    hasExactMap_ = true;
    VisitTableStretches([this](const TableStretch& stretch) {
        AddPiece(stretch.Ranges.front().First, stretch.FirstRecord, stretch.Records);
        return true;
    });
    whole_ = TableIsWhole() && !Engine.TableCut;
    JoinPieces();
}

void PresentTable::AddPiece(std::uint64_t firstSector, std::uint64_t firstRecord, std::uint64_t records) {
    records = firstRecord < known_ ? std::min(records, known_ - firstRecord) : 0;
    if (records != 0) {
        const std::uint64_t end = firstSector + records * Engine.VolumeParams.SectorsPerFileRecord;
        pieces_.push_back({static_cast<std::int64_t>(firstSector), static_cast<std::int64_t>(end)});
        end_ = std::max(end_, firstRecord + records);
    }
}

void PresentTable::JoinPieces() {
    std::sort(pieces_.begin(), pieces_.end(),
              [](const Piece& a, const Piece& b) { return a.First < b.First; });
    std::size_t joined = 0;
    for (const Piece& piece : pieces_) {
        if (joined != 0 && piece.First <= pieces_[joined - 1].End) {
            pieces_[joined - 1].End = std::max(pieces_[joined - 1].End, piece.End);
        } else {
            pieces_[joined++] = piece;
        }
    }
    pieces_.resize(joined);
    last_ = {};
}

bool PresentTable::HoldsElsewhere(ConstBytes record, std::uint64_t sector) {
    if (pieces_.empty() || FindPieceAt(static_cast<std::int64_t>(sector))) {
        return true;
    }
    if (!hasExactMap_) {
        AddExactMap();
        return Holds(record, sector);
    }
    return !whole_ && (UsaOffset(record) != kUsaOffsetNew || OwnRecordNumber(record) >= end_);
}

bool PresentTable::FindPieceAt(std::int64_t sector) {
    const auto behind =
        std::upper_bound(pieces_.begin(), pieces_.end(), sector,
                         [](std::int64_t wanted, const Piece& piece) { return wanted < piece.First; });
    if (behind == pieces_.begin() || sector >= std::prev(behind)->End) {
        return false;
    }
    last_ = *std::prev(behind);
    return true;
}

} // namespace thntfs
