#pragma once

namespace thntfs {

/// Marks a text that the desktop program shows in the user's language, for scripts/make-translation; the
/// context is always "Core". The text stays what it is: logs and the terminal program are English.
constexpr const char* CoreText(const char* /*context*/, const char* text) { return text; }

} // namespace thntfs
