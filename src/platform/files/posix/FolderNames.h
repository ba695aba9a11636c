#pragma once

#include <dirent.h>
#include <functional>
#include <string>
#include <vector>

namespace thntfs {

/// The names in an open folder, exactly as they stand there, of the entries that `wanted` takes. As many as
/// could be read.
std::vector<std::string> NamesIn(int folder, const std::function<bool(const dirent&)>& wanted);

} // namespace thntfs
