#include "support/BuildPaths.h"

namespace thntfs::test {

std::string VolumeFolder() { return THNTFS_VOLUME_FOLDER; }
std::string ManifestFolder() { return THNTFS_MANIFEST_FOLDER; }
std::string CliPath() { return THNTFS_CLI_PATH; }
std::string FaultyCallsPath() { return THNTFS_FAULTY_CALLS; }

} // namespace thntfs::test
