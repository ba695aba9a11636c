#pragma once

#include "disktools/CopyMapText.h"
#include "platform/system/ErrorCodes.h"

#include <string>
#include <utility>

namespace thntfs {

class File;

/// The account of one copy and, where it has a map file, the keeping of that. The file never says of a byte
/// that it is in the target before it has reached the target's device.
class CopyLedger {
public:
    /// An account in memory alone.
    explicit CopyLedger(CopyMap map);

    /// With a map file, written anew about every `seconds` and never so often that a twentieth of the time
    /// goes into it. `comment` stands in its head.
    CopyLedger(CopyMap map, std::string mapPath, std::string comment, double seconds = 5);

    /// From now on the target must stand at this path whenever the map file is written: beside it, that is.
    void WatchTarget(std::string path) { targetPath_ = std::move(path); }

    [[nodiscard]] const CopyMap& Map() const { return map_; }

    /// Notes what has been handed to the target, in bytes.
    void Mark(std::uint64_t first, std::uint64_t size, AreaState state) { map_.Mark(first, size, state); }

    /// Writes the map file without looking at the target: before a copy, which has given it nothing yet.
    /// Gives the failure.
    ErrorCode Begin(const CopyPlace& place);

    /// To be called now and then: brings the map file up to date if it is time. Throws CUserException, after
    /// a box, where the target's device did not take what was written, and where the target doesn't stand at
    /// its path any more.
    void Pass(File& target, const CopyPlace& place);

    /// Brings target and map file up to date at the end of a copy. Throws as Pass does.
    void Close(File& target, const CopyPlace& place);

    /// A fatal failure of the source or the target has ended the copy.
    void NoteFailure(ErrorCode code) { failure_ = code; }
    [[nodiscard]] ErrorCode Failure() const { return failure_; }

    /// How the last writing of the map file ended. It may fail without harm to the copy: the file then tells
    /// less than is there.
    [[nodiscard]] ErrorCode MapFailure() const { return mapFailure_; }

private:
    void CheckTarget(File& target);
    ErrorCode WriteMap(const CopyPlace& place);

    CopyMap map_;
    std::string targetPath_; ///< empty where it isn't watched
    std::string mapPath_;
    std::string comment_;
    double seconds_ = 0;
    double nextSave_ = 0;
    ErrorCode failure_ = kErrorNone;
    ErrorCode mapFailure_ = kErrorNone;
    bool targetLost_ = false; ///< what the target holds is not known any more
};

} // namespace thntfs
