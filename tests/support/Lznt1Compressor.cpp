#include "support/Lznt1Compressor.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace thntfs::test {

namespace {

using ByteVector = std::vector<std::uint8_t>;

constexpr std::size_t kChunkBytes = 4096;
constexpr std::size_t kMinMatch = 3;
constexpr std::size_t kHashSlots = 4096;
constexpr int kMaxTries = 32;

struct Match {
    std::size_t Length = 0;
    std::size_t Distance = 0;
};

/// Positions of a chunk by the hash of the three bytes that stand there, newest first.
class MatchFinder {
public:
    explicit MatchFinder(ConstBytes chunk)
        : chunk_(chunk) {
        heads_.fill(-1);
        older_.fill(-1);
    }

    void Remember(std::size_t position) {
        if (position + kMinMatch <= chunk_.size()) {
            std::int32_t& head = heads_[HashAt(position)];
            older_[position] = head;
            head = static_cast<std::int32_t>(position);
        }
    }

    [[nodiscard]] Match Longest(std::size_t position, std::size_t maxLength) const {
        Match best;
        if (position + kMinMatch > chunk_.size()) {
            return best;
        }
        std::int32_t candidate = heads_[HashAt(position)];
        for (int tries = 0; candidate >= 0 && tries < kMaxTries; ++tries) {
            const auto from = static_cast<std::size_t>(candidate);
            const std::size_t length = CommonLength(from, position, maxLength);
            if (length >= kMinMatch && length > best.Length) {
                best = {length, position - from};
            }
            candidate = older_[from];
        }
        return best;
    }

private:
    [[nodiscard]] std::size_t HashAt(std::size_t position) const {
        const auto three = static_cast<std::uint32_t>(chunk_[position] | (chunk_[position + 1] << 8) |
                                                      (chunk_[position + 2] << 16));
        return (three * 2654435761U) >> 20;
    }

    [[nodiscard]] std::size_t CommonLength(std::size_t from, std::size_t to, std::size_t maxLength) const {
        const std::size_t limit = std::min(maxLength, chunk_.size() - to);
        std::size_t length = 0;
        while (length < limit && chunk_[from + length] == chunk_[to + length]) {
            ++length;
        }
        return length;
    }

    ConstBytes chunk_;
    std::array<std::int32_t, kHashSlots> heads_{};
    std::array<std::int32_t, kChunkBytes> older_{};
};

/// Bits of a token that hold the length, at a position in the chunk: the farther in, the more the distance
/// needs.
int LengthBitsAt(std::size_t position) {
    int bits = 12;
    for (std::size_t reach = 16; reach < position; reach *= 2) {
        --bits;
    }
    return bits;
}

void AppendWord(ByteVector& out, std::size_t word) {
    out.push_back(static_cast<std::uint8_t>(word & 0xFF));
    out.push_back(static_cast<std::uint8_t>(word >> 8));
}

/// Appends one token and gives the number of bytes that it stands for; `copied` tells whether it is a copy.
std::size_t AppendToken(ByteVector& out, ConstBytes chunk, const MatchFinder& finder, std::size_t position,
                        bool& copied) {
    const int lengthBits = LengthBitsAt(position);
    const Match match = finder.Longest(position, (std::size_t{1} << lengthBits) - 1 + kMinMatch);
    copied = match.Length != 0;
    if (!copied) {
        out.push_back(chunk[position]);
        return 1;
    }
    AppendWord(out, ((match.Distance - 1) << lengthBits) | (match.Length - kMinMatch));
    return match.Length;
}

ByteVector CompressChunk(ConstBytes chunk) {
    ByteVector out;
    MatchFinder finder(chunk);
    std::size_t position = 0;
    while (position < chunk.size()) {
        const std::size_t flagsAt = out.size();
        unsigned flags = 0;
        out.push_back(0);
        for (unsigned token = 0; token < 8 && position < chunk.size(); ++token) {
            bool copied = false;
            const std::size_t taken = AppendToken(out, chunk, finder, position, copied);
            flags |= copied ? 1U << token : 0U;
            for (std::size_t step = 0; step < taken; ++step) {
                finder.Remember(position++);
            }
        }
        out[flagsAt] = static_cast<std::uint8_t>(flags);
    }
    return out;
}

void AppendChunk(ByteVector& out, ConstBytes chunk) {
    const ByteVector packed = CompressChunk(chunk);
    const bool shorter = packed.size() < chunk.size();
    const std::size_t length = shorter ? packed.size() : chunk.size();
    AppendWord(out, (shorter ? 0x8000U : 0U) | 0x3000U | (length - 1));
    if (shorter) {
        out.insert(out.end(), packed.begin(), packed.end());
    } else {
        out.insert(out.end(), chunk.begin(), chunk.end());
    }
}

} // namespace

std::vector<std::uint8_t> CompressLznt1(ConstBytes source, bool endMark) {
    ByteVector out;
    for (std::size_t begin = 0; begin < source.size(); begin += kChunkBytes) {
        AppendChunk(out, source.subspan(begin, std::min(kChunkBytes, source.size() - begin)));
    }
    if (endMark) {
        AppendWord(out, 0);
    }
    return out;
}

} // namespace thntfs::test
