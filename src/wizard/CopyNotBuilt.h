#pragma once

#include <QString>
#include <QStringList>

namespace thntfs {

/// Tells that the terminal program does a copy that this program doesn't do yet. `work` begins the sentence,
/// `words` is the command's line behind the program's name.
void TellCopyNotBuilt(const QString& work, const QStringList& words);

} // namespace thntfs
