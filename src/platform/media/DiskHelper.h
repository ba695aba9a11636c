#pragma once

#include "platform/media/LentDisk.h"

#include <string>

namespace thntfs {

// The road of a program without the toolkit to the system's disk service: a helper program, which ships with
// the desktop program, talks to the service and hands the open disk over through a socket.

/// The helper's name.
inline constexpr const char* kDiskHelper = "th-ntfs-open-disk";

/// Starts the helper, which stands beside this program or where the desktop program's package puts it, and
/// waits until the user has answered. Where standard input is a terminal, the question comes there. An
/// interrupt ends the wait with kErrorCancelled; without a helper the answer is kErrorAccessDenied.
DiskAnswer AskDiskHelper(const std::string& devicePath, DiskUse use);

// The helper's end of the socket.

/// Waits until whoever has started this program wants the service to be asked. False where there is nobody.
bool AwaitDiskRequest();

/// False once whoever has started this program doesn't wait any more.
bool IsDiskAwaited();

/// Hands an answer over; false where that failed.
bool HandOverDisk(const DiskAnswer& answer);

/// First word of the helper's command line, the disk's path being the second.
const char* WordOf(DiskUse use);

} // namespace thntfs
