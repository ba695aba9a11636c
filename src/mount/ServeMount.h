#pragma once

#include <functional>
#include <string>

namespace thntfs {

class MountedVolume;
class MountIndex;

/// Where a tree is shown, and under which name.
struct MountPlace {
    const std::string& Folder;
    const std::string& Source;
    bool OwnFolder; ///< it goes once it is unmounted
};

/// Answers the system's questions about a mount until its end; see MountCatalogue. The one place that knows
/// the system's library for file systems of programs.
std::string ServeMount(const MountPlace& place, const MountIndex& index, MountedVolume& volume,
                       const std::function<void()>& begun);

} // namespace thntfs
