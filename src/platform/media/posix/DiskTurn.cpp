#include "platform/media/posix/DiskTurn.h"

#include "platform/media/LentDisk.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>

namespace thntfs {

namespace {

// The lock of a process that is killed is gone with it.
void SetLock(const LentDisk& disk, short kind) {
    struct flock whole {};
    whole.l_type = kind;
    whole.l_whence = SEEK_SET;
    while (::fcntl(disk.Turns.Get(), F_SETLKW, &whole) != 0 && errno == EINTR) {
    }
}

bool Take(const LentDisk& disk, DiskRoad road) {
    const int flags = ::fcntl(disk.Disk.Get(), F_GETFL);
    const int wanted = road == DiskRoad::PastCache ? flags | O_DIRECT : flags & ~O_DIRECT;
    return flags >= 0 && (wanted == flags || ::fcntl(disk.Disk.Get(), F_SETFL, wanted) == 0);
}

} // namespace

// One that was killed may have left the disk on the other road.
DiskTurn::DiskTurn(const LentDisk& disk, DiskRoad road)
    : disk_(disk) {
    SetLock(disk_, F_WRLCK);
    stands_ = Take(disk_, road);
}

DiskTurn::~DiskTurn() {
    Take(disk_, DiskRoad::ByCache); // which whoever writes to the same open disk takes for granted
    SetLock(disk_, F_UNLCK);
}

FileDescriptor NewTurns() { return FileDescriptor(::memfd_create("th-ntfs-turns", MFD_CLOEXEC)); }

} // namespace thntfs
