#pragma once

#include <string>
#include <vector>

namespace thntfs {

/// What stands on a disk, or in a file like one, and would be lost if it were written over, a line each: the
/// disk, its partitions, and the NTFS volumes that can be read. The medium is opened as SourceDisk for a
/// moment, and whatever else was open is closed.
std::vector<std::string> DiskContents(const std::string& path);

} // namespace thntfs
