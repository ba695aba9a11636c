#pragma once

#include <string>
#include <string_view>

namespace thntfs {

/// Appends text with control characters shown as \xNN, so that a name can't drive the terminal.
void AppendPrintable(std::string& out, std::string_view text);

/// Appends what stands between the quotes of a JSON string; the text is UTF-8.
void AppendJsonText(std::string& out, std::string_view text);

} // namespace thntfs
