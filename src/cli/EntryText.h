#pragma once

#include "catalogue/CatalogueReader.h"

#include <string>

namespace thntfs {

/// Appends an entry's line for people: "D" for deleted, size, date created, condition, path.
void AppendEntryLine(std::string& out, const CatalogueItem& item, const std::string& path);

/// Appends an entry as one JSON object and a line end.
void AppendEntryJson(std::string& out, const CatalogueItem& item, const std::string& path);

} // namespace thntfs
