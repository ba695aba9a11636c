#pragma once

#include "platform/ErrorCodes.h"

#include <string>

namespace thntfs {

/// Opens a disk, by the path of its block device, as SourceDisk: sector size and size as the device states
/// them. Whatever was open before is closed first. Gives 0 or the failure's code, with SourceDisk left empty.
ErrorCode OpenPhysicalDisk(const std::string& devicePath);

/// Opens an image file as SourceDisk. The sector size is the one stamped at byte 444, or 512; the size in
/// sectors is the file's length / the sector size, a rest dropped. Sets ImagePath and ImageFolder. Gives 0 or
/// the failure's code, with SourceDisk left empty.
ErrorCode OpenImageFile(const std::string& imagePath);

/// Opens either, by what stands under the path.
ErrorCode OpenSource(const std::string& path);

/// True where SourceDisk is a device and not an image file.
bool SourceIsDevice();

} // namespace thntfs
