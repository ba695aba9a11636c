#pragma once

#include "platform/system/Bytes.h"
#include "platform/system/ErrorCodes.h"

namespace thntfs {

class File;

/// False for codes 0 and 1784, with which a write to any output counts as done.
bool IsFailedWrite(ErrorCode code);

/// Shows the system's text of a failed write in a box and throws CUserException. A write that passes gives
/// back control.
void RaiseFailedWrite(ErrorCode code);

/// Writes bytes at the current position of an output file. Gives 1, or raises the failure.
int WriteCatalogue(File& file, ConstBytes bytes);

} // namespace thntfs
