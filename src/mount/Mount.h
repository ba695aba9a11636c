#pragma once

#include "content/SaveOptions.h"

#include <functional>
#include <string>

namespace thntfs {

/// What is mounted where.
struct MountWishes {
    std::string Folder;     ///< an empty folder; nothing is written to it
    std::string Source;     ///< what the system's list of mounts names as the mounted device
    SaveOptions What = {};  ///< which entries are shown
    bool Loaded = false;    ///< the catalogue is that of a saved scan
    bool OwnFolder = false; ///< the folder has been made for this and goes once it is unmounted
};

/// Whether this build can mount.
bool CanMount();

/// Why a folder can't be mounted at, in a sentence; empty where it can. Also where this build can't mount.
std::string MountObstacle(const std::string& folder);

/// Shows the open catalogue, and the files on its medium, as a read-only file system at a folder, until it is
/// unmounted from outside or an interrupt comes (platform/system/Interrupt.h). A job: ScanRunFlag must be
/// set. `begun` is called once programs can look at it. Gives what went wrong in a sentence, empty where
/// nothing did. Neither the end of the process, however it comes, nor a program that still reads leaves a
/// mount that hangs.
std::string MountCatalogue(const MountWishes& wishes, const std::function<void()>& begun);

} // namespace thntfs
