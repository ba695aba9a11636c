#pragma once

#include "support/VolumeBuilderBytes.h"

#include <algorithm>

namespace thntfs::test {

/// A chunk with its header: `compressed` tells its bit 15; the length is the data's.
inline ByteVector Chunk(bool compressed, const ByteVector& data) {
    const auto header = static_cast<std::uint16_t>((compressed ? 0xB000U : 0x3000U) | (data.size() - 1));
    ByteVector bytes = {static_cast<std::uint8_t>(header), static_cast<std::uint8_t>(header >> 8U)};
    AppendBytes(bytes, data);
    return bytes;
}

/// The tokens of a chunk: matches with the byte before, with the middle of what came, or with the chunk's
/// start.
inline ByteVector ChunkTokens(ConstBytes plain) {
    ByteVector out;
    for (std::size_t at = 0; at < plain.size();) {
        const std::size_t flags = out.size();
        out.push_back(0);
        for (unsigned token = 0; token < 8 && at < plain.size(); ++token) {
            unsigned lengthBits = 12;
            for (std::size_t reach = 16; reach < at; reach *= 2) {
                --lengthBits;
            }
            const std::size_t most = std::min(plain.size() - at, (std::size_t{1} << lengthBits) + 2);
            std::pair<std::size_t, std::size_t> best; // length, distance
            for (const std::size_t back : {std::min<std::size_t>(at, 1), at / 2, at}) {
                const ConstBytes here = plain.subspan(at, most);
                const auto other = std::mismatch(here.begin(), here.end(), plain.begin() + (at - back));
                best = back == 0 ? best : std::max(best, {std::size_t(other.first - here.begin()), back});
            }
            if (best.first < 3) {
                out.push_back(plain[at++]);
                continue;
            }
            const std::size_t word = (best.second - 1) << lengthBits | (best.first - 3);
            AppendBytes(out, ByteVector{std::uint8_t(word), std::uint8_t(word >> 8U)});
            out[flags] = std::uint8_t(out[flags] | 1U << token);
            at += best.first;
        }
    }
    return out;
}

/// LZNT1 data: a chunk for each 4096 bytes, stored as it is where tokens don't make it shorter.
inline ByteVector CompressLznt1(ConstBytes plain) {
    ByteVector out;
    for (; !plain.empty(); plain = plain.subspan(std::min<std::size_t>(4096, plain.size()))) {
        const ConstBytes chunk = plain.first(std::min<std::size_t>(4096, plain.size()));
        const ByteVector tokens = ChunkTokens(chunk);
        const bool shorter = tokens.size() < chunk.size();
        AppendBytes(out, Chunk(shorter, shorter ? tokens : ByteVector(chunk.begin(), chunk.end())));
    }
    return out;
}

} // namespace thntfs::test
