#pragma once

#include "platform/system/ErrorCodes.h"

#include <memory>
#include <string>

namespace thntfs {

class TargetFolder;

/// Opens a ZIP archive as the folder that a save writes to. It comes into being beside `path`, in a folder
/// that must exist, under a part name (platform/files/PartName.h), and takes its name when Sync of the folder
/// has completed it. Without that, or where nothing has gone into it, none is left. Should something have
/// taken the name meanwhile, a number goes behind it.
///
/// Fails with kErrorFileExists where anything stands under the path. Besides what TargetFolder tells: a file
/// has no further names; holes become zeros, up to 1 TiB in a file; what the archive's disk has no room for
/// is left out, and all that comes after it.
ErrorCode OpenZipFolder(const std::string& path, std::unique_ptr<TargetFolder>& folder);

} // namespace thntfs
