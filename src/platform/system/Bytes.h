#pragma once

#include <cstdint>
#include <span>

namespace thntfs {

using Bytes = std::span<std::uint8_t>;
using ConstBytes = std::span<const std::uint8_t>;

} // namespace thntfs
