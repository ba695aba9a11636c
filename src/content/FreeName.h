#pragma once

#include "content/ContentJob.h"
#include "content/TargetName.h"
#include "platform/system/ErrorCodes.h"

#include <string>
#include <unordered_map>

namespace thntfs {

/// The number to try next for each name of a folder that was taken. Kept, so that a thousand files of one
/// name don't try all the numbers before theirs.
using NextNumbers = std::unordered_map<std::string, unsigned>;

/// Calls `take` with a name, and while that is taken, with numbered ones, until it answers anything but
/// kErrorFileExists or the job is stopped. `name` is the one tried last.
template <typename Take>
ErrorCode TakeFreeName(NextNumbers& numbers, std::string& name, Take take) {
    const std::string plain = name;
    ErrorCode code = take(name);
    while (code == kErrorFileExists && !ContentStopped()) {
        unsigned& next = numbers.try_emplace(plain, 2U).first->second;
        name = NumberedName(plain, next++);
        code = take(name);
    }
    return code;
}

} // namespace thntfs
