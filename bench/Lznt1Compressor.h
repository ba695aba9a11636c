#pragma once

#include "platform/system/Bytes.h"

#include <vector>

namespace thntfs::test {

/// LZNT1 data of the source: one chunk for each 4096 bytes, compressed where that is shorter and stored as it
/// is where it isn't. Where `endMark` is set, a zero word closes the data.
std::vector<std::uint8_t> CompressLznt1(ConstBytes source, bool endMark = false);

} // namespace thntfs::test
