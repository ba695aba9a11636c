#pragma once

#include "platform/system/Bytes.h"

#include <array>
#include <cstdint>
#include <string>

namespace thntfs::test {

/// SHA-256 of bytes that come in pieces.
class Sha256 {
public:
    void Add(ConstBytes bytes);
    void AddZeros(std::uint64_t count);
    /// The digest as 64 lower-case hex digits. To be called once, at the end.
    std::string Finish();

private:
    void Compress(const std::uint8_t* block);

    std::array<std::uint32_t, 8> state_{0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                        0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::array<std::uint8_t, 64> block_{};
    std::uint64_t length_ = 0; ///< bytes so far
};

std::string Sha256Of(ConstBytes bytes);

} // namespace thntfs::test
