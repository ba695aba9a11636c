#pragma once

#include "platform/system/Bytes.h"

#include <cstddef>

namespace thntfs {

/// What became of a compressed unit.
struct UnitResult {
    std::size_t Consumed = 0; ///< bytes of the source that were looked at
    bool Sound = false;       ///< each chunk was one
    bool Ended = false;       ///< a header of 0 stood in front of the target's end
};

/// Decompresses the chunks of a unit (LZNT1, published as [MS-XCA]) into a target, which they should fill. A
/// chunk that gives less than 4096 bytes is followed by zeros up to 4096. Only a header of 0 ends the unit,
/// and then zeros follow. A chunk that is damaged gives what stands in front of the fault, then zeros. Never
/// reads or writes beyond the spans.
UnitResult DecompressUnit(ConstBytes source, Bytes target);

} // namespace thntfs
