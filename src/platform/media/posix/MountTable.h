#pragma once

#include "platform/media/posix/BlockDevices.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace thntfs {

/// One mounted file system, from the kernel's table.
struct Mount {
    std::uint64_t Id = 0;
    DeviceNumber Device = 0; ///< made up (major 0) where the file system is not on one block device
    std::string Source;      ///< what was mounted: a device's path, an image's path or just a word
};

/// A line of /proc/self/mountinfo, none where it can't be understood.
std::optional<Mount> ParseMount(std::string_view line);

/// All that is mounted in this process's view.
std::vector<Mount> MountTable();

/// Source of the mount that a path lies on, empty where it isn't known.
std::string MountSourceOf(const std::string& path);

/// Paths of the devices and files that are swapped to.
std::vector<std::string> SwapPaths();

} // namespace thntfs
