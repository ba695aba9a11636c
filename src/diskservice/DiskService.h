#pragma once

#include "platform/media/LentDisk.h"

#include <functional>
#include <string>

namespace thntfs {

// The system's disk service, UDisks2 on the system bus. It opens a disk for a user who may not, once the
// system's rules or the user's consent, often with a password, allow it.

/// Asks it to open a disk and waits for the answer, which takes as long as the user does. `mayGoOn` is called
/// all the time meanwhile; once it says no, the answer is kErrorCancelled. On any thread.
DiskAnswer OpenByDiskService(const std::string& devicePath, DiskUse use,
                             const std::function<bool()>& mayGoOn);

/// Whether there is one that could be asked.
bool DiskServiceStands();

} // namespace thntfs
