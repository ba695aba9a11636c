#pragma once

#include <string>

namespace thntfs {

/// Opens the medium of a path as SourceDisk, or says on standard error why it can't be opened. Gives an exit
/// code.
int OpenMediumOrTell(const std::string& path);

} // namespace thntfs
