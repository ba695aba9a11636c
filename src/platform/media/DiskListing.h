#pragma once

#include "platform/system/ErrorCodes.h"

#include <cstdint>
#include <string>
#include <vector>

namespace thntfs {

/// One partition of a disk as the system knows it.
struct DiskPart {
    std::string Path;
    std::uint64_t SizeBytes = 0;
};

/// What the system tells of one physical disk without its being opened. What it doesn't tell is empty or 0.
struct DiskProperties {
    std::string Path; ///< of the block device, "/dev/sda"
    std::string Model;
    std::string Serial;    ///< readable
    std::string Revision;  ///< of the firmware
    std::string Interface; ///< "USB", "IDE" (which SATA counts as), "SCSI", "NVMe", "MMC", "1394", "VirtIO",
                           ///< "Loop", "RAID"
    std::string Media;     ///< "Fixed hard disk media", "Removable media" or "Disk image"
    std::uint32_t BytesPerSector = 0; ///< 0 for a drive without a medium
    std::uint64_t SizeBytes = 0;
    std::uint64_t Cylinders =
        0; ///< of the geometry that every system assumes today: 255 heads, 63 sectors a track
    std::uint32_t Heads = 0;
    std::vector<DiskPart> Parts;
};

/// All disks: hard disks, memory cards and sticks, RAID arrays, and loop devices that show something. Ordered
/// by kind, then as people count them (sda, sdb, …, sdaa).
std::vector<DiskProperties> ListDisks();

/// What an opened disk tells of its size.
struct DiskSize {
    std::uint64_t Bytes = 0;            ///< 0 where either call failed
    ErrorCode OpenError = kErrorNone;   ///< of its opening
    ErrorCode AccessError = kErrorNone; ///< of asking for the size
};

/// Opens a disk by the path of its block device, and closes it again. Nothing is read from it.
DiskSize QueryDiskBytes(const std::string& devicePath);

} // namespace thntfs
