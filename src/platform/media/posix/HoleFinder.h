#pragma once

#include <cstdint>

namespace thntfs {

/// Knows the holes of a sparse file: stretches that the file system stores nothing for and that read as
/// zeros. The system is asked once a stretch. A sparse image of a whole disk is mostly hole, and need not be
/// read to know it.
class HoleFinder {
public:
    explicit HoleFinder(int descriptor)
        : descriptor_(descriptor) {}

    /// True where all of a range, in bytes, lies in a hole.
    bool IsHole(std::uint64_t offset, std::uint64_t bytes);

private:
    void Ask(std::uint64_t offset);

    int descriptor_;
    bool supported_ = true;
    // The stretch asked about last.
    bool hole_ = false;
    std::uint64_t start_ = 0;
    std::uint64_t end_ = 0;
};

} // namespace thntfs
