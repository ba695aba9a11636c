#pragma once

#include "platform/system/Bytes.h"

#include <cstdint>
#include <vector>

namespace thntfs {

/// Where the records of the volume's present table stand. A record elsewhere was left behind by an older
/// table, whatever its flags say.
class PresentTable {
public:
    PresentTable();

    /// Whether a checked record at an absolute sector is one of the table. Where there is no table, all are;
    /// where pieces of it are missing, so may be those whose place in it isn't known. Passes
    /// CUserException on.
    [[nodiscard]] bool Holds(ConstBytes record, std::uint64_t sector) {
        return sector - static_cast<std::uint64_t>(last_.First) < last_.Sectors() ||
               HoldsElsewhere(record, sector);
    }

private:
    struct Piece {
        std::int64_t First = 0; ///< below 0 in front of the medium
        std::int64_t End = 0;

        [[nodiscard]] std::uint64_t Sectors() const { return static_cast<std::uint64_t>(End - First); }
    };

    void AddExtents();
    void AddExactMap();
    void AddPiece(std::uint64_t firstSector, std::uint64_t firstRecord, std::uint64_t records);
    void JoinPieces();
    bool HoldsElsewhere(ConstBytes record, std::uint64_t sector);
    bool FindPieceAt(std::int64_t sector);

    std::uint64_t known_;       ///< records that the table says it holds
    std::vector<Piece> pieces_; ///< by sector, apart
    Piece last_;                ///< the one that held a record last
    std::uint64_t end_ = 0;     ///< number behind the last record that has a place
    bool hasExactMap_ = false;
    bool whole_ = true; ///< as the exact map tells
};

} // namespace thntfs
