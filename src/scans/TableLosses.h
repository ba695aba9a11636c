#pragma once

#include "platform/system/Bytes.h"

#include <cstdint>
#include <vector>

namespace thntfs {

struct ReadOutcome;

/// Keeps account, in EngineState::Losses, of the records that a walk over the Master File Table should have
/// met and could not have. Slots are counted from 0 over all extents. What lies behind the part of the table
/// that holds records, as the table's own record says, was never written and is no loss.
class TableLosses {
public:
    /// Counts what the extents lack.
    TableLosses();

    /// A batch of `records` slots has been read from an absolute sector.
    void BeginBatch(const ReadOutcome& outcome, std::uint64_t firstSector, std::uint32_t firstSlot,
                    std::uint32_t records);

    /// A slot of the batch holds a record, whatever the scan makes of it.
    void Accept() { foundRecords_ = true; }
    /// A slot of the batch holds no record that passes its check.
    void Reject(ConstBytes record, std::uint32_t slot);
    /// A record of the batch has been taken or left by DecodeFileRecord: its list may be a loss.
    static void NoteList();

    /// All slots from one on could not be had: they lie behind the medium's end, or a fatal error came first.
    void LeaveBehindEnd(std::uint32_t slot, std::uint32_t slots) const;
    void LeaveUnread(std::uint32_t slot) const;

    /// The walk has come to its end.
    void Finish() const;

private:
    [[nodiscard]] std::uint64_t SlotsFrom(std::uint64_t slot) const;
    [[nodiscard]] bool IsUnread(std::uint32_t slot) const;
    [[nodiscard]] bool IsDamaged(ConstBytes record) const;

    std::uint64_t held_ = 0;  ///< slots of the extents
    std::uint64_t known_ = 0; ///< of these, slots that hold records
    bool foundRecords_ = false;
    std::uint32_t batchFirst_ = 0;
    std::uint64_t endSlot_ = 0;         ///< first slot behind the end of the medium
    std::vector<std::uint32_t> unread_; ///< slots of the batch in unreadable sectors, in order
};

} // namespace thntfs
