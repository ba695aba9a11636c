#pragma once

#include "platform/media/LentDisk.h"

#include <string>

namespace thntfs {

// Where a disk, and not a file, was refused to this user the host is asked for it. Anything else stays as it
// is.

/// `opened` is what opening the path for reading has given.
MediumResult AskIfRefused(MediumResult opened, const std::string& path);

/// Asks for the disk at a path if `refusal`, which opening it has given, is one of rights. What it was
/// answered stands in the log.
DiskAnswer AskIfRefused(ErrorCode refusal, const std::string& path, DiskUse use);

/// What a user can do whom such a code was given, in a sentence or two; empty for other codes.
std::string RightsAdvice(ErrorCode code);

} // namespace thntfs
