#include "platform/media/LentDisk.h"
#include "platform/media/posix/LentDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace thntfs {

bool IsBlockDevice(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISBLK(status.st_mode);
}

bool IsDiskAt(int descriptor, const std::string& path, int accessMode) {
    struct stat opened {};
    struct stat named {};
    const int flags = ::fcntl(descriptor, F_GETFL);
    if (flags < 0 || ::fstat(descriptor, &opened) != 0 || ::stat(path.c_str(), &named) != 0) {
        return false;
    }
    const int mode = flags & O_ACCMODE;
    return S_ISBLK(opened.st_mode) && S_ISBLK(named.st_mode) && opened.st_rdev == named.st_rdev &&
           (mode == O_RDWR || mode == accessMode);
}

// Who writes a disk over wants it for himself, as OpenTargetDisk does.
int OpenFlagsOf(DiskUse use) { return use == DiskUse::WritingOver ? O_CLOEXEC | O_EXCL : O_CLOEXEC; }

} // namespace thntfs
