#pragma once

#include "platform/system/Bytes.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace thntfs {

static_assert(std::endian::native == std::endian::little, "stored numbers are read as they lie");

/// A little-endian number at an offset of a span of bytes. A number that would reach beyond the span reads as
/// 0, so a walk over hostile bytes never leaves its buffer.
template <typename Number>
[[nodiscard]] inline Number NumberAt(ConstBytes bytes, std::uint64_t offset) {
    Number value = 0;
    if (offset <= bytes.size() && bytes.size() - offset >= sizeof(Number)) {
        std::memcpy(&value, bytes.data() + offset, sizeof(Number));
    }
    return value;
}

[[nodiscard]] inline std::uint8_t U8At(ConstBytes bytes, std::uint64_t offset) {
    return NumberAt<std::uint8_t>(bytes, offset);
}
[[nodiscard]] inline std::uint16_t U16At(ConstBytes bytes, std::uint64_t offset) {
    return NumberAt<std::uint16_t>(bytes, offset);
}
[[nodiscard]] inline std::uint32_t U32At(ConstBytes bytes, std::uint64_t offset) {
    return NumberAt<std::uint32_t>(bytes, offset);
}
[[nodiscard]] inline std::uint64_t U64At(ConstBytes bytes, std::uint64_t offset) {
    return NumberAt<std::uint64_t>(bytes, offset);
}

/// Puts a number at an offset, little-endian. A place that would reach beyond the span is left alone.
template <typename Number>
inline void PutNumber(Bytes bytes, std::uint64_t offset, Number value) {
    if (offset <= bytes.size() && bytes.size() - offset >= sizeof(Number)) {
        std::memcpy(bytes.data() + offset, &value, sizeof(Number));
    }
}

/// The part of a span that begins at `offset` and holds `length` bytes, cut to what the span has.
[[nodiscard]] inline ConstBytes Part(ConstBytes bytes, std::uint64_t offset, std::uint64_t length) {
    if (offset >= bytes.size()) {
        return {};
    }
    const std::uint64_t left = bytes.size() - offset;
    return bytes.subspan(static_cast<std::size_t>(offset),
                         static_cast<std::size_t>(length < left ? length : left));
}

} // namespace thntfs
