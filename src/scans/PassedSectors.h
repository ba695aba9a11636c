#pragma once

#include "platform/system/Bytes.h"

#include <cstdint>
#include <vector>

namespace thntfs {

/// Looks for records at the sectors that a walk by whole records passes over, in the bytes that the walk
/// reads anyway. Clusters smaller than a record may begin one at any sector; where they are larger each
/// record begins where the walk looks, unless the volume's measures are a guess, and what else looks like a
/// record is a copy within a file.
class PassedSectors {
public:
    /// `firstSector`: where the walk begins. Off where nothing is to be looked for.
    PassedSectors(std::uint64_t firstSector, std::uint64_t endSector, bool on);

    /// Bytes as they were read, from an absolute sector on. A record may go on in the next bytes.
    void Look(ConstBytes bytes, std::uint64_t sector);

    /// Absolute sectors of the sound records found, in order.
    [[nodiscard]] const std::vector<std::uint64_t>& Found() const { return found_; }

private:
    void LookInJoint(ConstBytes bytes, std::uint64_t sector);
    void LookAt(ConstBytes record, std::uint64_t sector);
    [[nodiscard]] bool IsPassed(std::uint64_t sector) const;

    std::uint64_t firstSector_;
    std::uint64_t endSector_;
    bool on_;
    std::vector<std::uint8_t> record_;
    std::vector<std::uint8_t> tail_; ///< of the bytes before, in which no record fits
    std::uint64_t tailEnd_ = 0;      ///< sector behind them
    std::vector<std::uint64_t> found_;
};

} // namespace thntfs
