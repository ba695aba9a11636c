#pragma once

#include "engine/LittleEndian.h"
#include "engine/RunMap.h"

#include <algorithm>

namespace thntfs {

/// Decodes one run list, run by run, without a place to keep them: fields of up to 8 bytes, the second with a
/// sign. Holes come too. For whom RunMap costs too much.
class RunListCursor {
public:
    /// Over the run list at the start of some bytes, whose first cluster is `firstVcn`. Runs that reach
    /// beyond `endVcn` are malformed.
    RunListCursor(ConstBytes bytes, std::uint64_t firstVcn, std::uint64_t endVcn = kVcnLimit)
        : bytes_(bytes)
        , vcn_(firstVcn)
        , endVcn_(std::min(endVcn, kVcnLimit)) {}

    /// False at the end, and where the list is malformed.
    bool Next(MapRun& run) {
        const std::uint8_t header = U8At(bytes_, at_);
        const unsigned lengthBytes = header & 0x0FU;
        const unsigned deltaBytes = header >> 4U;
        const std::size_t end = at_ + 1 + lengthBytes + deltaBytes;
        if (header == 0 || lengthBytes > kMaxField || deltaBytes > kMaxField || end > bytes_.size()) {
            sound_ = header == 0 && at_ < bytes_.size();
            return false;
        }
        const std::uint64_t clusters = Field(at_ + 1, lengthBytes);
        const std::uint64_t lcn = lcn_ + Delta(at_ + 1 + lengthBytes, deltaBytes);
        const bool hole = deltaBytes == 0;
        at_ = end;
        if (clusters == 0 || vcn_ > endVcn_ || clusters > endVcn_ - vcn_ ||
            (!hole && !FitsVolume(lcn, clusters))) {
            return false;
        }
        run = {vcn_, clusters, hole ? 0 : lcn, hole};
        vcn_ += clusters;
        lcn_ = lcn;
        return true;
    }

    /// Asked behind the last run: false where the list was malformed, or had no closing zero.
    [[nodiscard]] bool Sound() const { return sound_; }

    /// The cluster behind the last run.
    [[nodiscard]] std::uint64_t EndVcn() const { return vcn_; }

private:
    static constexpr unsigned kMaxField = 8;

    [[nodiscard]] std::uint64_t Field(std::size_t at, unsigned width) const {
        std::uint64_t value = 0;
        if (width == 0) {
            return value;
        }
        if (at + sizeof(value) <= bytes_.size()) {
            std::memcpy(&value, bytes_.data() + at, sizeof(value));
            return value & ~std::uint64_t{0} >> (8 * (kMaxField - width));
        }
        std::memcpy(&value, bytes_.data() + at, width);
        return value;
    }

    // A number with a sign, of any width.
    [[nodiscard]] std::uint64_t Delta(std::size_t at, unsigned width) const {
        const std::uint64_t value = Field(at, width);
        if (width == 0) {
            return value;
        }
        const std::uint64_t sign = std::uint64_t{1} << (8 * width - 1);
        return (value ^ sign) - sign;
    }

    ConstBytes bytes_;
    std::size_t at_ = 0;
    std::uint64_t vcn_;
    std::uint64_t endVcn_;
    std::uint64_t lcn_ = 0;
    bool sound_ = false;
};

} // namespace thntfs
