#pragma once

#include "platform/system/ErrorCodes.h"

#include <memory>
#include <string>

namespace thntfs {

class File;

/// Opens a disk for writing over: a block device that nothing else uses (a mounted one gives
/// kErrorSharingViolation), or a regular file that exists already and keeps its size. The one place where a
/// device is opened for anything but reading. The caller owns `file`, null on failure.
ErrorCode OpenTargetDisk(const std::string& path, std::unique_ptr<File>& file);

/// Has the system read anew which partitions a disk has, once nobody has it open for himself any more. A file
/// has none. Gives the failure: the disk may be in use, or of a kind that the system sees no partitions on.
ErrorCode RereadPartitions(const std::string& path);

} // namespace thntfs
