#pragma once

#include "engine/StoredRecords.h"

namespace thntfs {

/// Decodes the run list at `offset` of a buffer and appends its runs to a list, which may be empty or not.
/// The running cluster number starts at 0 in each call. A sparse run gives an extent that is all zero; its
/// length isn't kept. A header byte that asks for more than 4 bytes a field, a field of all ones, or the end
/// of the buffer ends the list with what has been decoded. Always gives 1.
int DecodeRunList(ConstBytes buffer, std::uint64_t offset, std::vector<MftExtent>& extents);

} // namespace thntfs
