#pragma once

#include "cli/Options.h"
#include "cli/TerminalHost.h"

namespace thntfs {

/// Takes the volume that the words choose into use, without their choice the only one or the only verified
/// one, and locates its Master File Table. `number` gets that of the volume. Gives an exit code; where it
/// isn't kExitDone, standard error says why. A table that isn't found is no failure for a Turbo Scan.
int TakeWantedVolume(const Options& options, TerminalHost& host, unsigned& number);

/// Says why the partition table gave no volume, and what to do now. Gives kExitFailed.
int TellNoVolumeInTable(const Options& options);

/// Says that an interrupt came before there was anything to show. Gives kExitDoneInPart.
int TellEarlyStop();

} // namespace thntfs
