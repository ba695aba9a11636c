#pragma once

#include <cstdint>
#include <string>

namespace thntfs {

/// What a scan or a search should have read and could not. A healthy medium gives none of it; a stop by the
/// user isn't counted.
struct ScanLosses {
    std::uint64_t Unread = 0;    ///< records in sectors that can't be read
    std::uint64_t BehindEnd = 0; ///< records whose place lies behind the end of the medium
    std::uint64_t Missing = 0;   ///< records in pieces of the table whose place isn't known
    std::uint64_t Damaged = 0;   ///< records whose bytes are damaged
    std::uint64_t Sectors = 0;   ///< sectors that a walk over sectors could not read
    bool NoTable = false;        ///< not one record stands where the table should be

    [[nodiscard]] std::uint64_t Records() const { return Unread + BehindEnd + Missing + Damaged; }
    [[nodiscard]] bool Any() const { return Records() != 0 || Sectors != 0 || NoTable; }
};

/// The losses in words, without a full stop: "At least 64 records could not be read (60 in unreadable
/// sectors, 4 damaged)". Empty where there are none.
std::string LossText(const ScanLosses& losses);

} // namespace thntfs
