#include "content/UnitDecoder.h"

#include "engine/LittleEndian.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace thntfs {

namespace {

constexpr std::size_t kUnitChunkBytes = 4096;
constexpr std::uint16_t kChunkLengthBits = 0x0FFF;
constexpr std::uint16_t kChunkSignature = 0x3000;
constexpr std::uint16_t kChunkSignatureBits = 0x7000;
constexpr std::uint16_t kChunkCompressed = 0x8000;

/// Decodes the tokens of one chunk into 4096 bytes of its own.
class TokenDecoder {
public:
    explicit TokenDecoder(ConstBytes chunk)
        : in_(chunk.data())
        , end_(chunk.data() + chunk.size()) {}

    /// False where the tokens make no sense.
    bool Run() {
        while (in_ < end_) {
            unsigned flags = *in_++;
            for (unsigned token = 0; token < 8 && in_ < end_; ++token, flags >>= 1U) {
                if (!((flags & 1U) != 0 ? CopyMatch() : CopyLiteral())) {
                    return false;
                }
            }
        }
        return true;
    }

    [[nodiscard]] ConstBytes Output() const { return ConstBytes(out_).first(size_); }

private:
    bool CopyLiteral() {
        if (size_ == kUnitChunkBytes) {
            return false;
        }
        out_[size_++] = *in_++;
        return true;
    }

    // How many bits of a token are its length moves with the place in the chunk.
    bool CopyMatch() {
        if (end_ - in_ < 2 || size_ == 0) {
            return false;
        }
        const unsigned token = in_[0] | unsigned{in_[1]} << 8U;
        in_ += 2;
        const auto places = static_cast<unsigned>(std::bit_width(size_ - 1));
        const unsigned lengthBits = places > 4 ? 16 - places : 12;
        const std::size_t distance = (token >> lengthBits) + 1;
        const std::size_t length = (token & ((1U << lengthBits) - 1)) + 3;
        if (distance > size_ || length > kUnitChunkBytes - size_) {
            return false;
        }
        CopyWithin(distance, length);
        return true;
    }

    // A match may reach into what it writes, and repeats it then.
    void CopyWithin(std::size_t distance, std::size_t length) {
        std::uint8_t* to = out_ + size_;
        const std::uint8_t* from = to - distance;
        size_ += length;
        if (distance >= length) {
            std::memcpy(to, from, length);
        } else if (distance == 1) {
            std::memset(to, *from, length);
        } else {
            for (std::size_t i = 0; i < length; ++i) {
                to[i] = from[i];
            }
        }
    }

    const std::uint8_t* in_;
    const std::uint8_t* end_;
    std::uint8_t out_[kUnitChunkBytes];
    std::size_t size_ = 0;
};

// Puts what a chunk gives into its place, which may be the shorter one at the end.
void PutChunk(ConstBytes chunk, Bytes place) {
    const std::size_t bytes = std::min(chunk.size(), place.size());
    std::copy_n(chunk.begin(), bytes, place.begin());
    std::fill(place.begin() + static_cast<std::ptrdiff_t>(bytes), place.end(), std::uint8_t{0});
}

bool PutDecoded(std::uint16_t header, ConstBytes data, Bytes place) {
    if ((header & kChunkCompressed) == 0) {
        PutChunk(data, place);
        return data.size() <= kUnitChunkBytes;
    }
    TokenDecoder decoder(data);
    const bool sound = decoder.Run();
    PutChunk(decoder.Output(), place);
    return sound;
}

} // namespace

UnitResult DecompressUnit(ConstBytes source, Bytes target) {
    UnitResult result{.Consumed = 0, .Sound = true, .Ended = false};
    while (!target.empty()) {
        const std::uint16_t header = U16At(source, result.Consumed);
        if (header == 0) {
            std::fill(target.begin(), target.end(), std::uint8_t{0});
            result.Ended = true;
            result.Consumed = std::min(result.Consumed + 2, source.size());
            break;
        }
        const std::size_t length = (header & kChunkLengthBits) + std::size_t{1};
        const ConstBytes data = Part(source, result.Consumed + 2, length);
        const Bytes place = target.first(std::min(kUnitChunkBytes, target.size()));
        const bool whole = data.size() == length && (header & kChunkSignatureBits) == kChunkSignature;
        result.Sound = PutDecoded(header, data, place) && whole && result.Sound;
        result.Consumed = std::min(result.Consumed + 2 + length, source.size());
        target = target.subspan(place.size());
    }
    return result;
}

} // namespace thntfs
