#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace thntfs {

/// Number of a block device as the kernel packs it (dev_t).
using DeviceNumber = std::uint64_t;

/// What a path names, links followed.
struct FileIdentity {
    bool IsBlockDevice = false;
    DeviceNumber Device = 0;     ///< of a block device: its number
    DeviceNumber FileSystem = 0; ///< the device of the file system that the file lies on
    std::uint64_t Inode = 0;
};

/// None where nothing is at the path.
std::optional<FileIdentity> IdentityOf(const std::string& path);

// The kernel's account of block devices (sysfs). A device that it doesn't know has no relations.

/// The disk that a partition belongs to, none for a whole disk.
std::optional<DeviceNumber> DiskOfPartition(DeviceNumber device);

std::vector<DeviceNumber> PartitionsOf(DeviceNumber device);

/// The devices that a mapped device (dm, md, bcache) is made of.
std::vector<DeviceNumber> DevicesBelow(DeviceNumber device);

/// The mapped devices that a device is a part of.
std::vector<DeviceNumber> DevicesAbove(DeviceNumber device);

/// All devices of a file system that lies on several (btrfs), where the device is one of them.
std::vector<DeviceNumber> DevicesOfSharedFileSystem(DeviceNumber device);

/// What a loop device shows: a file's path, empty for any other device.
std::string LoopBackingPath(DeviceNumber device);

/// All loop devices that show something.
std::vector<DeviceNumber> LoopsInUse();

} // namespace thntfs
