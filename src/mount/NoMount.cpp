// What stands in for mounting where a build has no library for it.

#ifndef THNTFS_FUSE

#include "mount/Mount.h"
#include "mount/ServeMount.h"

namespace thntfs {

namespace {

constexpr const char* kNoLibrary = "This build can't mount: it was made without libfuse3. Install "
                                   "libfuse3-dev (or fuse3-devel) and build again.";

} // namespace

bool CanMount() { return false; }

std::string MountObstacle(const std::string& /*folder*/) { return kNoLibrary; }

std::string ServeMount(const MountPlace& /*place*/, const MountIndex& /*index*/, MountedVolume& /*volume*/,
                       const std::function<void()>& /*begun*/) {
    return kNoLibrary;
}

} // namespace thntfs

#endif
