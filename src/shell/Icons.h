#pragma once

#include <QIcon>

namespace thntfs {

/// An icon of the program's own by its name, such as "folder-live"; drawn anew at each size.
QIcon LoadIcon(const char* name);

} // namespace thntfs
