#pragma once

#include <string>

namespace thntfs {

// Which paths meet on one disk. A partition stands for its whole disk, a mapped device (LVM, encryption,
// RAID) for the disks below it, and a loop device for what it shows. Where the system does not tell, the
// answer is no: these are guards against mistakes, not proofs.

/// True where writing at a path would write on the medium that is being read: the file system of the file or
/// folder (or of its nearest parent that exists) lies on the disk that `mediumPath` names or is a part of, or
/// in the image file that it names, or the path is the medium itself. An image file is a medium for itself,
/// so a folder on the same disk as the image does not share it.
bool SharesMedium(const std::string& folderOrFilePath, const std::string& mediumPath);

/// True where both paths name one disk or one image file: by the same name, a link, a partition of it, or a
/// loop device over it.
bool SameMedium(const std::string& leftPath, const std::string& rightPath);

/// True where the device (or image file), a partition of it or a device mapped or looped onto one of them is
/// mounted or swapped to.
bool IsMounted(const std::string& devicePath);

} // namespace thntfs
