#include "platform/files/Paths.h"
#include "platform/media/DiskIdentity.h"
#include "platform/media/posix/BlockDevices.h"
#include "platform/media/posix/MountTable.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <sys/sysmacros.h>
#include <system_error>
#include <utility>

namespace thntfs {

namespace {

using FileKey = std::pair<DeviceNumber, std::uint64_t>; ///< file system and inode

/// What something lies on.
struct Ground {
    std::set<DeviceNumber> Devices;
    std::set<FileKey> Files;

    [[nodiscard]] bool Meets(const Ground& other) const {
        const auto common = [](const auto& left, const auto& right) {
            return std::any_of(left.begin(), left.end(),
                               [&](const auto& item) { return right.contains(item); });
        };
        return common(Devices, other.Devices) || common(Files, other.Files);
    }
};

/// How far down a ground goes at a loop device over a file: to the file, which is a medium for itself, or on
/// through the file system that the file lies on.
enum class Depth { Image, Bottom };

void AddFileSystem(Ground& ground, const std::string& path, DeviceNumber device);

void AddFile(Ground& ground, const std::string& path, const FileIdentity& file, Depth depth) {
    const bool fresh = ground.Files.emplace(file.FileSystem, file.Inode).second;
    if (fresh && depth == Depth::Bottom) {
        AddFileSystem(ground, path, file.FileSystem);
    }
}

void AddDevice(Ground& ground, DeviceNumber device, Depth depth);

/// What a path names as a medium: a device or an image file.
void AddNamed(Ground& ground, const std::string& path, Depth depth) {
    const auto identity = IdentityOf(path);
    if (!identity) {
        return;
    }
    if (identity->IsBlockDevice) {
        AddDevice(ground, identity->Device, depth);
    } else {
        AddFile(ground, path, *identity, depth);
    }
}

void AddDevices(Ground& ground, const std::vector<DeviceNumber>& devices, Depth depth) {
    for (const DeviceNumber device : devices) {
        AddDevice(ground, device, depth);
    }
}

/// A partition doesn't stand in the ground itself: it stands for its disk.
void AddDevice(Ground& ground, DeviceNumber device, Depth depth) {
    if (const auto disk = DiskOfPartition(device)) {
        AddDevice(ground, *disk, depth);
        return;
    }
    if (!ground.Devices.insert(device).second) {
        return;
    }
    AddDevices(ground, DevicesBelow(device), depth);
    const std::string backing = LoopBackingPath(device);
    if (!backing.empty()) {
        AddNamed(ground, backing, depth);
    }
}

void AddFileSystem(Ground& ground, const std::string& path, DeviceNumber device) {
    if (major(device) != 0) {
        AddDevice(ground, device, Depth::Bottom);
        return;
    }
    // Some file systems (btrfs, FUSE) have made-up numbers; the mount table names what they lie on.
    const std::string source = MountSourceOf(path);
    const auto identity = source.starts_with('/') ? IdentityOf(source) : std::nullopt;
    if (identity && identity->IsBlockDevice) {
        AddDevice(ground, identity->Device, Depth::Bottom);
        AddDevices(ground, DevicesOfSharedFileSystem(identity->Device), Depth::Bottom);
    } else if (identity) {
        AddFile(ground, source, *identity, Depth::Bottom);
    }
}

Ground GroundOfMedium(const std::string& path) {
    Ground ground;
    AddNamed(ground, path, Depth::Image);
    return ground;
}

/// Where writing at a path would happen: what it leads to, or the nearest folder above that exists. Links and
/// ".." are the system's to follow, since what they mean can't be told from the text.
std::string PlaceOfTarget(const std::string& path) {
    std::error_code failure;
    std::filesystem::path place = std::filesystem::absolute(BehindLinks(path), failure);
    while (place.has_relative_path() && !IdentityOf(place.string())) {
        place = place.parent_path();
    }
    return place.string();
}

Ground GroundOfTarget(const std::string& path) {
    Ground ground;
    AddNamed(ground, PlaceOfTarget(path), Depth::Bottom);
    return ground;
}

/// All devices that show a part of the medium: its partitions, and what is mapped or looped onto them.
void AddUsers(Ground& ground, DeviceNumber device) {
    if (!ground.Devices.insert(device).second) {
        return;
    }
    for (const auto& users :
         {PartitionsOf(device), DevicesAbove(device), DevicesOfSharedFileSystem(device)}) {
        for (const DeviceNumber user : users) {
            AddUsers(ground, user);
        }
    }
}

bool Names(const Ground& ground, const std::string& path) {
    const auto identity = path.starts_with('/') ? IdentityOf(path) : std::nullopt;
    if (!identity) {
        return false;
    }
    return identity->IsBlockDevice ? ground.Devices.contains(identity->Device)
                                   : ground.Files.contains({identity->FileSystem, identity->Inode});
}

/// Loops may stand on loops, so it goes on until nothing new turns up.
void AddLoopUsers(Ground& ground) {
    const std::vector<DeviceNumber> loops = LoopsInUse();
    std::size_t known = 0;
    do {
        known = ground.Devices.size();
        for (const DeviceNumber loop : loops) {
            if (Names(ground, LoopBackingPath(loop))) {
                AddUsers(ground, loop);
            }
        }
    } while (ground.Devices.size() != known);
}

Ground UsersOf(const std::string& path) {
    Ground ground;
    const auto identity = IdentityOf(path);
    if (identity && identity->IsBlockDevice) {
        AddUsers(ground, identity->Device);
    } else if (identity) {
        ground.Files.emplace(identity->FileSystem, identity->Inode);
    }
    AddLoopUsers(ground);
    return ground;
}

} // namespace

bool SharesMedium(const std::string& folderOrFilePath, const std::string& mediumPath) {
    return GroundOfTarget(folderOrFilePath).Meets(GroundOfMedium(mediumPath));
}

bool SameMedium(const std::string& leftPath, const std::string& rightPath) {
    return GroundOfMedium(leftPath).Meets(GroundOfMedium(rightPath));
}

bool IsMounted(const std::string& devicePath) {
    const Ground users = UsersOf(devicePath);
    const std::vector<Mount> mounts = MountTable();
    const auto isOurs = [&](const Mount& mount) {
        return users.Devices.contains(mount.Device) || Names(users, mount.Source);
    };
    const std::vector<std::string> swaps = SwapPaths();
    return std::any_of(mounts.begin(), mounts.end(), isOurs) ||
           std::any_of(swaps.begin(), swaps.end(),
                       [&](const std::string& path) { return Names(users, path); });
}

} // namespace thntfs
