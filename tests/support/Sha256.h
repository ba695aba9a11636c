#pragma once

#include "platform/system/Bytes.h"

#include <string>

namespace thntfs::test {

/// SHA-256 of bytes as 64 lower-case hex digits.
std::string Sha256Of(ConstBytes bytes);

} // namespace thntfs::test
