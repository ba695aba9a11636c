#include "Lznt1Compressor.h"

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
            const auto here = chunk_.begin() + static_cast<std::ptrdiff_t>(position);
            const auto end =
                here + static_cast<std::ptrdiff_t>(std::min(maxLength, chunk_.size() - position));
            const auto length = static_cast<std::size_t>(
                std::mismatch(here, end, chunk_.begin() + static_cast<std::ptrdiff_t>(from)).first - here);
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

ByteVector CompressChunk(ConstBytes chunk) {
    ByteVector out;
    MatchFinder finder(chunk);
    std::size_t position = 0;
    while (position < chunk.size()) {
        const std::size_t flagsAt = out.size();
        unsigned flags = 0;
        out.push_back(0);
        for (unsigned token = 0; token < 8 && position < chunk.size(); ++token) {
            const int lengthBits = LengthBitsAt(position);
            const Match match = finder.Longest(position, (std::size_t{1} << lengthBits) - 1 + kMinMatch);
            if (match.Length != 0) {
                AppendWord(out, ((match.Distance - 1) << lengthBits) | (match.Length - kMinMatch));
                flags |= 1U << token;
            } else {
                out.push_back(chunk[position]);
            }
            for (const std::size_t end = position + std::max<std::size_t>(match.Length, 1); position < end;) {
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
    const ConstBytes stored = shorter ? ConstBytes(packed) : chunk;
    AppendWord(out, (shorter ? 0x8000U : 0U) | 0x3000U | (stored.size() - 1));
    out.insert(out.end(), stored.begin(), stored.end());
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
