#pragma once

#include "engine/FileRecord.h"
#include "scans/ClusterSet.h"
#include "scans/DeletedFiles.h"
#include "scans/OverlaidClusters.h"
#include "scans/PresentTable.h"

#include <cstdint>

namespace thntfs {

/// Keeps account, while a scan walks, of the clusters that its records claim, and judges at the end what is
/// still there of each file (catalogue/Conditions.h).
class ConditionAccount {
public:
    /// Judges nothing unless it is asked to.
    explicit ConditionAccount(bool judges);

    /// Each record that passes its check goes through here, extension records and those that aren't
    /// catalogued too, with the absolute sector in which it begins. One that comes twice changes nothing.
    /// `firstNonResident`: offset of its first such attribute, or in front of it.
    Claim Take(ConstBytes record, std::uint64_t sector, std::uint64_t firstNonResident);
    Claim Take(ConstBytes record, std::uint64_t sector) {
        return Take(record, sector, FirstAttributeOffset(record));
    }

    /// The record that gave a claim has been catalogued.
    void Enter(const Claim& claim, std::uint32_t entryId);

    /// All records have been taken. Passes CUserException on; what could not be judged then is unknown.
    void Judge();

private:
    Claim TakeLive(ConstBytes record, std::uint64_t firstNonResident);

    ClaimSpace space_;
    std::unique_ptr<ClusterSet> overlaid_; ///< then no file is live, and the volume's own bitmap is past
    PresentTable table_;
    ClusterSet live_;
    DeletedFiles deleted_;
};

} // namespace thntfs
