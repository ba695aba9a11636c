#include "platform/media/LentDisk.h"
#include "platform/media/posix/LentDescriptor.h"

#include <charconv>
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

void KeepForProgram(const LentDisk& disk) {
    ::fcntl(disk.Disk.Get(), F_SETFD, 0);
    ::fcntl(disk.Turns.Get(), F_SETFD, 0);
}

std::string WordForLent(const LentDisk& disk) {
    return std::to_string(disk.Disk.Get()) + "," + std::to_string(disk.Turns.Get());
}

// No program that this one starts is to have them.
LentDisk LentDiskOf(const std::string& word) {
    int disk = -1;
    int turns = -1;
    const char* end = word.data() + word.size();
    const char* comma = std::from_chars(word.data(), end, disk).ptr;
    if (comma == end || *comma != ',' || std::from_chars(comma + 1, end, turns).ptr != end ||
        ::fcntl(disk, F_SETFD, FD_CLOEXEC) != 0 || ::fcntl(turns, F_SETFD, FD_CLOEXEC) != 0) {
        return {};
    }
    return {FileDescriptor(disk), FileDescriptor(turns)};
}

// Who writes a disk over wants it for himself, as OpenTargetDisk does.
int OpenFlagsOf(DiskUse use) { return use == DiskUse::WritingOver ? O_CLOEXEC | O_EXCL : O_CLOEXEC; }

} // namespace thntfs
