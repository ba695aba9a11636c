#pragma once

#include "content/ContentOutcome.h"
#include "content/TargetPath.h"

#include <cstdint>
#include <functional>
#include <string>

namespace thntfs {

/// How a content came into the target.
struct WrittenContent {
    ErrorCode Error = kErrorNone; ///< of what stood in the way of a content that is to be kept;
                                  ///< kErrorCancelled where the user skips it
    ContentOutcome Outcome;

    [[nodiscard]] bool Stands() const { return Error == kErrorNone && Outcome.Kept(); }
};

/// Puts a content into an open file that nothing has been written to yet.
using ContentTaker = std::function<ContentOutcome(File& output)>;

/// Writes a content into an open folder of the target, under the name that comes of `name`. One above 1 MiB
/// gets it when it is whole and synced; until then it carries a part name. What isn't to be kept goes again.
WrittenContent WriteContent(TargetPath::Level& folder, NameChoice& name, std::uint64_t size,
                            const ContentTaker& take);

} // namespace thntfs
