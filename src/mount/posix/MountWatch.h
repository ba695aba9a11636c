#pragma once

#include <string>

namespace thntfs {

/// Another process that outlives this one and then unmounts a folder, also while programs have files of it
/// open: a mount whose process was killed would else stand there, and give errors, until somebody unmounts
/// it.
class MountWatch {
public:
    /// Begins to watch. Where no process can be started nothing watches. `remove`: once the folder has
    /// been unmounted, by whomever, it is removed.
    MountWatch(const std::string& folder, bool remove);
    /// Ends it, if nobody has dismissed it, by the folder's unmount.
    ~MountWatch();
    MountWatch(const MountWatch&) = delete;
    MountWatch& operator=(const MountWatch&) = delete;

    /// The folder has been unmounted: there is nothing left to do.
    void Dismiss();

private:
    void End();

    int end_ = -1; ///< of a pipe: its close, by whatever, ends the watch
    int process_ = 0;
};

} // namespace thntfs
