#include "platform/files/File.h"
#include "platform/files/posix/FileDescriptor.h"
#include "platform/files/posix/PosixFile.h"
#include "platform/media/LentDisk.h"
#include "platform/media/TargetDisk.h"
#include "platform/media/posix/LentDescriptor.h"
#include "platform/system/posix/ErrnoMap.h"

#include <cerrno>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace thntfs {

namespace {

/// The kind of thing under a path, 0 where there is none (errno tells why).
mode_t FileKindOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & S_IFMT : 0;
}

bool IsOfKind(const FileDescriptor& descriptor, mode_t kind) {
    struct stat status {};
    return ::fstat(descriptor.Get(), &status) == 0 && (status.st_mode & S_IFMT) == kind;
}

} // namespace

ErrorCode OpenTargetDisk(const std::string& path, std::unique_ptr<File>& file) {
    file.reset();
    const mode_t kind = FileKindOf(path);
    if (kind == 0) {
        return FileErrorOfErrno(errno);
    }
    if (kind != S_IFBLK && kind != S_IFREG) {
        return kind == S_IFDIR ? kErrorDirectory : kErrorInvalidParameter;
    }
    // On a block device O_EXCL makes the kernel refuse where a file system, a mapped device or a swap uses
    // it.
    const int alone = kind == S_IFBLK ? O_EXCL : 0;
    FileDescriptor descriptor = OpenDescriptor(path.c_str(), O_RDWR | O_NOCTTY | alone);
    if (!descriptor.IsOpen()) {
        return FileErrorOfErrno(errno);
    }
    if (!IsOfKind(descriptor, kind)) {
        return kErrorInvalidParameter;
    }
    file = MakePosixFile(std::move(descriptor));
    return Files().Admit(file);
}

ErrorCode OpenTargetDiskOn(FileDescriptor disk, const std::string& path, std::unique_ptr<File>& file) {
    file.reset();
    if (!IsDiskAt(disk.Get(), path, O_RDWR)) {
        return kErrorInvalidHandle;
    }
    file = MakePosixFile(std::move(disk));
    return Files().Admit(file);
}

// What watches for changed disks may have this one open for a moment.
ErrorCode RereadPartitions(const std::string& path) {
    constexpr int kTries = 10;
    constexpr useconds_t kRestMicroseconds = 100000;
    if (FileKindOf(path) != S_IFBLK) {
        return kErrorNone;
    }
    const FileDescriptor descriptor = OpenDescriptor(path.c_str(), O_RDONLY | O_NOCTTY);
    int error = descriptor.IsOpen() ? EBUSY : errno;
    for (int tries = 0; tries < kTries && error == EBUSY; ++tries) {
        error = ::ioctl(descriptor.Get(), BLKRRPART) == 0 ? 0 : errno;
        if (error == EBUSY) {
            ::usleep(kRestMicroseconds);
        }
    }
    return error == 0 ? kErrorNone : FileErrorOfErrno(error);
}

} // namespace thntfs
