#pragma once

#include "cli/Options.h"
#include "cli/TerminalHost.h"

namespace thntfs {

/// Searches the open medium for lost volumes by the words' method and range, with progress; each volume is
/// told as it is found. Gives an exit code: kExitDoneInPart where the search was stopped or met a fatal
/// error, with what it found in the list.
int SearchMedium(const Options& options, TerminalHost& host);

} // namespace thntfs
