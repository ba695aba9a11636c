#pragma once

#include <cstdint>
#include <vector>

namespace thntfs {

class Medium;

/// The block table of a dynamic VHD. The library takes any place in it for a block, also one in the middle of
/// the headers or of another block.
class VhdBlocks {
public:
    /// The file is a VHD with a footer at its end. Throws ImageFault where it has no table that can be read.
    explicit VhdBlocks(Medium& file);

    /// Bytes from a byte offset of the disk on, at most `most`, that the table gives one place in the file,
    /// or none. 0 where what it tells can't be.
    [[nodiscard]] std::uint64_t SoundBytes(std::uint64_t offset, std::uint64_t most) const;

private:
    [[nodiscard]] bool IsAlone(std::uint32_t sector) const;

    std::uint64_t fileBytes_;
    std::uint64_t blockBytes_ = 0;
    std::uint64_t bitmapBytes_ = 0; ///< in front of each block
    std::uint64_t tableEnd_ = 0;
    std::vector<std::uint32_t> sectors_; ///< of each block's bitmap
    std::vector<std::uint32_t> rising_;  ///< the same in rising order, without blocks that aren't there
};

} // namespace thntfs
