#pragma once

#include "cli/Options.h"

#include <string>

namespace thntfs {

/// Opens the medium of a path as SourceDisk, or says on standard error why it can't be opened. Gives an exit
/// code.
int OpenMediumOrTell(const std::string& path);

/// Writes to the log which disk or image has been opened, and where its volumes come from.
void LogMediumChosen(const Options& options);

} // namespace thntfs
