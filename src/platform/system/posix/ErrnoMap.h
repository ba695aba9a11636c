#pragma once

#include "platform/system/ErrorCodes.h"

namespace thntfs {

/// Code of an errno value that opening or reading a medium gave. The engine goes on after 23 and 1117 and
/// ends the job after any other, so only what concerns single sectors or may pass maps to those two. Never 0.
ErrorCode MediumErrorOfErrno(int number);

/// Code of an errno value that work on an ordinary file or folder gave. Never 0.
ErrorCode FileErrorOfErrno(int number);

} // namespace thntfs
