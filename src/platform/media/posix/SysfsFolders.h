#pragma once

#include <filesystem>
#include <vector>

namespace thntfs {

/// Folders of a folder of the kernel's account, links to folders too. What can't be read is empty.
std::vector<std::filesystem::path> FoldersIn(const std::filesystem::path& folder);

/// False also where the path can't be looked at.
bool Exists(const std::filesystem::path& path);

} // namespace thntfs
