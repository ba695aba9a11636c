#pragma once

#include "platform/system/Bytes.h"

#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

namespace thntfs {

inline constexpr std::size_t kHexLineBytes = 16;

/// Characters of a hex view's line in front of its bytes as text.
inline constexpr int kHexPartChars = 57;

/// The place of a byte's two digits in a line's text; `index` is below 16.
constexpr int HexPairAt(int index) {
    constexpr int kHalf = kHexLineBytes / 2;
    return 4 + 3 * index + (index < kHalf ? 0 : 2);
}

/// The offset at which a line begins, as eight digits.
QString HexOffsetText(std::uint64_t line);

/// A line's text: the bytes, 16 at most, as pairs of digits in two halves, blank where the line is short, and
/// then as characters: letters and digits of ASCII, dots for all else.
QString HexLineText(ConstBytes bytes);

/// Bytes for the clipboard: pairs of digits with blanks between; or as text, with dots for what no text has.
QString HexCopyText(ConstBytes bytes);
QString PlainCopyText(ConstBytes bytes);

/// What to search for: one of these, with ASCII letters taken as alike in both cases where it is text.
struct HexPattern {
    std::vector<std::vector<std::uint8_t>> Choices;
    bool IgnoreCase = false;
};

/// Text as UTF-8 and as UTF-16. Nothing for an empty one.
std::optional<HexPattern> TextPattern(const QString& text);
/// Pairs of hex digits, with or without blanks. Nothing for anything else.
std::optional<HexPattern> BytesPattern(const QString& text);

struct HexMatch {
    std::uint64_t Offset = 0;
    std::uint64_t Length = 0;
    bool operator==(const HexMatch&) const = default;
};

/// The first match that begins at `from` or behind it; nothing where there is none.
std::optional<HexMatch> FindPattern(ConstBytes bytes, const HexPattern& pattern, std::uint64_t from);

} // namespace thntfs
