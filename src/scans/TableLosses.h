#pragma once

#include "platform/system/Bytes.h"
#include "scans/SlotBitmap.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace thntfs {

class TablePlaces;
struct ReadOutcome;

/// Keeps account, in EngineState::Losses, of the records that a walk over the Master File Table should have
/// met and could not have, and in EngineState::Yield of those that it met. Slots are counted from 0 over all
/// extents. What lies behind the part of the table that holds records, as the table's own record says, was
/// never written and is no loss.
class TableLosses {
public:
    /// Counts what the extents lack.
    TableLosses();

    /// From here on the account is of the table's exact map, which tells what is missing.
    void UseExactMap(const TablePlaces& places);

    /// Slots from this one on hold the records from a number on; without one their places are no records'
    /// places, and nothing is counted of them. Until the first call slot and number are the same.
    void BeginRow(std::uint64_t firstSlot, std::optional<std::uint64_t> firstRecord);

    /// A batch of `records` slots has been read from an absolute sector.
    void BeginBatch(const ReadOutcome& outcome, std::uint64_t firstSector, std::uint32_t firstSlot,
                    std::uint32_t records);

    /// A slot of the batch holds a record, whatever the scan makes of it.
    void Accept();
    /// A slot of the batch holds no record that passes its check.
    void Reject(ConstBytes record, std::uint32_t slot);
    /// A record of the batch has been taken or left by DecodeFileRecord: its list may be a loss.
    static void NoteList();

    /// All slots from one on could not be had: they lie behind the medium's end, or a fatal error came first.
    void LeaveBehindEnd(std::uint32_t slot, std::uint64_t slots) const;
    void LeaveUnread(std::uint32_t slot) const;
    /// Slots from one on begin in front of the medium.
    void LeaveInFront(std::uint32_t slot, std::uint64_t slots) const;

    /// The walk has come to its end: now it is known how much it has met.
    void Finish() const;

private:
    [[nodiscard]] std::uint64_t SlotsFrom(std::uint64_t slot) const;
    [[nodiscard]] bool IsUnread(std::uint32_t slot) const;
    bool IsDamaged(ConstBytes record, std::uint64_t number);

    std::uint64_t known_ = 0; ///< slots that hold records, as far as there is a place for them
    bool counts_ = true;      ///< the slots of the row are places of records
    std::uint64_t ahead_ = 0; ///< number of a record of the row less its slot, modulo 2^64
    bool foundRecords_ = false;
    std::uint32_t batchFirst_ = 0;
    std::optional<SlotBitmap> bitmap_;  ///< read for the first slot of zeros
    std::uint64_t endSlot_ = 0;         ///< first slot behind the end of the medium
    std::vector<std::uint32_t> unread_; ///< slots of the batch in unreadable sectors, in order
};

} // namespace thntfs
