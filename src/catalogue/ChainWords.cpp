#include "catalogue/ChainWords.h"

#include <algorithm>
#include <numeric>

namespace thntfs {

namespace {

// A piece of the file fits the processor's own cache, and the pieces are few enough to be sorted to at once.
constexpr unsigned kPieceBits = 18;
constexpr std::size_t kPieces = std::size_t{1} << (32U - kPieceBits);

std::size_t PieceOf(const ChainWords::Word& word) { return word.Offset >> kPieceBits; }

} // namespace

ChainWords::ChainWords()
    : places_(kPieces + 1) {
    words_.reserve(kMaxWords);
    sorted_.reserve(kMaxWords);
}

std::span<const ChainWords::Word> ChainWords::Sort() {
    std::fill(places_.begin(), places_.end(), 0U);
    for (const Word& word : words_) {
        ++places_[PieceOf(word) + 1];
    }
    std::partial_sum(places_.begin(), places_.end(), places_.begin());
    sorted_.resize(words_.size());
    for (const Word& word : words_) {
        sorted_[places_[PieceOf(word)]++] = word;
    }
    return sorted_;
}

} // namespace thntfs
