#pragma once

#include <cstdint>

namespace thntfs {

struct LentDisk;
class FileDescriptor;

enum class DiskRoad : std::uint8_t { ByCache, PastCache };

/// A lent disk for one read, without the other processes that have it. All of them share the open disk, and
/// with it whether reads go by the page cache: a read by the cache would fail while another takes the road
/// past it, and one past it would take a bad sector's neighbours for bad.
class DiskTurn {
public:
    /// Waits until the others have read, one read each.
    DiskTurn(const LentDisk& disk, DiskRoad road);
    ~DiskTurn();
    DiskTurn(const DiskTurn&) = delete;
    DiskTurn& operator=(const DiskTurn&) = delete;

    /// False where the disk has no such road.
    [[nodiscard]] bool Stands() const { return stands_; }

private:
    const LentDisk& disk_;
    bool stands_;
};

/// What the processes that read a disk are to lock; not open where the system has no room, errno tells.
FileDescriptor NewTurns();

} // namespace thntfs
