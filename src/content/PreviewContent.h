#pragma once

#include "catalogue/CatalogueReader.h"

namespace thntfs {

/// Reads an entry's data into PreviewBuffer for the hex view; PreviewLength bytes of it count. Reads the
/// entry's own record alone, so a file whose data lies in extension records loads nothing; compressed data
/// shows a message and loads nothing. Gives false, with nothing loaded, for a size of 0 or above 30 MB.
bool LoadPreviewBuffer(const CatalogueItem& entry);

} // namespace thntfs
