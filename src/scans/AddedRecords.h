#pragma once

#include "platform/system/Bytes.h"
#include "scans/DeletedFiles.h"
#include "scans/ScanReach.h"

#include <cstdint>
#include <vector>

namespace thntfs {

class ConditionAccount;
struct DecodedEntry;

/// Where a record stands. One that is split lies in several places of the table and is found by its number.
struct RecordPlace {
    std::uint64_t Sector = 0; ///< absolute sector in which it begins
    std::uint32_t Number = 0; ///< its own, or where it has none, that of its place
    bool Split = false;
};

/// The records that follow behind those of a scan's own walk: found beyond it, or left out by its decoding.
class AddedRecords {
public:
    /// `nextEntryId` and the account of clusters are the walk's, which goes on here.
    AddedRecords(const ScanReach& reach, ConditionAccount& conditions, std::uint32_t& nextEntryId)
        : reach_(reach)
        , conditions_(conditions)
        , nextEntryId_(nextEntryId) {}

    /// A checked base record that the walk's decoding has left out. It waits for Finish.
    void NoteLeftOut(ConstBytes record, const RecordPlace& place, const Claim& claim);

    /// A checked record that the walk has not met is decoded and catalogued, but for extension records; one
    /// without a usable name waits for Finish. Gives its number. Passes CUserException on.
    std::uint32_t Take(ConstBytes record, const RecordPlace& place);

    /// Catalogues those that wait, as far as the reach goes; others have been counted in Yield. False where a
    /// stop has ended it. Passes CUserException on.
    bool Finish();

private:
    struct Waiting {
        RecordPlace Place;
        thntfs::Claim Claim;
    };

    std::uint32_t TakeBase(ConstBytes record, const Waiting& waiting);
    void TakeNameless(ConstBytes record, const Waiting& waiting);
    void Enter(DecodedEntry& entry, ConstBytes record, const Claim& claim);
    void WaitOrCount(const Waiting& waiting);
    template <typename Visit>
    static bool ReadAgain(const std::vector<Waiting>& list, Visit visit);

    ScanReach reach_;
    ConditionAccount& conditions_;
    std::uint32_t& nextEntryId_;
    std::vector<Waiting> again_;    ///< to be decoded exactly: a name may come out
    std::vector<Waiting> nameless_; ///< to be listed
};

/// Reads and checks the record at a place. False where none stands there. Passes CUserException on.
bool ReadRecordAt(const RecordPlace& place, Bytes record);

} // namespace thntfs
