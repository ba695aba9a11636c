#pragma once

#include <string>
#include <string_view>

namespace thntfs {

/// Narrow text (UTF-8) of UTF-16 text. A surrogate without its partner becomes U+FFFD, so the result is
/// always valid UTF-8.
std::string NarrowText(std::u16string_view wide);

/// Appends the narrow text to `out`, which saves an allocation for each name of a long listing.
void AppendNarrowText(std::string& out, std::u16string_view wide);

/// UTF-16 text of narrow text. Bytes that are not valid UTF-8 become U+FFFD.
std::u16string WideText(std::string_view narrow);

} // namespace thntfs
