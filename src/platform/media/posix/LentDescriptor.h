#pragma once

#include <string>

namespace thntfs {

/// True where an open file is the block device at a path and open for this use (O_RDONLY or O_RDWR).
bool IsDiskAt(int descriptor, const std::string& path, int accessMode);

} // namespace thntfs
