#pragma once

#include <QString>

namespace thntfs {

/// Whether something may be written at a path while the medium in work is being read. Where that lies on the
/// medium, it is the user who says so, having been warned; what is the medium itself is refused.
bool MayWriteTo(const QString& path);

/// Whether what the window shows is of the volume in work; a box says where it isn't. Data of the one under
/// names of the other would be wrong.
bool CatalogueFits();

} // namespace thntfs
