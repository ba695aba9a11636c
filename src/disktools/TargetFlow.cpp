#include "disktools/TargetFlow.h"

#include "platform/files/File.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr std::uint64_t kReserveBytes = std::uint64_t{1} << 30U;
constexpr std::uint64_t kPendingBytes = std::uint64_t{16} << 20U;

} // namespace

TargetFlow::TargetFlow(File& target, std::uint64_t endBytes)
    : target_(target)
    , endBytes_(endBytes) {}

TargetFlow::~TargetFlow() { target_.ReleaseReserve(); }

void TargetFlow::Before(std::uint64_t offset, std::uint64_t bytes) {
    if (offset + bytes <= reservedEnd_ || offset >= endBytes_) {
        return;
    }
    const std::uint64_t reserve = std::min(std::max(kReserveBytes, bytes), endBytes_ - offset);
    target_.Reserve(offset, reserve);
    reservedEnd_ = offset + reserve;
}

void TargetFlow::After(std::uint64_t offset, std::uint64_t bytes) {
    if (offset != pendingEnd_) {
        pendingFirst_ = offset;
    }
    pendingEnd_ = offset + bytes;
    if (pendingEnd_ - pendingFirst_ >= kPendingBytes) {
        target_.StartSync(pendingFirst_, pendingEnd_ - pendingFirst_);
        pendingFirst_ = pendingEnd_;
    }
}

} // namespace thntfs
