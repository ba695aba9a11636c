#include "platform/media/posix/BlockDevices.h"

#include "platform/media/posix/SysfsFolders.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <system_error>

namespace thntfs {

namespace {

namespace fs = std::filesystem;

std::string FirstLine(const fs::path& file) {
    std::ifstream in(file);
    std::string line;
    std::getline(in, line);
    return line;
}

/// The device of a sysfs folder, from its file "dev": "MAJOR:MINOR".
std::optional<DeviceNumber> DeviceOfFolder(const fs::path& folder) {
    const std::string line = FirstLine(folder / "dev");
    unsigned majorNumber = 0;
    unsigned minorNumber = 0;
    const char* end = line.data() + line.size();
    const auto first = std::from_chars(line.data(), end, majorNumber);
    if (first.ec != std::errc{} || first.ptr == end || *first.ptr != ':') {
        return std::nullopt;
    }
    if (std::from_chars(first.ptr + 1, end, minorNumber).ec != std::errc{}) {
        return std::nullopt;
    }
    return makedev(majorNumber, minorNumber);
}

/// The sysfs folder of a device, links resolved; empty where there is none.
fs::path FolderOf(DeviceNumber device) {
    const std::string name = std::to_string(major(device)) + ":" + std::to_string(minor(device));
    std::error_code failure;
    fs::path folder = fs::canonical("/sys/dev/block/" + name, failure);
    return failure ? fs::path{} : folder;
}

std::vector<DeviceNumber> DevicesIn(const fs::path& folder) {
    std::vector<DeviceNumber> devices;
    for (const fs::path& entry : FoldersIn(folder)) {
        if (const auto device = DeviceOfFolder(entry)) {
            devices.push_back(*device);
        }
    }
    return devices;
}

} // namespace

std::optional<FileIdentity> IdentityOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    FileIdentity identity;
    identity.IsBlockDevice = S_ISBLK(status.st_mode);
    identity.Device = identity.IsBlockDevice ? status.st_rdev : 0;
    identity.FileSystem = status.st_dev;
    identity.Inode = status.st_ino;
    return identity;
}

std::optional<DeviceNumber> DiskOfPartition(DeviceNumber device) {
    const fs::path folder = FolderOf(device);
    if (folder.empty() || !Exists(folder / "partition")) {
        return std::nullopt;
    }
    return DeviceOfFolder(folder.parent_path());
}

std::vector<DeviceNumber> PartitionsOf(DeviceNumber device) {
    std::vector<DeviceNumber> partitions;
    const fs::path disk = FolderOf(device);
    if (disk.empty()) {
        return partitions;
    }
    for (const fs::path& folder : FoldersIn(disk)) {
        const auto partition = Exists(folder / "partition") ? DeviceOfFolder(folder) : std::nullopt;
        if (partition) {
            partitions.push_back(*partition);
        }
    }
    return partitions;
}

std::vector<DeviceNumber> DevicesBelow(DeviceNumber device) {
    const fs::path folder = FolderOf(device);
    return folder.empty() ? std::vector<DeviceNumber>{} : DevicesIn(folder / "slaves");
}

std::vector<DeviceNumber> DevicesAbove(DeviceNumber device) {
    const fs::path folder = FolderOf(device);
    return folder.empty() ? std::vector<DeviceNumber>{} : DevicesIn(folder / "holders");
}

std::vector<DeviceNumber> DevicesOfSharedFileSystem(DeviceNumber device) {
    for (const fs::path& folder : FoldersIn("/sys/fs/btrfs")) {
        std::vector<DeviceNumber> devices = DevicesIn(folder / "devices");
        if (std::find(devices.begin(), devices.end(), device) != devices.end()) {
            return devices;
        }
    }
    return {};
}

std::string LoopBackingPath(DeviceNumber device) {
    const fs::path folder = FolderOf(device);
    return folder.empty() ? std::string{} : FirstLine(folder / "loop" / "backing_file");
}

std::vector<DeviceNumber> LoopsInUse() {
    std::vector<DeviceNumber> loops;
    for (const fs::path& folder : FoldersIn("/sys/block")) {
        const auto device = Exists(folder / "loop" / "backing_file") ? DeviceOfFolder(folder) : std::nullopt;
        if (device) {
            loops.push_back(*device);
        }
    }
    return loops;
}

} // namespace thntfs
