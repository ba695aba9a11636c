#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace thntfs {

/// Longest name that a file system of today takes, in bytes.
inline constexpr std::size_t kMaxTargetNameBytes = 255;

/// The name under which an entry is saved: one plain component, whatever the medium says. Characters that
/// could lead elsewhere or that no file system takes (slashes, NUL, control characters and the reserved ones)
/// become
/// "_", so do names that mean a folder, those of devices and of part files get one in front, and a name that
/// is too long is cut before its extension.
std::string TargetName(std::u16string_view name);
/// The same, behind what a text holds.
void AppendTargetName(std::string& out, std::u16string_view name);

/// The same of a name in UTF-8. A name that the target can take comes out as it is.
std::string FitName(std::string name);

/// The name to try where one is taken: "photo.jpg" with number 2 gives "photo (2).jpg".
std::string NumberedName(const std::string& name, unsigned number);

} // namespace thntfs
