#pragma once

namespace thntfs {

/// Takes away the part files without a stem in an open folder that runs of this user have left behind.
void RemoveLeftParts(int folder);

} // namespace thntfs
