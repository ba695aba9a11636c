#include "disktools/CopyLedger.h"

#include "disktools/CopyMapFile.h"
#include "engine/SectorReader.h"
#include "platform/files/File.h"
#include "platform/system/Terminal.h"

#include <algorithm>
#include <utility>

namespace thntfs {

namespace {

constexpr double kRestPerSave = 19; // one part of the time to the map, the others to the copy

} // namespace

CopyLedger::CopyLedger(CopyMap map)
    : map_(std::move(map)) {}

CopyLedger::CopyLedger(CopyMap map, std::string mapPath, std::string comment, double seconds)
    : map_(std::move(map))
    , mapPath_(std::move(mapPath))
    , comment_(std::move(comment))
    , seconds_(seconds)
    , nextSave_(SecondsNow() + seconds) {}

ErrorCode CopyLedger::Begin(const CopyPlace& place) { return WriteMap(place); }

void CopyLedger::Pass(File& target, const CopyPlace& place) {
    const double start = SecondsNow();
    if (mapPath_.empty() || start < nextSave_) {
        return;
    }
    Close(target, place);
    const double end = SecondsNow();
    nextSave_ = end + (seconds_ == 0 ? 0 : std::max(seconds_, (end - start) * kRestPerSave));
}

void CopyLedger::Close(File& target, const CopyPlace& place) {
    if (targetLost_) {
        return;
    }
    // After a failure the system may forget what it could not write, and report success the next time.
    const ErrorCode error = target.Sync();
    if (error != kErrorNone) {
        targetLost_ = true;
        RaiseFatal(error);
    }
    (void)WriteMap(place);
}

ErrorCode CopyLedger::WriteMap(const CopyPlace& place) {
    mapFailure_ = mapPath_.empty() ? kErrorNone : SaveMap(mapPath_, map_, place, comment_);
    return mapFailure_;
}

} // namespace thntfs
