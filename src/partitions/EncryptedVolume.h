#pragma once

#include "platform/system/Bytes.h"

namespace thntfs {

/// Whether a boot sector is that of a volume which is encrypted as a whole, a fixed one or a portable one.
bool IsEncryptedBootSector(ConstBytes sector);

} // namespace thntfs
