#include "platform/system/EscapedText.h"

#include <algorithm>

namespace thntfs {

namespace {

void AppendHex(std::string& out, unsigned char byte) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    out += kDigits[byte >> 4U];
    out += kDigits[byte & 15U];
}

void AppendJsonEscape(std::string& out, unsigned char byte) {
    constexpr std::string_view kSigns = "\"\\\b\f\n\r\t";
    constexpr std::string_view kLetters = "\"\\bfnrt";
    if (const std::size_t place = kSigns.find(static_cast<char>(byte)); place != std::string_view::npos) {
        (out += '\\') += kLetters[place];
    } else {
        AppendHex(out += "\\u00", byte);
    }
}

/// Most texts are plain from end to end, and go over in one piece.
template <typename IsPlain, typename AppendOther>
void AppendInRuns(std::string& out, std::string_view text, IsPlain isPlain, AppendOther appendOther) {
    while (!text.empty()) {
        const auto* const end = std::find_if_not(text.begin(), text.end(), isPlain);
        const auto run = static_cast<std::size_t>(end - text.begin());
        out += text.substr(0, run);
        if (run < text.size()) {
            appendOther(static_cast<unsigned char>(text[run]));
        }
        text.remove_prefix(std::min(text.size(), run + 1));
    }
}

} // namespace

void AppendPrintable(std::string& out, std::string_view text) {
    AppendInRuns(
        out, text, [](unsigned char byte) { return byte >= 0x20 && byte != 0x7F; },
        [&out](unsigned char byte) { AppendHex(out += "\\x", byte); });
}

void AppendJsonText(std::string& out, std::string_view text) {
    AppendInRuns(
        out, text, [](unsigned char byte) { return byte >= 0x20 && byte != '"' && byte != '\\'; },
        [&out](unsigned char byte) { AppendJsonEscape(out, byte); });
}

} // namespace thntfs
