#include "platform/files/posix/SyncRoad.h"

#include "platform/system/posix/ErrnoMap.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/utsname.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace thntfs {

namespace {

// Numbers of <linux/magic.h>, some of which older headers lack.
constexpr std::array<std::uint32_t, 9> kLocalFileSystems = {
    0xEF53,     // ext2, ext3, ext4
    0x58465342, // xfs
    0x9123683E, // btrfs
    0xF2F52010, // f2fs
    0x4D44,     // vfat
    0x2011BAB0, // exfat
    0x7366746E, // ntfs3
    0x01021994, // tmpfs
    0x858458F6, // ramfs
};

constexpr std::uint32_t kUserSpace = 0x65735546;

// syncfs tells of failed writes since 5.8.
bool KernelTells() {
    utsname system{};
    unsigned release = 0;
    unsigned minor = 0;
    return ::uname(&system) == 0 && std::sscanf(system.release, "%u.%u", &release, &minor) == 2 &&
           (release > 5 || (release == 5 && minor >= 8));
}

// A file system in user space over a block device (NTFS, exFAT and their like) writes what it is given to
// that device at once, and to sync any part of it syncs the device.
bool IsLocal(const struct statfs& system, const struct stat& folder) {
    const auto kind = static_cast<std::uint32_t>(system.f_type);
    return kind == kUserSpace ? major(folder.st_dev) != 0
                              : std::find(kLocalFileSystems.begin(), kLocalFileSystems.end(), kind) !=
                                    kLocalFileSystems.end();
}

} // namespace

bool SyncsAsWhole(int folder) {
    struct statfs system {};
    struct stat status {};
    return ::fstatfs(folder, &system) == 0 && ::fstat(folder, &status) == 0 && IsLocal(system, status) &&
           KernelTells();
}

ErrorCode SyncAsWhole(int folder) {
    // Tells of all that failed since the descriptor was opened, and of each failure once.
    const bool done = ::syncfs(folder) == 0 && (::fsync(folder) == 0 || errno == EINVAL);
    return done ? kErrorNone : FileErrorOfErrno(errno);
}

} // namespace thntfs
