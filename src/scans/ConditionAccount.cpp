#include "scans/ConditionAccount.h"

#include "catalogue/Conditions.h"
#include "engine/RunListCursor.h"
#include "scans/FileRuns.h"

#include <algorithm>
#include <new>

namespace thntfs {

namespace {

// An AttributeWalk over what most records have little of, at a third of its cost: each record of a scan goes
// through here.
template <typename Visit>
void VisitNonResident(ConstBytes record, std::uint64_t at, Visit visit) {
    constexpr std::uint64_t kLengthEnd = 8;
    const std::uint64_t limit = std::min<std::uint64_t>(BytesInUse(record), record.size());
    while (at + kLengthEnd < limit) {
        const std::uint64_t typeAndLength = U64At(record, at);
        if (static_cast<std::uint32_t>(typeAndLength) == kTypeEnd || typeAndLength >> 32U == 0) {
            return;
        }
        if (record[at + kLengthEnd] != 0) {
            visit(Attribute(record, at));
        }
        at += typeAndLength >> 32U;
    }
}

// Puts the runs of an attribute into a set; gives how many of their clusters lie behind its end.
std::uint64_t ClaimRuns(ClusterSet& live, std::uint64_t end, ConstBytes record, const Attribute& attribute) {
    std::uint64_t outside = 0;
    RunListCursor cursor(record, attribute);
    for (MapRun run; cursor.Next(run);) {
        if (!run.Hole) {
            live.Add(run.Lcn, run.Clusters);
            outside += run.Lcn + run.Clusters - std::min(run.Lcn + run.Clusters, std::max(run.Lcn, end));
        }
    }
    return outside;
}

} // namespace

ConditionAccount::ConditionAccount(bool judges)
    : space_(judges ? ClaimSpaceOfVolume() : ClaimSpace())
    , overlaid_(OverlaidClusters(space_))
    , live_(space_.Clusters)
    , deleted_(space_) {}

Claim ConditionAccount::Take(ConstBytes record, std::uint64_t sector, std::uint64_t firstNonResident) try {
    if (space_.SectorsPerCluster == 0) {
        return {};
    }
    return overlaid_ == nullptr && IsInUse(record) && table_.Holds(record, sector)
               ? TakeLive(record, firstNonResident)
               : deleted_.Take(record);
} catch (const std::bad_alloc&) {
    deleted_.GiveUp();
    return {kNoFile, kUnknown};
}

// A live file is whole but for what lies behind the end of the volume or the medium.
Claim ConditionAccount::TakeLive(ConstBytes record, std::uint64_t firstNonResident) {
    std::uint64_t clusters = 0;
    std::uint64_t lost = 0;
    VisitNonResident(record, firstNonResident, [&](const Attribute& attribute) {
        const std::uint64_t outside = ClaimRuns(live_, space_.Clusters, record, attribute);
        if (outside != 0 && HoldsFileData(record, attribute)) {
            lost += outside;
            clusters += attribute.LastCluster() + 1 - attribute.FirstCluster();
        }
    });
    if (lost == 0 || BaseReference(record) != 0) {
        return {};
    }
    return {kNoFile, ConditionByte(clusters - std::min(lost, clusters), clusters)};
}

void ConditionAccount::Judge() {
    overlaid_ != nullptr ? deleted_.Judge(*overlaid_, UsedBy::Set)
                         : deleted_.Judge(live_, UsedBy::SetAndBitmap);
}

void ConditionAccount::Enter(const Claim& claim, std::uint32_t entryId) {
    if (claim.Condition != kNotJudged) {
        SetCondition(entryId, claim.Condition);
    } else if (claim.File != kNoFile) {
        deleted_.SetEntry(claim.File, entryId);
    }
}

} // namespace thntfs
