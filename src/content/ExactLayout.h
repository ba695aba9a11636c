#pragma once

#include "content/ExactStream.h"
#include "engine/Attribute.h"

#include <utility>
#include <vector>

namespace thntfs {

/// Pieces of one attribute, with the records that they lie in.
using AttributePieceList = std::vector<std::pair<ConstBytes, Attribute>>;

/// Makes out a stream from the pieces of its attribute, which come in any order; there is at least one.
/// `sizeWanted` stands for the size where the first piece, which states it, is missing. `whole`: no piece is
/// missing. Doubts of the pieces are added.
StreamLayout MakeLayout(AttributePieceList pieces, std::uint64_t sizeWanted, bool whole);

/// A stream of a size of which nothing can be had.
StreamLayout EmptyLayout(std::uint64_t size);

} // namespace thntfs
