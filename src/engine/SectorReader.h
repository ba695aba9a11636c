#pragma once

#include "platform/system/Bytes.h"
#include "platform/system/ErrorCodes.h"

#include <cstdint>
#include <vector>

namespace thntfs {

inline constexpr std::uint64_t kAllWereTried = ~std::uint64_t{0};

/// What became of a read. Sectors are absolute.
struct ReadOutcome {
    ErrorCode Code = kErrorNone;               ///< 0 or what the last single-sector read left
    std::vector<std::uint64_t> BadSectors;     ///< tried one by one and not given, in order
    std::uint64_t UntriedFrom = kAllWereTried; ///< the first that no read of its own was made for

    /// True where each sector has been given.
    [[nodiscard]] bool Whole() const { return BadSectors.empty() && UntriedFrom == kAllWereTried; }
};

/// The one road by which the engine reads the medium. Sector N begins at byte N * SourceDisk.BytesPerSector.
///
/// Reads buffer.size() bytes at `firstSector`. The caller clears the buffer before each call: a sector that
/// can't be read stays as it was, and so does what lies behind the end of the medium.
///
/// In a job (ScanRunFlag set) a failed request is walked sector by sector; codes 23 and 27 pass a bad sector
/// over, 1117 costs a second's pause first. Outside a job a failed request is given up with status 0.
/// Throws CUserException, after a box with the system's text, on any other code.
ReadOutcome ReadSectors(Bytes buffer, std::uint64_t firstSector);

/// ReadSectors into a buffer that is cleared for the caller, and only where that shows: a read that succeeds
/// within the medium overwrites it all.
ReadOutcome ReadSectorsCleared(Bytes buffer, std::uint64_t firstSector);

/// One attempt at a read. A failure leaves a line in the process log. Never throws.
ErrorCode ReadSectorsOnce(Bytes buffer, std::uint64_t firstSector);

/// One attempt at a read ahead, into a buffer that is cleared for the caller. A failure is nobody's concern:
/// it leaves no line in the log, and the caller then reads what it needs by ReadSectors. Gives false where it
/// failed.
bool TryReadSectors(Bytes buffer, std::uint64_t firstSector);

/// Size of the medium in bytes, 0 where none is open.
std::uint64_t MediumBytes();

/// What a job that makes many reads asks before each: passes the gate of the user's pause, then tells whether
/// ScanRunFlag is still set.
bool JobMayGoOn();

/// Shows the system's text for a code in a blocking box and throws CUserException.
[[noreturn]] void RaiseFatal(ErrorCode code);

/// Takes the sector size of an image that has just been opened from the 16-bit word at byte 444 of its first
/// 512 bytes, where the image writer leaves it. An image that can't be read gives 0.
void ProbeImageSectorSize();

} // namespace thntfs
