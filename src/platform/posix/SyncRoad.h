#pragma once

namespace thntfs {

/// True where syncfs on an open folder vouches for every file written below it: a file system of the kernel's
/// own over a local device, on a kernel whose syncfs tells of writes that failed. False where somebody else
/// keeps what was written (a network, a file system in user space), who has to be asked for each file.
bool SyncsAsWhole(int folder);

} // namespace thntfs
