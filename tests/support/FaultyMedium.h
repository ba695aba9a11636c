#pragma once

#include "platform/system/Bytes.h"
#include "platform/system/ErrorCodes.h"

#include <functional>
#include <limits>
#include <memory>
#include <vector>

namespace thntfs {
class Medium;
}

namespace thntfs::test {

inline constexpr std::uint64_t kForever = std::numeric_limits<std::uint64_t>::max();

/// Bad sectors: a request that touches one of them fails with `Code`, `Times` requests long.
struct FaultRule {
    std::uint64_t FirstSector = 0;
    std::uint64_t SectorCount = 1;
    ErrorCode Code = kErrorCrc;
    std::uint64_t Times = kForever;
};

/// One request as it came.
struct ReadRequest {
    std::uint64_t Offset = 0; ///< bytes
    std::uint64_t Size = 0;   ///< bytes
    ErrorCode Result = kErrorNone;
};

/// What a faulty medium does and what it saw. The test shares it with the medium, so it outlives it.
struct FaultPlan {
    std::uint32_t SectorBytes = 512;
    std::vector<FaultRule> Rules; ///< the first one that matches counts
    bool GivePart = true;         ///< a failed request leaves the sectors before the bad one in the buffer
    std::vector<ReadRequest> Log; ///< all requests in order
    std::function<void(std::uint64_t index, const ReadRequest& request)>
        OnRead; ///< before each; index from 0
};

/// A medium over another one that fails by a plan.
std::unique_ptr<Medium> MakeFaultyMedium(std::unique_ptr<Medium> inner, std::shared_ptr<FaultPlan> plan);

} // namespace thntfs::test
