#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace thntfs {

/// UTF-16 units of a name that the views keep. NTFS knows no longer one, a damaged catalogue does.
inline constexpr std::size_t kMaxShownUnits = 255;

/// Appends to `names` as much of a name as the views keep. Gives the number of units appended.
std::uint16_t KeepName(std::u16string_view name, std::u16string& names);

/// A name as one line of text: what has no picture of its own, such as a line break, is shown by a symbol.
QString ShownName(std::u16string_view name);

} // namespace thntfs
