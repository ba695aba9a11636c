#pragma once

#include "platform/files/posix/FileDescriptor.h"
#include "platform/media/Medium.h"
#include "platform/system/ErrorCodes.h"

#include <cstdint>
#include <memory>
#include <string>

namespace thntfs {

class File;

// Disks that this user may not open, and that somebody with more rights, the system's disk service, has
// opened.

enum class DiskUse : std::uint8_t { Reading, WritingOver };

/// What came of asking for a disk.
struct DiskAnswer {
    FileDescriptor Disk; ///< open where Code is kErrorNone
    /// kErrorAccessDenied where nobody could be asked, kErrorCancelled where the user would rather not,
    /// kErrorPrivilegeNotHeld where the system's rules forbid it, kErrorServiceNotActive where whoever was
    /// asked is gone, kErrorSharingViolation where the disk is in use, kErrorGeneralFailure for the rest.
    ErrorCode Code = kErrorAccessDenied;
    std::string Reason = {}; ///< in the words of whoever was asked; may be empty
};

bool IsBlockDevice(const std::string& path);

/// Whether two paths, or a path and an open file, can be the same disk is asked by both calls below: what
/// isn't a block device, the one at the path, opened for what is wanted, gives kErrorInvalidHandle.
///
/// A medium on an open disk. Not for two threads at a time.
MediumResult OpenMediumOn(FileDescriptor disk, const std::string& path);

/// As OpenTargetDisk, on an open disk.
ErrorCode OpenTargetDiskOn(FileDescriptor disk, const std::string& path, std::unique_ptr<File>& file);

/// Flags of open(2) that whoever opens a disk is to add to those of reading and writing.
int OpenFlagsOf(DiskUse use);

} // namespace thntfs
