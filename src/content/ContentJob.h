#pragma once

#include <cstdint>
#include <vector>

namespace thntfs {

struct ReadOutcome;

/// Bytes that the clusters of a volume can hold at the most: the volume's or the medium's size, whichever is
/// more. What a record claims beyond that can't be true.
std::uint64_t VolumeByteLimit();

/// How many of `bytes` bytes from an absolute sector on lie behind the end of the medium.
std::uint64_t BytesBehindMedium(std::uint64_t sector, std::uint64_t bytes);

/// The sectors before `end` that a read could not give, in order.
std::vector<std::uint64_t> UnreadSectors(const ReadOutcome& outcome, std::uint64_t end);

/// Puts a sector of the file's data on the account of what could not be read.
void NoteUnreadSector(std::uint64_t sector);

/// Puts on the account what of the data that a read was to give, `bytes` bytes from `sector` on, lies behind
/// the end of the medium or could not be read.
void NoteMissingData(const ReadOutcome& outcome, std::uint64_t sector, std::uint64_t bytes);

/// The gate between two pieces: true where a saving job has been stopped by ScanRunFlag. A preview runs
/// outside a job and is never stopped.
bool ContentStopped();

/// Sets the progress pair to the bytes written of the file's size and reports it, but not from a preview.
void ReportContentProgress(std::uint64_t size);

} // namespace thntfs
