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

/// An open disk that several processes of this program may read.
struct LentDisk {
    FileDescriptor Disk;
    FileDescriptor Turns; ///< a file without contents; who has it locked is the one that reads
};

/// What came of asking for a disk.
struct DiskAnswer {
    FileDescriptor Disk; ///< open where Code is kErrorNone
    /// kErrorAccessDenied where nobody could be asked, kErrorCancelled where the user would rather not,
    /// kErrorPrivilegeNotHeld where the system's rules forbid it, kErrorServiceNotActive where whoever was
    /// asked is gone, kErrorSharingViolation where the disk is in use, kErrorGeneralFailure for the rest.
    ErrorCode Code = kErrorAccessDenied;
    std::string Reason = {};   ///< in the words of whoever was asked; may be empty
    FileDescriptor Turns = {}; ///< as in LentDisk, where another process reads the disk too
};

bool IsBlockDevice(const std::string& path);

/// Whether two paths, or a path and an open file, can be the same disk is asked by both calls below: what
/// isn't a block device, the one at the path, opened for what is wanted, gives kErrorInvalidHandle.
///
/// A medium on an open disk. Not for two threads at a time. `turns`: where other processes read the disk too.
MediumResult OpenMediumOn(FileDescriptor disk, const std::string& path, FileDescriptor turns = {});

/// As OpenTargetDisk, on an open disk.
ErrorCode OpenTargetDiskOn(FileDescriptor disk, const std::string& path, std::unique_ptr<File>& file);

// A further process of this program reads on by what a medium was lent (Medium::Lent), so that nobody is
// asked again.

/// Keeps the disk open for the program that this process is about to begin. Safe behind a fork.
void KeepForProgram(const LentDisk& disk);

/// By which that program finds the disk.
std::string WordForLent(const LentDisk& disk);

/// The disk of such a word, not open where it is none.
LentDisk LentDiskOf(const std::string& word);

/// Flags of open(2) that whoever opens a disk is to add to those of reading and writing.
int OpenFlagsOf(DiskUse use);

} // namespace thntfs
