#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace thntfs {

/// A pattern for names: '*' stands for any run of letters, '?' for any one, all else for itself. What is
/// left of a name behind a pattern that has ended with or after a star doesn't matter, so "*.doc" matches
/// "a.docx" too.
///
/// Without match case two letters of one byte are the same where they differ in bit 0x20 alone, which goes
/// for 'A' and 'a' and for '[' and '{' too; letters of several bytes are the same where their small letters
/// are. A letter is one character of any script, however many bytes or UTF-16 units it takes.
class Wildcard {
public:
    Wildcard(std::string_view pattern, bool matchCase);

    [[nodiscard]] bool Matches(std::u16string_view name) const;

    /// As MatchWildcard, of narrow text.
    [[nodiscard]] bool MatchesNarrow(std::string_view name) const;

private:
    [[nodiscard]] char32_t Folded(char32_t letter) const;
    [[nodiscard]] bool MatchesLetters() const;
    [[nodiscard]] std::size_t NextPlaceOf(char32_t letter, std::size_t from) const;

    bool matchCase_;
    std::u32string pattern_; ///< letters folded, with marks of its own for the star and the question mark
    mutable std::u32string name_; ///< of the name in hand: keeps its memory, so a pattern is for one thread
};

/// 1 where a name matches a pattern, else 0; both are narrow text (UTF-8), in which '?' stands for a whole
/// letter, also for one of several bytes, and each byte that belongs to no letter counts as one. `fold` is 0
/// with match case and 0x20 without.
int MatchWildcard(std::string_view pattern, std::string_view name, std::uint8_t fold);

} // namespace thntfs
