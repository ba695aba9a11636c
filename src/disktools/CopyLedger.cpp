#include "disktools/CopyLedger.h"

#include "disktools/CopyMapFile.h"
#include "engine/EngineState.h"
#include "engine/Host.h"
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
    CheckTarget(target);
    // After a failure the system may forget what it could not write, and report success the next time.
    const ErrorCode error = target.Sync();
    if (error != kErrorNone) {
        targetLost_ = true;
        RaiseFatal(error);
    }
    (void)WriteMap(place);
}

// An image goes on growing on a disk that was unmounted under it, where nobody can get at it, while its map
// would be written to what stands at the path now.
void CopyLedger::CheckTarget(File& target) {
    if (!targetPath_.empty() && !target.StandsAt(targetPath_)) {
        targetLost_ = true;
        Host().ErrorBox(targetPath_ + " isn't the file any more that is being written: its disk has been "
                                      "unmounted, or it has been moved or deleted. The copy ends here.");
        throw CUserException{kErrorFileInvalid};
    }
}

ErrorCode CopyLedger::WriteMap(const CopyPlace& place) {
    mapFailure_ = mapPath_.empty() ? kErrorNone : SaveMap(mapPath_, map_, place, comment_);
    return mapFailure_;
}

} // namespace thntfs
