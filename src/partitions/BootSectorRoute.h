#pragma once

#include "partitions/CandidateIndex.h"
#include "platform/system/Bytes.h"

#include <cstdint>

namespace thntfs {

/// What a search does with a boot sector that it has met before.
enum class SecondSight { Ignore, Mark };

/// Lists the volume of a boot sector that passed its test, if it fits on the medium and isn't listed yet; a
/// volume that is listed is marked as seen again or left alone. A new one is told to the host.
void FollowBootSector(ConstBytes bootSector, std::uint64_t sector, SecondSight secondSight,
                      CandidateIndex& index);

} // namespace thntfs
