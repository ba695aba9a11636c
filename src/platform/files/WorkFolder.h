#pragma once

#include "platform/system/ErrorCodes.h"

#include <functional>
#include <memory>
#include <string>

namespace thntfs {

/// Says whether a temporary folder may be made at a path. It is asked before anything is.
using PlaceRule = std::function<bool(const std::string& path)>;

/// A temporary folder of this user's own, which no other user can look into: `th-ntfs-` with the user's
/// number in $TMPDIR, or else in /tmp, or in it a folder of this run's own. A place that the rule forbids, or
/// in which anybody may put a folder of his in the place of ours, is passed over for the next one: /tmp,
/// /var/tmp, $XDG_RUNTIME_DIR, /dev/shm. Where there is no $TMPDIR, one that fails is passed over too.
class WorkFolder {
public:
    WorkFolder();
    ~WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    /// Makes a folder of this run's own, which the destructor removes with all that is in it. What runs that
    /// live no longer have left in the same place goes first.
    ErrorCode Create(const PlaceRule& mayLieAt = {});

    /// Takes, or makes, the user's folder itself, which stays. Where somebody else has put something under
    /// its name it is a folder of this run's own.
    ErrorCode CreateLasting(const PlaceRule& mayLieAt = {});

    /// Absolute path without a closing slash, empty as long as there is no folder.
    [[nodiscard]] const std::string& Path() const { return path_; }

    /// The first place that was passed over because of the rule, or because anybody may change what is in it;
    /// else empty.
    [[nodiscard]] const std::string& Passed() const { return passed_; }

private:
    class Life;

    ErrorCode TryPlaces(const PlaceRule& mayLieAt, bool lasting);
    ErrorCode TryPlace(const std::string& place, bool lasting);
    ErrorCode MakeRunFolder(const std::string& parent, const std::string& prefix);

    std::string path_;
    std::string passed_;
    std::unique_ptr<Life> life_; ///< of a folder that goes with the run
};

} // namespace thntfs
