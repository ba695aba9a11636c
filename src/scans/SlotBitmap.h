#pragma once

#include <cstdint>
#include <vector>

namespace thntfs {

/// The bitmap of the Master File Table itself, which says what slots are in use: attribute 0xB0 of its own
/// record.
class SlotBitmap {
public:
    /// Reads it from the table of the volume in work. Passes CUserException on.
    SlotBitmap();

    /// Whether a slot of zeros is a lost record. A table without a bitmap tells nothing. One whose bitmap is
    /// lost, as it doesn't know even the records that each volume has, vouches for no slot.
    [[nodiscard]] bool ShouldHoldRecord(std::uint64_t slot) const;

private:
    std::vector<std::uint8_t> bits_;
    bool stated_ = false; ///< the table's record tells of a bitmap
};

} // namespace thntfs
