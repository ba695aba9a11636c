#include "disktools/CopyDisk.h"

#include "disktools/TargetFlow.h"
#include "engine/EngineState.h"
#include "engine/FileWrites.h"
#include "engine/Host.h"
#include "engine/SectorReader.h"
#include "platform/files/File.h"
#include "platform/system/ReadBuffer.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace thntfs {

namespace {

/// Sectors that are read and written in one go.
struct Piece {
    std::uint64_t First = 0;
    std::uint64_t Count = 0;
};

class DiskCopier {
public:
    DiskCopier(File& target, std::uint64_t totalSectors, std::uint32_t sectorsPerTransfer, CopyLedger& ledger)
        : target_(target)
        , total_(totalSectors)
        , perTransfer_(std::max(1U, sectorsPerTransfer))
        , ledger_(ledger)
        , flow_(target, CopiedBytes(totalSectors, perTransfer_))
        , buffer_(perTransfer_ * sectorBytes_) {}

    /// `fromStart` copies the first transfer whatever the ledger says of it.
    bool Run(bool fromStart) {
        Engine.ProgressDone = 0;
        Engine.ProgressTotal = ledger_.Map().BytesOf(AreaState::Unread) / sectorBytes_;
        try {
            CopyPieces(fromStart ? Piece{0, perTransfer_} : NextPiece());
            ledger_.Close(target_, Place());
        } catch (const CUserException& failure) {
            ledger_.NoteFailure(failure.Code);
            KeepWhatIsThere();
            return Engine.ScanRunFlag != 0;
        }
        Host().CopyPosition(std::min(position_, total_), total_);
        return Engine.ScanRunFlag != 0;
    }

private:
    void CopyPieces(std::optional<Piece> piece) {
        while (piece && MayCopy(*piece)) {
            CopyPiece(*piece);
            piece = NextPiece();
        }
        if (!piece) {
            position_ = std::max(position_, total_);
        }
    }

    /// The first transfer always goes out. The rest behind the last whole transfer goes without a word.
    bool MayCopy(const Piece& piece) {
        if (piece.First == 0) {
            return true;
        }
        position_ = piece.First;
        if (piece.First < total_ - total_ % perTransfer_) {
            Host().CopyPosition(piece.First, total_);
        }
        return Engine.ScanRunFlag != 0;
    }

    void CopyPiece(const Piece& piece) {
        const Bytes bytes = Bytes(buffer_).first(static_cast<std::size_t>(piece.Count * sectorBytes_));
        const ReadOutcome outcome = ReadSectorsCleared(bytes, piece.First);
        ClearBadSectors(bytes, piece.First, outcome.BadSectors);
        if (piece.First == 0) {
            StampFirstSector(bytes);
        }
        const std::uint64_t offset = piece.First * sectorBytes_;
        flow_.Before(offset, bytes.size());
        const bool written = WriteBlock(target_, offset, bytes);
        flow_.After(offset, bytes.size());
        position_ = piece.First + piece.Count;
        Engine.ProgressDone += piece.Count;
        if (written) {
            Account(piece, outcome);
        }
        ledger_.Pass(target_, Place());
    }

    /// A failed read of a single sector may have left a part of it.
    void ClearBadSectors(Bytes bytes, std::uint64_t first,
                         const std::vector<std::uint64_t>& badSectors) const {
        for (const std::uint64_t sector : badSectors) {
            const Bytes bad =
                bytes.subspan(static_cast<std::size_t>((sector - first) * sectorBytes_), sectorBytes_);
            std::fill(bad.begin(), bad.end(), std::uint8_t{0});
        }
    }

    void Account(const Piece& piece, const ReadOutcome& outcome) {
        const std::uint64_t end = std::min(piece.First + piece.Count, outcome.UntriedFrom);
        ledger_.Mark(piece.First * sectorBytes_, (end - piece.First) * sectorBytes_, AreaState::Read);
        for (const std::uint64_t sector : outcome.BadSectors) {
            ledger_.Mark(sector * sectorBytes_, sectorBytes_, AreaState::Bad);
        }
    }

    /// The next unread sectors of one transfer, at most up to its end.
    [[nodiscard]] std::optional<Piece> NextPiece() const {
        const auto area = ledger_.Map().Find(AreaState::Unread, position_ * sectorBytes_);
        if (!area) {
            return std::nullopt;
        }
        const std::uint64_t first = area->First / sectorBytes_;
        const std::uint64_t end = std::min(total_, (area->End() + sectorBytes_ - 1) / sectorBytes_);
        const std::uint64_t transferEnd = first - first % perTransfer_ + perTransfer_;
        if (first < perTransfer_ && end == total_) {
            return Piece{first, perTransfer_ - first};
        }
        const bool single = first >= perTransfer_ && transferEnd > total_;
        return Piece{first, single ? 1 : std::min(end, transferEnd) - first};
    }

    [[nodiscard]] CopyPlace Place() const {
        const std::uint64_t bytes = position_ * sectorBytes_;
        const bool ended = !ledger_.Map().Find(AreaState::Unread, 0);
        return {std::min(bytes, ledger_.Map().TotalBytes()), ended ? '+' : '?', 1};
    }

    /// A second failure on the way out would only hide the first.
    void KeepWhatIsThere() {
        try {
            ledger_.Close(target_, Place());
        } catch (const CUserException&) {
            return;
        }
    }

    File& target_;
    std::size_t sectorBytes_ = std::max<std::size_t>(1, Engine.SourceDisk.BytesPerSector);
    std::uint64_t total_;
    std::uint32_t perTransfer_;
    CopyLedger& ledger_;
    TargetFlow flow_;
    ReadBuffer buffer_;
    std::uint64_t position_ = 0; ///< sectors behind the last piece
};

} // namespace

void StampFirstSector(Bytes firstSector) {
    PutNumber(firstSector, kStampedTotalOffset, Engine.SourceDisk.TotalSectors);
    PutNumber(firstSector, kStampedSectorBytesOffset, Engine.SourceDisk.BytesPerSector);
}

bool WriteBlock(File& target, std::uint64_t offset, ConstBytes block) {
    const ErrorCode code = target.WriteAt(offset, block);
    RaiseFailedWrite(code);
    return code == kErrorNone;
}

std::uint64_t CopiedBytes(std::uint64_t totalSectors, std::uint32_t sectorsPerTransfer) {
    return std::max<std::uint64_t>(totalSectors, sectorsPerTransfer) * Engine.SourceDisk.BytesPerSector;
}

bool CopyDisk(File& target, std::uint64_t totalSectors, std::uint32_t sectorsPerTransfer,
              CopyLedger* ledger) {
    CopyLedger own(CopyMap(totalSectors * Engine.SourceDisk.BytesPerSector));
    return DiskCopier(target, totalSectors, sectorsPerTransfer, ledger != nullptr ? *ledger : own).Run(true);
}

bool ResumeCopy(File& target, std::uint64_t totalSectors, std::uint32_t sectorsPerTransfer,
                CopyLedger& ledger) {
    return DiskCopier(target, totalSectors, sectorsPerTransfer, ledger).Run(false);
}

} // namespace thntfs
