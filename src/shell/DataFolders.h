#pragma once

#include <QStringList>

namespace thntfs {

/// Folders that may hold the program's data (tips, translations), the one to be preferred first: the user's
/// own, what a build has beside the program, what an installation has beside the program's `bin`, and the
/// system's for all users.
QStringList DataFolders();

} // namespace thntfs
