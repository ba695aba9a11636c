#pragma once

#include "platform/system/Bytes.h"

#include <cstdint>
#include <vector>

namespace thntfs {

/// The tail of a ZIP archive (the records of its directory and what closes it) without some of its entries.
/// `dropped`: which, counted from 0, in order. `offset`: where in the file the new tail is to stand, which is
/// not behind the old one's place. The tail is one that was written whole.
std::vector<std::uint8_t> ZipTailWithout(ConstBytes tail, const std::vector<std::uint64_t>& dropped,
                                         std::uint64_t offset);

} // namespace thntfs
