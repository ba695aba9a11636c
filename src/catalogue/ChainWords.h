#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace thntfs {

/// Words of TreeFile that wait to be written: slots and links of chains, which belong all over the file.
/// Gathered and sorted by place they touch each piece of it once; written one by one they would fetch another
/// page of a file that is larger than its buffers for each child.
class ChainWords {
public:
    struct Word {
        std::uint32_t Offset; ///< byte offset in TreeFile
        std::uint32_t Value;
    };

    /// Takes all the memory that it will need; what isn't used is never touched. Throws std::bad_alloc.
    ChainWords();

    /// Notes a word; a place is noted once. There must be room.
    void Note(std::uint32_t offset, std::uint32_t value) { words_.push_back({offset, value}); }
    [[nodiscard]] bool Full() const { return words_.size() == kMaxWords; }

    /// All words: pieces of the file in rising order, within a piece as they were noted. Valid until the next
    /// call.
    std::span<const Word> Sort();

    /// Forgets all words, which have been written.
    void Clear() { words_.clear(); }

private:
    static constexpr std::size_t kMaxWords = std::size_t{2} << 20U;

    std::vector<Word> words_;
    std::vector<Word> sorted_;
    std::vector<std::uint32_t> places_; ///< of each piece's next word in sorted_
};

} // namespace thntfs
