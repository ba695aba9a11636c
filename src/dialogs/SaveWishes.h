#pragma once

#include "content/SaveOptions.h"

#include <QString>
#include <QStringList>

namespace thntfs {

/// What the user has chosen in the dialogs of a save. It is chosen again the next time, in other runs too.
struct SaveWishes {
    // What to save.
    bool AsStored = false; ///< the data as it is stored, not the exact files
    SaveReach Reach = SaveReach::All;
    bool Streams = false; ///< named streams, too

    // Where, and the filter.
    QString Folder;
    bool IgnoresTypes = false;
    QStringList Types; ///< suffixes without the dot, as they were typed
    bool Compresses = false;
    bool UsesPrefix = false;
    QString Prefix;
};

SaveWishes LoadSaveWishes();
void KeepSaveWishes(const SaveWishes& wishes);

} // namespace thntfs
