#include "platform/files/posix/LifeLock.h"

#include <cerrno>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace thntfs {

namespace {

/// True where the path still names what is open.
bool StillNames(const FileDescriptor& open, const std::string& path, int folder) {
    struct stat opened {};
    struct stat named {};
    return ::fstat(open.Get(), &opened) == 0 &&
           ::fstatat(folder, path.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

bool IsOurs(const FileDescriptor& open) {
    struct stat status {};
    return ::fstat(open.Get(), &status) == 0 && status.st_uid == ::geteuid();
}

} // namespace

bool LockForLife(const FileDescriptor& open, const std::string& path, int folder) {
    const bool taken = ::flock(open.Get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    return !taken && StillNames(open, path, folder);
}

bool IsLeftBehind(const FileDescriptor& open, const std::string& path, int folder) {
    return open.IsOpen() && IsOurs(open) && ::flock(open.Get(), LOCK_EX | LOCK_NB) == 0 &&
           StillNames(open, path, folder);
}

} // namespace thntfs
