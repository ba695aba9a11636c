#pragma once

#include "platform/files/posix/FileDescriptor.h"

#include <fcntl.h>
#include <string>

namespace thntfs {

// A file or folder that belongs to one run is locked as long as that lives. The lock goes with the process,
// however it ends, so who can take it knows that the thing has been left behind. A file system without locks
// gives none, and keeps what is left. A path is taken from an open folder, where one is given.

/// Locks a file or folder that has just been made. False where it is gone already, because somebody came
/// between who took away what is left: make another one.
bool LockForLife(const FileDescriptor& open, const std::string& path, int folder = AT_FDCWD);

/// True where a file or folder of this user was left behind; the caller may remove it as long as it is open.
bool IsLeftBehind(const FileDescriptor& open, const std::string& path, int folder = AT_FDCWD);

} // namespace thntfs
