#pragma once

#include <QString>

namespace thntfs {

/// Whether something may be written at a path while the medium in work is being read. Where that lies on the
/// medium, it is the user who says so, having been warned; what is the medium itself is refused.
bool MayWriteTo(const QString& path);

} // namespace thntfs
