#pragma once

#include "partitions/VolumeList.h"

#include <cstdint>
#include <string>

namespace thntfs {

/// A line of the list of volumes, which may be one that can't be taken.
std::string VolumeText(const ListedVolume& volume);

/// Where a volume of the partition table that can't be taken lies, and why it can't.
std::string UnusableText(const TableVolume& entry);

/// A volume's serial number, in 16 hexadecimal digits.
std::string VolumeSerialText(std::uint64_t serial);

} // namespace thntfs
