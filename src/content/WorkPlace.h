#pragma once

#include "platform/files/WorkFolder.h"
#include "platform/system/ErrorCodes.h"

#include <string>

namespace thntfs {

/// How the making of a work folder ended.
struct WorkPlace {
    ErrorCode Code = kErrorNone;
    std::string Told; ///< what the user should know, in full sentences: why there is none, or why elsewhere
};

/// Makes a run's own work folder, or takes the user's lasting one, where that is not on the medium under
/// recovery. `medium` is its path.
WorkPlace MakeWorkFolder(WorkFolder& folder, const std::string& medium);
WorkPlace TakeLastingWorkFolder(WorkFolder& folder, const std::string& medium);

} // namespace thntfs
