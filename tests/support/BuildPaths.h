#pragma once

#include <string>

namespace thntfs::test {

// Where the build has put what tests need. One compile unit alone knows the paths, so that a compiler cache
// serves builds in other folders.

/// Folder of the unpacked volumes.
std::string VolumeFolder();

/// Folder of the packed volumes and their manifests.
std::string ManifestFolder();

/// The terminal program.
std::string CliPath();

/// The library that lets calls of a program fail; its source tells how it is told.
std::string FaultyCallsPath();

} // namespace thntfs::test
