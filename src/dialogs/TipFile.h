#pragma once

#include <QStringList>

namespace thntfs {

/// Path of the file of tips, "stips.txt" in the program's data folder of this user.
QString TipFilePath();

/// The file that tips are read from: that of this user, or where it holds no more than the one tip that a
/// missing file gets, the file of an installation for all users, if there is one.
QString TipFileInUse();

/// Makes a file with one tip where none is, as far as that can be done.
void ProvideTipFile(const QString& path);

/// The tips of a file: a line each, in UTF-8. Empty lines, those that begin with ";" and what is no short,
/// readable text are left out. Gives one tip at the least, whatever the file is.
QStringList ReadTips(const QString& path);

} // namespace thntfs
