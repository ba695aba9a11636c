#pragma once

namespace thntfs {

/// Exit status of the terminal program. Part of its contract.
enum ExitCode : int {
    kExitDone = 0,
    kExitFailed = 1,
    kExitWrongWords = 2,
    kExitDoneInPart = 3 ///< stopped, or some entries could not be saved; each has been named
};

/// Takes steps that give exit codes, in their order, up to the first that isn't done; gives its code.
template <typename... Steps>
int RunSteps(Steps... steps) {
    int code = kExitDone;
    static_cast<void>(((code = steps(), code == kExitDone) && ...));
    return code;
}

} // namespace thntfs
