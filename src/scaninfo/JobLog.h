#pragma once

#include "engine/Host.h"
#include "engine/StoredRecords.h"

#include <cstdint>
#include <string>

namespace thntfs {

struct DiskInfo;

// The process log's lines of the steps from a medium to a catalogue, each sent to the host.

/// The medium has been chosen. `searched`: its volumes come from a search, not from its partition table.
void LogImageChosen(const std::string& path, bool searched);
void LogDiskChosen(const DiskInfo& disk, bool searched);

/// A candidate has been taken into use; `number` counts from 1.
ProcessLogEntry PartitionChosenEntry(unsigned number, const PartitionCandidate& candidate);

void LogSearchStarted(std::uint64_t firstSector, std::uint64_t endSector);
/// Followed by a line where the search has left something out.
void LogSearchEnded(bool complete);

void LogBasicScanStarted();
void LogBasicScanEnded(bool complete);
void LogTreeFillStarted();
void LogTreeFillEnded();

/// `number` is that of the candidate; the lines show its last digit.
void LogTurboScanStarted(unsigned number);
void LogTurboScanEnded(unsigned number, bool complete);

/// What the scan or the search could not read, if there was anything.
void LogLosses();

/// Records that the scan has left out, if there are any, and whether it found little.
void LogYield();

/// The catalogue's files can't be made, or not opened again.
void LogNoCatalogue();

} // namespace thntfs
