#pragma once

#include "platform/system/Bytes.h"

#include <cstddef>
#include <cstdint>

namespace thntfs {

/// A big-endian number of 4 or 8 bytes at an offset. Bytes beyond the span read as 0.
template <typename Number>
[[nodiscard]] inline Number BigNumberAt(ConstBytes bytes, std::size_t offset) {
    Number value = 0;
    for (std::size_t i = offset; i < offset + sizeof(Number); ++i) {
        value = static_cast<Number>((value << 8U) | (i < bytes.size() ? bytes[i] : 0U));
    }
    return value;
}

/// The same of a little-endian one.
template <typename Number>
[[nodiscard]] inline Number LittleNumberAt(ConstBytes bytes, std::size_t offset) {
    Number value = 0;
    for (std::size_t i = offset + sizeof(Number); i > offset; --i) {
        value = static_cast<Number>((value << 8U) | (i - 1 < bytes.size() ? bytes[i - 1] : 0U));
    }
    return value;
}

} // namespace thntfs
