#pragma once

namespace thntfs {

/// The first word of the command line by which the program is started to show a saved scan as a folder.
/// Behind it stand the scan's file, the folder to mount at and, where the scan's disk was lent, by which word
/// it is found (platform/media/LentDisk.h).
inline constexpr const char* kMountWord = "--mount-scan";

/// What that process writes to standard output once the folder can be looked at and the file isn't needed any
/// more.
inline constexpr const char* kMountedLine = "mounted\n";

/// Whether the program has been started as one.
bool IsMountCall(int argc, char** argv);

/// Mounts the scan, which is a process of its own since there is one engine a process. It ends here: once it
/// is unmounted, is told to end, or standard input comes to its end with the program that has started it.
/// Where it fails, standard error says why.
[[noreturn]] void RunMountCall(int argc, char** argv);

} // namespace thntfs
