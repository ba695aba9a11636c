#pragma once

#include "platform/system/ErrorCodes.h"

namespace thntfs {

/// True where SyncAsWhole vouches for every file written below an open folder: a file system over a local
/// device, on a kernel whose syncfs tells of writes that failed. False where somebody else keeps what was
/// written (a network, most file systems in user space), who has to be asked for each file.
bool SyncsAsWhole(int folder);

/// Waits until all that was written to an open folder's file system is on the device. Fails where a write
/// failed since the last call on this descriptor, or since it was opened.
ErrorCode SyncAsWhole(int folder);

} // namespace thntfs
