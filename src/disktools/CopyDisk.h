#pragma once

#include "disktools/CopyLedger.h"
#include "platform/system/Bytes.h"

#include <cstdint>

namespace thntfs {

class File;

/// Sectors of one transfer of a copy.
inline constexpr std::uint32_t kCopyTransferSectors = 256;

/// Where the first transfer carries the size of the source, in sectors (u64) and of a sector, in bytes (u16).
inline constexpr std::uint64_t kStampedTotalOffset = 432;
inline constexpr std::uint64_t kStampedSectorBytesOffset = 444;

/// Writes the two stamps over the copy of sector 0.
void StampFirstSector(Bytes firstSector);

/// Writes a block of a copy at a byte of the target. True where it is there; false where the code was 0 or
/// 1784, which the copy passes over. Any other code shows the system's text in a box and throws
/// CUserException.
bool WriteBlock(File& target, std::uint64_t offset, ConstBytes block);

/// Bytes that a copy of SourceDisk puts into its target: the first transfer is always a full one.
std::uint64_t CopiedBytes(std::uint64_t totalSectors, std::uint32_t sectorsPerTransfer);

/// Copies SourceDisk to a target from end to end, with CopyPosition before each transfer but the first, and
/// after the last. ProgressDone of ProgressTotal count the sectors of this run. A bad sector is zeros in the
/// target.
///
/// Gives true where it ran out, false where it was stopped. A fatal failure of the source or the target
/// shows its box and ends the copy too, without a last CopyPosition, and counts as running out. `ledger`, if
/// there is one, tells at any end what is in the target.
bool CopyDisk(File& target, std::uint64_t totalSectors, std::uint32_t sectorsPerTransfer,
              CopyLedger* ledger = nullptr);

/// Goes on with a copy: reads and writes what the ledger holds for unread and nothing else. The target then
/// is as one run would have made it.
bool ResumeCopy(File& target, std::uint64_t totalSectors, std::uint32_t sectorsPerTransfer,
                CopyLedger& ledger);

/// Tries the bad sectors of a copy again, one by one, up to `passes` times, and writes what can now be read.
/// Progress goes to JobProgress, counted in sectors of the pass. What it gives, and the end at a
/// fatal failure, are as in CopyDisk.
bool RetryBadSectors(File& target, unsigned passes, CopyLedger& ledger);

} // namespace thntfs
