#pragma once

#include <string>
#include <string_view>

namespace thntfs {

// A file that is still being written carries a name of this program's own until it is whole: a stem, which
// may be empty, ".th-ntfs-", twelve hexadecimal digits and ".part". No other file has such a name, so one
// that no living process has locked may be taken away.

/// A part name that no other call gives.
std::string NewPartName(std::string_view stem);

/// True for a part name with this stem.
bool IsPartName(std::string_view name, std::string_view stem);

/// True for a part name with any stem.
bool IsPartName(std::string_view name);

} // namespace thntfs
