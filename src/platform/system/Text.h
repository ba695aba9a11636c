#pragma once

#include "platform/system/Bytes.h"

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

/// The bytes of a text, which keeps them.
inline ConstBytes TextBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

} // namespace thntfs
