#pragma once

#include "scans/AddedRecords.h"
#include "scans/TablePlaces.h"

#include <cstdint>
#include <vector>

namespace thntfs {

class TableLosses;
struct ReadOutcome;
struct SectorRange;

/// Reads the records of the table, along its exact map, that the walk of a scan has not met.
class TableRemainder {
public:
    /// All belong to the caller. Without `losses` nothing is counted.
    TableRemainder(const TriedSlots& tried, AddedRecords& added, TableLosses* losses);

    /// False where a stop has ended it. Passes CUserException on.
    bool Run();

private:
    void TakeRow(std::uint64_t sector, std::uint64_t records);
    void TakeBatch(std::uint64_t sector, std::uint32_t records);
    void TakeSplit(const std::vector<SectorRange>& parts);
    void TakeRecord(Bytes record, const RecordPlace& place);
    void BeginAccount(const ReadOutcome& outcome, std::uint64_t sector, std::uint32_t records);
    void LeaveBehindEnd(std::uint64_t records);
    void LeaveInFront(std::uint64_t records);
    void ReportProgress() const;

    const TriedSlots& tried_;
    AddedRecords& added_;
    TableLosses* losses_;
    std::uint64_t number_ = 0; ///< of the record in hand
    bool stopped_ = false;
    std::uint32_t batchRecords_;
    std::vector<std::uint8_t> batch_;
};

} // namespace thntfs
