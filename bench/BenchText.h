#pragma once

#include <cstdint>
#include <vector>

namespace thntfs::bench {

/// `length` bytes of text that compresses about as prose does, by seed.
std::vector<std::uint8_t> MakeText(std::size_t length, std::uint64_t seed);

} // namespace thntfs::bench
