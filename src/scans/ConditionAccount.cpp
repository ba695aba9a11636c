#include "scans/ConditionAccount.h"

#include "catalogue/Conditions.h"
#include "engine/FileRecord.h"
#include "scans/FileRuns.h"

#include <algorithm>
#include <new>

namespace thntfs {

ConditionAccount::ConditionAccount()
    : space_(ClaimSpaceOfVolume())
    , live_(space_.Clusters)
    , deleted_(space_) {}

Claim ConditionAccount::Take(ConstBytes record, std::uint64_t sector) try {
    if (space_.SectorsPerCluster == 0) {
        return {};
    }
    return IsInUse(record) && table_.Holds(record, sector) ? TakeLive(record) : deleted_.Take(record);
} catch (const std::bad_alloc&) {
    deleted_.GiveUp();
    return {kNoFile, kUnknown};
}

// A live file is whole but for what lies behind the end of the volume or the medium.
Claim ConditionAccount::TakeLive(ConstBytes record) {
    std::uint64_t clusters = 0;
    std::uint64_t lost = 0;
    for (AttributeWalk walk(record); walk.Valid() && walk.Current().Type() != kTypeEnd; walk.Next()) {
        const Attribute attribute = walk.Current();
        if (attribute.NonResident() == 0) {
            continue;
        }
        const std::uint64_t outside = ClaimRuns(record, attribute);
        if (outside != 0 && HoldsFileData(record, attribute)) {
            lost += outside;
            clusters += attribute.LastCluster() + 1 - attribute.FirstCluster();
        }
    }
    if (lost == 0 || BaseReference(record) != 0) {
        return {};
    }
    return {kNoFile, ConditionByte(clusters - std::min(lost, clusters), clusters)};
}

// Gives how many of the clusters lie behind the end.
std::uint64_t ConditionAccount::ClaimRuns(ConstBytes record, const Attribute& attribute) {
    std::uint64_t outside = 0;
    RunListCursor cursor = CursorOf(record, attribute);
    for (MapRun run; cursor.Next(run);) {
        if (!run.Hole) {
            live_.Add(run.Lcn, run.Clusters);
            const std::uint64_t end = run.Lcn + run.Clusters;
            outside += end - std::min(end, std::max(run.Lcn, space_.Clusters));
        }
    }
    return outside;
}

void ConditionAccount::Enter(const Claim& claim, std::uint32_t entryId) {
    if (claim.Condition != kNotJudged) {
        SetCondition(entryId, claim.Condition);
    } else if (claim.File != kNoFile) {
        SetCondition(entryId, kUnknown); // until all is known
        deleted_.SetEntry(claim.File, entryId);
    }
}

} // namespace thntfs
