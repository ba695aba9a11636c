#include "engine/RunList.h"

#include <algorithm>
#include <new>

namespace thntfs {

namespace {

constexpr std::size_t kMaxFieldBytes = 4;

std::uint32_t FieldValue(ConstBytes field) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < field.size(); ++i) {
        value |= static_cast<std::uint32_t>(field[i]) << (8 * i);
    }
    return value;
}

std::uint64_t SignedFieldValue(ConstBytes field) {
    std::uint64_t value = FieldValue(field);
    if ((field.back() & 0x80U) != 0) {
        value |= ~std::uint64_t{0} << (8 * field.size());
    }
    return value;
}

bool IsAllOnes(ConstBytes field) {
    return !field.empty() &&
           std::all_of(field.begin(), field.end(), [](std::uint8_t b) { return b == 0xFF; });
}

} // namespace

int DecodeRunList(ConstBytes buffer, std::uint64_t offset, std::vector<MftExtent>& extents) try {
    std::uint64_t cluster = 0;
    for (std::uint64_t at = offset;;) {
        const std::uint8_t header = U8At(buffer, at);
        const std::size_t lengthBytes = header & 0x0FU;
        const std::size_t offsetBytes = header >> 4U;
        if (header == 0 || lengthBytes > kMaxFieldBytes || offsetBytes > kMaxFieldBytes) {
            return 1;
        }
        const ConstBytes length = Part(buffer, at + 1, lengthBytes);
        const ConstBytes start = Part(buffer, at + 1 + lengthBytes, offsetBytes);
        if (length.size() < lengthBytes || start.size() < offsetBytes || IsAllOnes(length) ||
            IsAllOnes(start)) {
            return 1;
        }
        MftExtent extent;
        if (offsetBytes != 0) {
            cluster += SignedFieldValue(start);
            extent.Clusters = FieldValue(length);
            extent.StartCluster = cluster;
        }
        extents.push_back(extent);
        at += 1 + lengthBytes + offsetBytes;
    }
} catch (const std::bad_alloc&) {
    return 1;
}

} // namespace thntfs
