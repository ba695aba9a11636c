#pragma once

#include "platform/media/DiskListing.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace thntfs {

/// One physical disk as it is shown: all but the path is text for people, numbers too.
struct DiskInfo {
    std::string Path;                   ///< of the block device, "/dev/sda"
    std::string Name;                   ///< the device's name without the folder of devices: "sda"
    std::string MediaType;              ///< "Removable media" for a disk on the USB interface
    std::string InterfaceType;          ///< "USB", "IDE", …
    std::string TotalSectors;           ///< decimal
    std::string TotalCylinders;         ///< decimal
    std::string TotalHeads;             ///< decimal
    std::string Size;                   ///< for people: "465.76 GB"
    std::string Serial;                 ///< "N/A" where there is none
    std::string Revision;               ///< of the firmware
    std::string Model;                  ///< "USB mobile disk " for a disk on the USB interface
    std::string BytesPerSector;         ///< decimal
    ErrorCode OpenError = kErrorNone;   ///< why the disk could not be opened
    ErrorCode AccessError = kErrorNone; ///< why the opened disk did not tell its size

    bool operator==(const DiskInfo&) const = default;
};

/// The disks of this machine, in the order of the system's list. Opens each for a moment to ask for its size.
std::vector<DiskInfo> EnumerateDisks();

/// The disk that a device path names or is a part of. One that the system doesn't list has its path for a
/// name. It isn't opened.
DiskInfo DiskOfDevice(const std::string& path);

/// One disk. `sizeBytes` is what the opened device has told of its size, 0 where it could not be opened: the
/// listed figures count then. None for a drive without a medium, which has no sector size.
std::optional<DiskInfo> DescribeDisk(const DiskProperties& disk, std::uint64_t sizeBytes);

/// The readable form of a serial number that is written as pairs of hexadecimal digits with the two bytes of
/// each word swapped. Begins with a blank; keeps digits and upper-case letters alone.
std::string DecodeDiskSerial(std::string text);

} // namespace thntfs
