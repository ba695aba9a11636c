#pragma once

#include "platform/media/DiskListing.h"

#include <string>

namespace thntfs {

/// ListDisks with the kernel's account under `sysFolder` ("/sys") and the device manager's under `udevFolder`
/// ("/run/udev/data"), which need not exist.
std::vector<DiskProperties> ListDisksIn(const std::string& sysFolder, const std::string& udevFolder);

} // namespace thntfs
