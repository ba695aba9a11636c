#pragma once

#include "catalogue/Conditions.h"

namespace thntfs {

/// What a save is to take, and how.
struct SaveOptions {
    bool DeletedOnly = false;    ///< live files are left out, and folders are made only for what is in them
    ConditionSet Conditions = 0; ///< files in these conditions alone
    bool AsStored = false; ///< by ReadEntryContent: the file's own data alone, under one name, without dates
    bool Streams = false;  ///< named streams are written beside their files and folders
    bool Report = false;   ///< the listener is told of each file, with its SHA-256
};

} // namespace thntfs
