#pragma once

#include <cstdint>
#include <vector>

namespace thntfs {

struct ReadOutcome;

/// The account of what of a file's data could not be had, and is zeros in what was put out.
struct MissingData {
    std::uint64_t BytesBehindEnd = 0;    ///< bytes that would lie behind the end of the medium
    std::uint64_t SectorsUnread = 0;     ///< sectors of the data that stayed unreadable
    std::uint64_t FirstSectorUnread = 0; ///< the first of them, on the medium

    [[nodiscard]] bool None() const { return BytesBehindEnd == 0 && SectorsUnread == 0; }

    /// Adds one sector that could not be read.
    void AddSector(std::uint64_t sector);

    /// Adds what lies behind the end of the medium of `bytes` bytes from an absolute sector on.
    void AddBehindEnd(std::uint64_t sector, std::uint64_t bytes);

    /// Adds what of the data that a read was to give, `bytes` bytes from `sector` on, lies behind the end of
    /// the medium or could not be read.
    void AddMissingOf(const ReadOutcome& outcome, std::uint64_t sector, std::uint64_t bytes);
};

/// The sectors before `end` that a read could not give, in order.
std::vector<std::uint64_t> UnreadSectors(const ReadOutcome& outcome, std::uint64_t end);

} // namespace thntfs
