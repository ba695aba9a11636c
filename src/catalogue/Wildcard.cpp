#include "catalogue/Wildcard.h"

#include "platform/system/Letters.h"

#include <algorithm>
#include <cstddef>

namespace thntfs {

namespace {

constexpr char32_t kLastOneByte = 0x7F;
constexpr char32_t kCaseBit = 0x20;
constexpr char32_t kStrayByte = 0x200000; // above all letters: one that stands for a byte of no letter
constexpr char32_t kAnyLetter = 0x400000;
constexpr char32_t kAnyRun = 0x400001;
constexpr char32_t kNoLetter = 0xFFFD;

std::size_t BytesOfLetter(unsigned char first) {
    if (first < 0x80) {
        return 1;
    }
    if (first >= 0xC2 && first < 0xE0) {
        return 2;
    }
    if (first >= 0xE0 && first < 0xF0) {
        return 3;
    }
    return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

// The letter at the front of a text that isn't empty, and how many bytes it has.
char32_t NarrowLetter(std::string_view text, std::size_t& bytes) {
    const auto byteAt = [&text](std::size_t place) { return static_cast<unsigned char>(text[place]); };
    bytes = BytesOfLetter(byteAt(0));
    if (bytes == 1) {
        return byteAt(0);
    }
    char32_t letter = byteAt(0) & (0xFFU >> (bytes + 1));
    bool whole = bytes != 0 && bytes <= text.size();
    for (std::size_t i = 1; whole && i < bytes; ++i) {
        whole = (byteAt(i) & 0xC0U) == 0x80U;
        letter = (letter << 6U) | (byteAt(i) & 0x3FU);
    }
    bytes = whole ? bytes : 1;
    return whole ? letter : kStrayByte + byteAt(0);
}

// The letter at the front of a name that isn't empty, and how many units it has.
char32_t WideLetter(std::u16string_view name, std::size_t& units) {
    units = 1;
    const char32_t first = name[0];
    if (first < 0xD800 || first > 0xDFFF) {
        return first;
    }
    if (first > 0xDBFF || name.size() < 2 || name[1] < 0xDC00 || name[1] > 0xDFFF) {
        return kNoLetter;
    }
    units = 2;
    return 0x10000U + ((first - 0xD800U) << 10U) + (name[1] - 0xDC00U);
}

} // namespace

Wildcard::Wildcard(std::string_view pattern, bool matchCase)
    : matchCase_(matchCase) {
    while (!pattern.empty()) {
        std::size_t bytes = 0;
        const char32_t letter = NarrowLetter(pattern, bytes);
        pattern_ += letter == U'*' ? kAnyRun : letter == U'?' ? kAnyLetter : Folded(letter);
        pattern.remove_prefix(bytes);
    }
}

char32_t Wildcard::Folded(char32_t letter) const {
    if (matchCase_) {
        return letter;
    }
    return letter <= kLastOneByte ? letter | kCaseBit : SmallLetter(letter);
}

// Millions of names are looked at one after the other.
bool Wildcard::Matches(std::u16string_view name) const {
    name_.resize(name.size());
    std::size_t letters = 0;
    const char32_t caseBit = matchCase_ ? 0 : kCaseBit;
    for (std::size_t at = 0, units = 1; at < name.size(); at += units) {
        const char32_t unit = name[at];
        units = 1;
        name_[letters++] = unit <= kLastOneByte ? unit | caseBit : Folded(WideLetter(name.substr(at), units));
    }
    name_.resize(letters);
    return MatchesLetters();
}

bool Wildcard::MatchesNarrow(std::string_view name) const {
    name_.clear();
    while (!name.empty()) {
        std::size_t bytes = 0;
        name_ += Folded(NarrowLetter(name, bytes));
        name.remove_prefix(bytes);
    }
    return MatchesLetters();
}

// Where the name may go on with a letter of the pattern, its end where it can't.
std::size_t Wildcard::NextPlaceOf(char32_t letter, std::size_t from) const {
    return letter >= kAnyLetter ? from : std::min(name_.find(letter, from), name_.size());
}

bool Wildcard::MatchesLetters() const {
    std::size_t at = 0;
    std::size_t place = 0; // in the pattern
    std::size_t resumeAt = 0;
    std::size_t resumePlace = 0; // behind the last star; 0 before there was one
    while (at < name_.size()) {
        if (place == pattern_.size()) {
            return resumePlace != 0; // behind a star, what is left of the name doesn't matter
        }
        if (pattern_[place] == kAnyRun) {
            resumePlace = ++place;
            resumeAt = at + 1;
        } else if (pattern_[place] == kAnyLetter || pattern_[place] == name_[at]) {
            ++place;
            ++at;
        } else if (resumePlace != 0) {
            place = resumePlace;
            at = NextPlaceOf(pattern_[place], resumeAt);
            resumeAt = at + 1;
        } else {
            return false;
        }
    }
    return std::all_of(pattern_.begin() + static_cast<std::ptrdiff_t>(place), pattern_.end(),
                       [](char32_t letter) { return letter == kAnyRun; });
}

int MatchWildcard(std::string_view pattern, std::string_view name, std::uint8_t fold) {
    return Wildcard(pattern, fold == 0).MatchesNarrow(name) ? 1 : 0;
}

} // namespace thntfs
