#pragma once

#include "platform/files/WorkFolder.h"

#include <string>

namespace thntfs {

/// Sees to it that the catalogue is kept away from a medium, before a scan of it or a load writes its files:
/// takes the user's lasting folder as CatalogueFolder, unless one that was given otherwise will do. `folder`
/// holds it. Where there is no place a box says so, and the catalogue's files then can't be made.
void PlaceCatalogue(WorkFolder& folder, const std::string& medium);

} // namespace thntfs
