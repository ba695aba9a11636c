#include "content/Lznt1.h"

#include "engine/LittleEndian.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace thntfs {

namespace {

constexpr std::uint16_t kLengthBits = 0x0FFF;
constexpr std::uint16_t kCompressedBit = 0x8000;
constexpr std::size_t kHeaderBytes = 2;
constexpr std::size_t kMinMatch = 3;
constexpr std::uint64_t kChunkBytes = 4096; // that each chunk but the last gives

bool EndsStream(std::uint16_t header) { return (header & kLengthBits) == 0 || (header & kLengthBits) == 3; }

// A token's split into distance and length moves with the position in the chunk.
struct TokenSplit {
    unsigned Shift;
    std::uint16_t LengthMask;
};

TokenSplit SplitAt(std::uint16_t chunkOut) {
    const auto place = static_cast<std::uint16_t>(chunkOut == 0 ? 0 : chunkOut - 1);
    const auto bits = static_cast<unsigned>(std::bit_width(place));
    const unsigned halvings = bits > 4 ? bits - 4 : 0;
    return {12U - halvings, static_cast<std::uint16_t>(kLengthBits >> halvings)};
}

class ChunkDecoder {
public:
    /// `behind` is the byte that follows the chunk: a token that begins with the chunk's last byte takes it
    /// along.
    ChunkDecoder(ConstBytes chunk, std::uint8_t behind, Bytes target)
        : chunk_(chunk)
        , target_(target)
        , behind_(behind) {}

    /// Decodes tokens up to the end of the chunk and gives the bytes put out, at most the target's size.
    std::size_t Run() {
        while (chunkIn_ < chunk_.size()) {
            const unsigned flags = chunk_[chunkIn_++];
            if (flags == 0 && CopyEightLiterals()) {
                continue;
            }
            if (!DecodeGroup(flags)) {
                break;
            }
        }
        return std::min<std::size_t>(chunkOut_, target_.size());
    }

private:
    bool CopyEightLiterals() {
        if (chunk_.size() - chunkIn_ < 8 || target_.size() < 8 || chunkOut_ > target_.size() - 8 ||
            chunkOut_ > UINT16_MAX - 8) {
            return false;
        }
        std::memcpy(target_.data() + chunkOut_, chunk_.data() + chunkIn_, 8);
        chunkIn_ += 8;
        chunkOut_ = static_cast<std::uint16_t>(chunkOut_ + 8);
        return true;
    }

    // The eight tokens behind a flag byte; false where the output is full at a literal.
    bool DecodeGroup(unsigned flags) {
        for (unsigned token = 0; token < 8 && chunkIn_ < chunk_.size(); ++token, flags >>= 1U) {
            if ((flags & 1U) != 0) {
                CopyMatch(TokenAt(chunkIn_));
                chunkIn_ += 2;
            } else if (chunkOut_ >= target_.size()) {
                return false;
            } else {
                target_[chunkOut_++] = chunk_[chunkIn_++];
            }
        }
        return true;
    }

    [[nodiscard]] std::uint16_t TokenAt(std::size_t at) const {
        return chunk_.size() - at >= 2 ? NumberAt<std::uint16_t>(chunk_, at)
                                       : static_cast<std::uint16_t>(chunk_[at] | behind_ << 8U);
    }

    void CopyMatch(std::uint16_t token) {
        const TokenSplit split = SplitAt(chunkOut_);
        const std::size_t distance = (static_cast<std::size_t>(token) >> split.Shift) + 1;
        const std::size_t length = (token & split.LengthMask) + kMinMatch;
        const std::size_t from = distance > chunkOut_ ? 0 : chunkOut_ - distance;
        if (chunkOut_ == 0) {
            // Nothing stands there to repeat.
            std::fill_n(target_.begin(), std::min(length, target_.size()), std::uint8_t{0});
        }
        if (chunkOut_ + length <= target_.size() && chunkOut_ + length <= UINT16_MAX) {
            CopyWithin(from, length);
        } else {
            CopyToTheEnd(from, length);
        }
    }

    // A match may overlap itself, and then repeats what it has just written.
    void CopyWithin(std::size_t from, std::size_t length) {
        std::uint8_t* out = target_.data() + chunkOut_;
        const std::uint8_t* source = target_.data() + from;
        const std::size_t gap = chunkOut_ - from;
        if (gap >= 8 && chunkOut_ + length + 8 <= target_.size()) {
            for (std::size_t i = 0; i < length; i += 8) {
                std::memcpy(out + i, source + i,
                            8); // may write up to 7 bytes more, which the next token replaces
            }
        } else if (gap >= length) {
            std::memcpy(out, source, length);
        } else {
            for (std::size_t i = 0; i < length; ++i) {
                out[i] = source[i];
            }
        }
        chunkOut_ = static_cast<std::uint16_t>(chunkOut_ + length);
    }

    void CopyToTheEnd(std::size_t from, std::size_t length) {
        for (std::size_t i = 0; i < length && chunkOut_ < target_.size() && from + i < target_.size(); ++i) {
            target_[chunkOut_] = target_[from + i];
            ++chunkOut_;
        }
    }

    ConstBytes chunk_;
    Bytes target_;
    std::uint8_t behind_;
    std::size_t chunkIn_ = 0;
    std::uint16_t chunkOut_ = 0;
};

// A chunk that doesn't fit counts for all the room that is left, and none of it is copied.
std::size_t CopyPlainChunk(ConstBytes chunk, std::size_t length, Bytes target) {
    const std::size_t copied = length > target.size() ? 0 : chunk.size();
    const std::size_t out = std::min(length, target.size());
    std::copy_n(chunk.begin(), copied, target.begin());
    std::fill(target.begin() + static_cast<std::ptrdiff_t>(copied),
              target.begin() + static_cast<std::ptrdiff_t>(out), std::uint8_t{0});
    return out;
}

} // namespace

bool IsChunkChain(ConstBytes bytes) {
    for (std::size_t position = 0;;) {
        const std::uint16_t length = U16At(bytes, position) & kLengthBits;
        position += kHeaderBytes;
        if (length == 3) {
            return position <= bytes.size();
        }
        position += length == 0 ? 0U : length + 1U;
        if (position >= bytes.size()) {
            return position == bytes.size();
        }
        if (length == 0) {
            return true;
        }
    }
}

std::size_t DecompressLznt1(ConstBytes source, Bytes target) {
    std::size_t in = 0;
    std::size_t out = 0;
    do {
        const std::uint16_t header = U16At(source, in);
        if (EndsStream(header)) {
            break;
        }
        const std::size_t length = (header & kLengthBits) + 1U;
        const ConstBytes chunk = Part(source, in + kHeaderBytes, length);
        const Bytes room = target.subspan(out);
        const std::uint8_t behind = U8At(source, in + kHeaderBytes + length);
        out += (header & kCompressedBit) != 0 ? ChunkDecoder(chunk, behind, room).Run()
                                              : CopyPlainChunk(chunk, length, room);
        in += kHeaderBytes + length;
    } while (in < source.size() && out < target.size());
    return out;
}

std::size_t ChunksEnd(ConstBytes chain, std::uint64_t outBytes) {
    std::size_t position = 0;
    for (std::uint64_t given = 0; given < outBytes && position < chain.size(); given += kChunkBytes) {
        const std::uint16_t header = U16At(chain, position);
        if (EndsStream(header)) {
            return chain.size();
        }
        position += kHeaderBytes + (header & kLengthBits) + 1U;
    }
    return std::min(position, chain.size());
}

} // namespace thntfs
