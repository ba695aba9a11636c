#include "platform/system/Text.h"

#include <cstddef>
#include <cstdint>

namespace thntfs {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void AppendUtf8(std::string& out, char32_t point) {
    const auto tail = [point](unsigned shift) {
        return static_cast<char>(0x80U | ((point >> shift) & 0x3FU));
    };
    if (point < 0x80) {
        out += static_cast<char>(point);
    } else if (point < 0x800) {
        out += static_cast<char>(0xC0U | (point >> 6U));
        out += tail(0);
    } else if (point < 0x10000) {
        out += static_cast<char>(0xE0U | (point >> 12U));
        out += tail(6);
        out += tail(0);
    } else {
        out += static_cast<char>(0xF0U | (point >> 18U));
        out += tail(12);
        out += tail(6);
        out += tail(0);
    }
}

// Most names are plain ASCII from end to end: these need no look at each unit's kind. Gives the units taken.
std::size_t AppendPlainStart(std::string& out, std::u16string_view wide) {
    const std::size_t start = out.size();
    out.resize(start + wide.size());
    std::size_t taken = 0;
    while (taken < wide.size() && wide[taken] < 0x80) {
        out[start + taken] = static_cast<char>(wide[taken]);
        ++taken;
    }
    out.resize(start + taken);
    return taken;
}

void AppendUtf16(std::u16string& out, char32_t point) {
    if (point < 0x10000) {
        out += static_cast<char16_t>(point);
        return;
    }
    out += static_cast<char16_t>(0xD800U + ((point - 0x10000U) >> 10U));
    out += static_cast<char16_t>(0xDC00U + ((point - 0x10000U) & 0x3FFU));
}

/// How a sequence goes on after its first byte. The second byte's range leaves out overlong forms, surrogates
/// and what lies past U+10FFFF.
struct SequenceStart {
    unsigned Tails; ///< bytes that follow, 0 for a byte that starts nothing
    std::uint8_t SecondMin;
    std::uint8_t SecondMax;
    char32_t Bits;
};

SequenceStart StartOf(std::uint8_t byte) {
    if (byte >= 0xC2 && byte < 0xE0) {
        return {1, 0x80, 0xBF, byte & 0x1FU};
    }
    if (byte >= 0xE0 && byte < 0xF0) {
        return {2, static_cast<std::uint8_t>(byte == 0xE0 ? 0xA0 : 0x80),
                static_cast<std::uint8_t>(byte == 0xED ? 0x9F : 0xBF), byte & 0x0FU};
    }
    if (byte >= 0xF0 && byte < 0xF5) {
        return {3, static_cast<std::uint8_t>(byte == 0xF0 ? 0x90 : 0x80),
                static_cast<std::uint8_t>(byte == 0xF4 ? 0x8F : 0xBF), byte & 0x07U};
    }
    return {0, 0, 0, 0};
}

/// Decodes the sequence at `position`, which is no ASCII byte, and moves past it, or past as much of it as
/// was valid, one byte at least.
char32_t TakeSequence(std::string_view text, std::size_t& position) {
    const SequenceStart start = StartOf(static_cast<std::uint8_t>(text[position++]));
    char32_t point = start.Bits;
    std::uint8_t low = start.SecondMin;
    std::uint8_t high = start.SecondMax;
    for (unsigned i = 0; i < start.Tails; ++i) {
        const auto byte =
            position < text.size() ? static_cast<std::uint8_t>(text[position]) : std::uint8_t{0};
        if (byte < low || byte > high) {
            return kReplacement;
        }
        point = (point << 6U) | (byte & 0x3FU);
        low = 0x80;
        high = 0xBF;
        ++position;
    }
    return start.Tails != 0 ? point : kReplacement;
}

} // namespace

std::string NarrowText(std::u16string_view wide) {
    std::string out;
    AppendNarrowText(out, wide);
    return out;
}

void AppendNarrowText(std::string& out, std::u16string_view wide) {
    for (std::size_t i = AppendPlainStart(out, wide); i < wide.size(); ++i) {
        const char16_t unit = wide[i];
        if (IsHighSurrogate(unit) && i + 1 < wide.size() && IsLowSurrogate(wide[i + 1])) {
            const auto high = static_cast<char32_t>(unit - 0xD800) << 10U;
            const auto low = static_cast<char32_t>(wide[++i] - 0xDC00);
            AppendUtf8(out, 0x10000U + high + low);
        } else if (IsHighSurrogate(unit) || IsLowSurrogate(unit)) {
            AppendUtf8(out, kReplacement);
        } else {
            AppendUtf8(out, unit);
        }
    }
}

std::u16string WideText(std::string_view narrow) {
    std::u16string out;
    out.reserve(narrow.size());
    std::size_t position = 0;
    while (position < narrow.size()) {
        const auto byte = static_cast<std::uint8_t>(narrow[position]);
        if (byte < 0x80) {
            out += static_cast<char16_t>(byte);
            ++position;
        } else {
            AppendUtf16(out, TakeSequence(narrow, position));
        }
    }
    return out;
}

} // namespace thntfs
