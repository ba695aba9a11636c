#pragma once

#include "cli/Options.h"
#include "cli/TerminalHost.h"

namespace thntfs {

/// Writes to the log that the scan which the words choose begins, before its catalogue is made.
/// `volumeNumber` is that of the volume in use.
void BeginWantedScan(const Options& options, unsigned volumeNumber);

/// Scans the volume in use into the open catalogue, with progress. False where the scan was stopped.
bool RunWantedScan(const Options& options, TerminalHost& host, unsigned volumeNumber);

/// Says what the scan could not read, if anything. Gives kExitFailed where there was no table at all and
/// nothing has told that yet.
int TellScanLosses(const Options& options, const TerminalHost& host);

} // namespace thntfs
