#include "scans/SplitFiles.h"

#include "engine/AttributePieces.h"

#include <algorithm>
#include <tuple>

namespace thntfs {

namespace {

constexpr std::size_t kMaxPieces = 1U << 20U;
constexpr std::size_t kMaxLooks = 64U << 20U;

// A driver counts the sequence up when it frees a record, so the pieces of a deleted file may know it by the
// number before.
bool IsReferenceTo(std::uint64_t reference, std::uint64_t freed) {
    const std::uint16_t now = SequenceOf(freed);
    const auto before = static_cast<std::uint16_t>(now == 1 ? 0xFFFF : now - 1);
    return SequenceOf(reference) == now || SequenceOf(reference) == before;
}

bool IsWhole(const std::vector<DataPiece>& pieces, bool named) {
    std::uint64_t next = 0;
    std::uint64_t needed = 0;
    for (const DataPiece& piece : pieces) {
        if (piece.Named != named) {
            continue;
        }
        if (piece.FirstVcn != next) {
            return false;
        }
        needed = piece.FirstVcn == 0 ? piece.NeededVcns : needed;
        next = piece.EndVcn;
    }
    return next >= needed;
}

} // namespace

void SplitFiles::AddPiece(const DataPiece& piece) {
    if (pieces_.size() < kMaxPieces) {
        pieces_.push_back(piece);
    }
}

void SplitFiles::AddFile(std::uint32_t file, std::uint64_t reference) { files_.push_back({file, reference}); }

void SplitFiles::Join(const std::function<void(std::uint32_t, const JoinedPieces&)>& visit) {
    std::sort(pieces_.begin(), pieces_.end(), [](const DataPiece& a, const DataPiece& b) {
        return std::tuple(NumberOf(a.BaseReference), a.Named, a.FirstVcn) <
               std::tuple(NumberOf(b.BaseReference), b.Named, b.FirstVcn);
    });
    for (const SplitFile& file : files_) {
        visit(file.Place, PiecesOf(file.Reference));
    }
    pieces_ = {};
    files_ = {};
}

JoinedPieces SplitFiles::PiecesOf(std::uint64_t reference) {
    JoinedPieces joined;
    const std::uint64_t number = NumberOf(reference);
    auto piece = std::lower_bound(
        pieces_.begin(), pieces_.end(), number,
        [](const DataPiece& a, std::uint64_t wanted) { return NumberOf(a.BaseReference) < wanted; });
    bool unnamed = false;
    for (; piece != pieces_.end() && NumberOf(piece->BaseReference) == number; ++piece) {
        if (++looks_ > kMaxLooks) {
            return {};
        }
        if (IsReferenceTo(piece->BaseReference, reference)) {
            joined.Pieces.push_back(*piece);
            unnamed = unnamed || !piece->Named;
        }
    }
    joined.Whole = unnamed && IsWhole(joined.Pieces, false) && IsWhole(joined.Pieces, true);
    return joined;
}

} // namespace thntfs
