#include "content/ContentDigest.h"

#include "content/ContentJob.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace thntfs {

namespace {

constexpr std::uint64_t kZerosAtATime = 1U << 20U;

} // namespace

void ContentDigest::Add(ConstBytes bytes) {
    if (!left_) {
        hash_.Add(bytes);
    }
}

void ContentDigest::AddHole(std::uint64_t bytes) {
    static const std::vector<std::uint8_t> kZeros(kZerosAtATime);
    while (bytes > 0 && !left_ && !ContentStopped()) {
        const std::uint64_t piece = std::min(bytes, kZerosAtATime);
        hash_.Add(ConstBytes(kZeros).first(static_cast<std::size_t>(piece)));
        bytes -= piece;
    }
}

std::string ContentDigest::Take() {
    std::string digest = hash_.Take();
    return std::exchange(left_, false) ? std::string() : digest;
}

} // namespace thntfs
