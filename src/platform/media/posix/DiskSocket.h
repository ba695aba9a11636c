#pragma once

#include "platform/media/LentDisk.h"

namespace thntfs {

/// The descriptor that the helper finds its socket under.
inline constexpr int kHelperSocket = 3;

/// An answer as one message: its code, the words of its reason and, where there is one, the disk's
/// descriptor.
bool SendAnswer(int socket, const DiskAnswer& answer);

/// False where the other end is gone or has sent anything else.
bool ReceiveAnswer(int socket, DiskAnswer& answer);

} // namespace thntfs
