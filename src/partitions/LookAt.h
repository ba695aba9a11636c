#pragma once

#include "platform/system/Bytes.h"

#include <cstdint>

namespace thntfs {

/// One attempt at reading a place where something may stand, into a buffer that is cleared for the caller.
/// Leaves no line in the log, and the buffer is zeros where it fails: what can't be read isn't there. The
/// first such sector stays in Engine.UnreadLook. Never throws.
bool LookAt(Bytes buffer, std::uint64_t sector);

} // namespace thntfs
