#include "scans/ConditionAccount.h"

#include "catalogue/Conditions.h"
#include "engine/FileRecord.h"
#include "scans/FileRuns.h"

#include <algorithm>
#include <new>

namespace thntfs {

namespace {

// An AttributeWalk over what most records have little of, at a third of its cost: each record of a scan goes
// through here.
template <typename Visit>
void VisitNonResident(ConstBytes record, Visit visit) {
    constexpr std::uint64_t kLengthEnd = 8;
    const std::uint64_t limit = std::min<std::uint64_t>(BytesInUse(record), record.size());
    for (std::uint64_t at = FirstAttributeOffset(record); at + kLengthEnd < limit;) {
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

} // namespace

ConditionAccount::ConditionAccount(bool judges)
    : space_(judges ? ClaimSpaceOfVolume() : ClaimSpace())
    , overlaid_(OverlaidClusters(space_))
    , live_(space_.Clusters)
    , deleted_(space_) {}

Claim ConditionAccount::Take(ConstBytes record, std::uint64_t sector) try {
    if (space_.SectorsPerCluster == 0) {
        return {};
    }
    return overlaid_ == nullptr && IsInUse(record) && table_.Holds(record, sector) ? TakeLive(record)
                                                                                   : deleted_.Take(record);
} catch (const std::bad_alloc&) {
    deleted_.GiveUp();
    return {kNoFile, kUnknown};
}

// A live file is whole but for what lies behind the end of the volume or the medium.
Claim ConditionAccount::TakeLive(ConstBytes record) {
    std::uint64_t clusters = 0;
    std::uint64_t lost = 0;
    VisitNonResident(record, [&](const Attribute& attribute) {
        const std::uint64_t outside = ClaimRuns(record, attribute);
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

void ConditionAccount::Judge() {
    overlaid_ != nullptr ? deleted_.Judge(*overlaid_, UsedBy::Set)
                         : deleted_.Judge(live_, UsedBy::SetAndBitmap);
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
