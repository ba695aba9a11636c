#pragma once

#include <memory>
#include <string>
#include <vector>

namespace thntfs {

class Medium;

/// What stands on a disk, or in a file like one, and would be lost if it were written over, a line each: the
/// disk, its partitions, and the NTFS volumes that can be read. `medium` is what is open
/// at the path, null where it can't be read; it is SourceDisk for a moment, and whatever else was open is
/// closed.
std::vector<std::string> DiskContents(const std::string& path, std::unique_ptr<Medium> medium);

} // namespace thntfs
