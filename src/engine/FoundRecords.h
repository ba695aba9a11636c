#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace thntfs {

/// Where a search of the whole volume has met records, by the numbers that they give themselves. Records that
/// follow each other take one element. Several may have one number, as copies from before a formatting do.
class FoundRecords {
public:
    /// Takes note of a record. Behind a million places that don't follow each other no more is taken.
    void Note(std::uint32_t number, std::uint64_t sector, std::uint32_t sectorsPerRecord);

    /// Absolute sectors at which records of a number were met, at most 16. Cheap unless a note has been taken
    /// since the last call.
    [[nodiscard]] std::vector<std::uint64_t> SectorsOf(std::uint32_t number);

private:
    struct Stretch {
        std::uint64_t Sector = 0; ///< of the first
        std::uint32_t Number = 0; ///< of the first
        std::uint32_t Count = 0;

        [[nodiscard]] std::uint64_t End() const { return std::uint64_t{Number} + Count; }
    };

    void Sort();

    std::vector<Stretch> stretches_;
    std::vector<std::uint64_t> reach_; ///< of the sorted ones: how far they reach up to each
    std::uint32_t sectorsPerRecord_ = 1;
    bool open_ = false; ///< the last stretch may still grow
};

} // namespace thntfs
