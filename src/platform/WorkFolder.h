#pragma once

#include "platform/ErrorCodes.h"

#include <string>

namespace thntfs {

/// A temporary folder of this run's own, which no other user can look into. The destructor removes it with
/// all that is in it.
class WorkFolder {
public:
    WorkFolder() = default;
    ~WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    /// Makes the folder, under $TMPDIR or else /tmp. To be called once.
    ErrorCode Create();

    /// Absolute path without a closing slash, empty as long as there is no folder.
    [[nodiscard]] const std::string& Path() const { return path_; }

private:
    std::string path_;
};

/// The folder that stays from run to run, in which the desktop program keeps its catalogue: $TMPDIR, or a
/// folder below /tmp that no other user can look into. Made where it isn't there. Fails where the folder
/// can't be made, or belongs to somebody else.
ErrorCode LastingWorkFolder(std::string& path);

} // namespace thntfs
