#pragma once

#include "engine/Attribute.h"
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
        , end_(bytes.size())
        , vcn_(firstVcn)
        , left_(std::min(endVcn, kVcnLimit) - std::min({firstVcn, endVcn, kVcnLimit})) {}

    /// Over the run list of a non-resident attribute, cut at the attribute's end.
    RunListCursor(ConstBytes record, const Attribute& attribute)
        : RunListCursor(record, attribute.FirstCluster()) {
        at_ = attribute.RunListStart();
        end_ = std::min<std::uint64_t>(attribute.Offset() + attribute.Length(), record.size());
    }

    /// False at the end, and where the list is malformed.
    bool Next(MapRun& run) {
        const std::uint8_t header = at_ < end_ ? bytes_[at_] : 0;
        const unsigned lengthBytes = header & 0x0FU;
        const unsigned deltaBytes = header >> 4U;
        const std::size_t end = at_ + 1 + lengthBytes + deltaBytes;
        if (lengthBytes == 0 || lengthBytes > kMaxField || deltaBytes > kMaxField || end > end_) {
            sound_ = header == 0 && at_ < end_;
            return false;
        }
        const bool hole = deltaBytes == 0;
        const std::uint64_t clusters = Field(at_ + 1, lengthBytes);
        const std::uint64_t lcn = hole ? lcn_ : lcn_ + SignedField(at_ + 1 + lengthBytes, deltaBytes);
        at_ = end;
        if (clusters == 0 || clusters > left_ || (!hole && !FitsVolume(lcn, clusters))) {
            return false;
        }
        run = {vcn_, clusters, hole ? 0 : lcn, hole};
        vcn_ += clusters;
        left_ -= clusters;
        lcn_ = lcn;
        return true;
    }

    /// Asked behind the last run: false where the list was malformed, or had no closing zero.
    [[nodiscard]] bool Sound() const { return sound_; }

    /// The cluster behind the last run.
    [[nodiscard]] std::uint64_t EndVcn() const { return vcn_; }

private:
    static constexpr unsigned kMaxField = 8;

    // The field's bytes on top of zeros.
    [[nodiscard]] std::uint64_t RaisedField(std::size_t at, unsigned width) const {
        std::uint64_t value = 0;
        if (at + sizeof(value) <= bytes_.size()) {
            std::memcpy(&value, bytes_.data() + at, sizeof(value));
        } else {
            std::memcpy(&value, bytes_.data() + at, width);
        }
        return value << 8 * (kMaxField - width);
    }

    [[nodiscard]] std::uint64_t Field(std::size_t at, unsigned width) const {
        return RaisedField(at, width) >> 8 * (kMaxField - width);
    }

    [[nodiscard]] std::uint64_t SignedField(std::size_t at, unsigned width) const {
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(RaisedField(at, width)) >>
                                          8 * (kMaxField - width));
    }

    ConstBytes bytes_; ///< what may be read: fields are quickest where bytes follow them
    std::size_t at_ = 0;
    std::size_t end_; ///< of the list
    std::uint64_t vcn_;
    std::uint64_t left_; ///< clusters up to the last that may come
    std::uint64_t lcn_ = 0;
    bool sound_ = false;
};

} // namespace thntfs
