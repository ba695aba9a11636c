#include "content/ContentDigest.h"

#include "content/ContentJob.h"

#include <algorithm>
#include <vector>

namespace thntfs {

namespace {

constexpr std::uint64_t kMaxHoles = std::uint64_t{64} << 30U;
constexpr std::uint64_t kZerosAtATime = 1U << 20U;

} // namespace

void ContentDigest::Add(ConstBytes bytes) { hash_.Add(bytes); }

void ContentDigest::AddHole(std::uint64_t bytes) {
    holes_ += std::min(bytes, kMaxHoles + 1 - std::min(holes_, kMaxHoles + 1));
    if (holes_ > kMaxHoles) {
        return;
    }
    static const std::vector<std::uint8_t> kZeros(kZerosAtATime);
    while (bytes > 0 && !ContentStopped()) {
        const std::uint64_t piece = std::min(bytes, kZerosAtATime);
        hash_.Add(ConstBytes(kZeros).first(static_cast<std::size_t>(piece)));
        bytes -= piece;
    }
}

std::string ContentDigest::Take() {
    std::string digest = hash_.Take();
    const bool left = holes_ > kMaxHoles;
    holes_ = 0;
    return left ? std::string() : digest;
}

} // namespace thntfs
