#pragma once

#include <memory>
#include <string>

namespace thntfs {

struct CopyJob;

// What Finish does on the pages of copies: looks at all that may be wrong, opens the source as SourceDisk and
// the target as TargetDisk, and gives the job. None where a box has told what is in the way, or the user
// would rather not; then nothing has been written, and no medium is open.

/// An image that is there is gone on with, if it is of this source and the user wants to.
std::shared_ptr<CopyJob> PrepareImage(const std::string& source, const std::string& image, unsigned retries);

/// Names what will be lost, and asks.
std::shared_ptr<CopyJob> PrepareClone(const std::string& source, const std::string& target);

} // namespace thntfs
