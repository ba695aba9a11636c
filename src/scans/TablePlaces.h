#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace thntfs {

/// Whether records can be told apart by sectors, as a scan must that goes beyond its own walk.
bool SectorsFitRecords();

/// Slots from a sector on that begin in front of the medium. Only a volume that does so itself has them.
std::uint64_t SlotsInFront(std::uint64_t sector);

/// Slots of one size in a row, as a walk along sectors tries them.
struct SlotRow {
    std::uint64_t FirstSector = 0;
    std::uint64_t Slots = 0;
};

/// Which records stand where, by the exact map of the table in work.
class TablePlaces {
public:
    TablePlaces();

    /// Number of the record that begins at a sector and goes on in the sectors behind it.
    [[nodiscard]] std::optional<std::uint64_t> RecordAt(std::uint64_t sector) const;
    /// Records below a number whose place is known.
    [[nodiscard]] std::uint64_t PlacedBelow(std::uint64_t number) const;

private:
    struct Stretch {
        std::uint64_t FirstSector;
        std::uint64_t FirstRecord;
        std::uint64_t Records;
    };

    std::vector<Stretch> stretches_;   ///< by sector
    std::vector<std::uint64_t> split_; ///< records whose parts lie apart
};

/// Rows of slots that a walk has tried: what is left of a stretch of sectors when they are taken away.
class TriedSlots {
public:
    explicit TriedSlots(std::vector<SlotRow> rows);

    /// Slots from a sector on, `slots` at the most, that are alike: all tried or none. Gives how many, and
    /// whether they were tried.
    struct Piece {
        std::uint64_t Slots;
        bool Tried;
    };
    [[nodiscard]] Piece PieceAt(std::uint64_t sector, std::uint64_t slots) const;

private:
    std::vector<SlotRow> rows_; ///< by sector
};

} // namespace thntfs
