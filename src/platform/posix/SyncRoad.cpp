#include "platform/posix/SyncRoad.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <sys/utsname.h>
#include <sys/vfs.h>

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

// syncfs tells of failed writes since 5.8.
bool KernelTells() {
    utsname system{};
    unsigned major = 0;
    unsigned minor = 0;
    return ::uname(&system) == 0 && std::sscanf(system.release, "%u.%u", &major, &minor) == 2 &&
           (major > 5 || (major == 5 && minor >= 8));
}

} // namespace

bool SyncsAsWhole(int folder) {
    struct statfs system {};
    if (::fstatfs(folder, &system) != 0) {
        return false;
    }
    const auto kind = static_cast<std::uint32_t>(system.f_type);
    return std::find(kLocalFileSystems.begin(), kLocalFileSystems.end(), kind) != kLocalFileSystems.end() &&
           KernelTells();
}

} // namespace thntfs
