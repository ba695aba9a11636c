#pragma once

namespace thntfs {

/// Exit status of the terminal program. Part of its contract.
enum ExitCode : int {
    kExitDone = 0,
    kExitFailed = 1,
    kExitWrongWords = 2,
    kExitDoneInPart = 3 ///< stopped, or some entries could not be saved; each has been named
};

} // namespace thntfs
