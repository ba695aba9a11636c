#pragma once

#include <cstdint>

namespace thntfs {

/// The theme at the program's start, as ThemeIndex: a theme command less the first one.
inline constexpr std::uint8_t kStartTheme = 1;

/// Gives all windows the look of a theme.
void UseTheme(std::uint8_t themeIndex);

} // namespace thntfs
