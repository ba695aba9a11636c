#pragma once

#include "engine/DecodeRecord.h"

namespace thntfs {

/// What kind of name a record has.
enum class NameKind : std::uint8_t { None, Short, Full };

/// Decodes a checked base record with all its extension records, wherever the table or a search of the whole
/// volume has them. `number` is the record's own; extension records of other files don't count. Fills what
/// DecodeFileRecord does, but for the number that an index gives where the record has none. Of several full
/// names the last one counts. What a scan may read for one record is bounded. Passes CUserException on.
NameKind DecodeRecordExactly(ConstBytes record, std::uint32_t number, DecodedEntry& entry);

} // namespace thntfs
