#pragma once

#include "catalogue/Conditions.h"
#include "catalogue/FindCriteria.h"
#include "content/FileTypes.h"

#include <optional>
#include <string>

namespace thntfs {

/// Which entries a save is to take. Where it isn't all, folders are made only for what is in them, but for
/// those that are of the kind themselves.
enum class SaveReach { All, DeletedOnly, ExistingOnly };

/// What a save is to take, and how.
struct SaveOptions {
    SaveReach Reach = SaveReach::All;
    std::optional<FindMatcher> Names = std::nullopt; ///< entries that match alone; folders as with the reach
    ConditionSet Conditions = 0;                     ///< files in these conditions alone
    FileTypes Excluded = {};                         ///< files of these types are left out
    /// What goes before a name that is taken or that the target can't take, UTF-8; then nothing is asked.
    std::optional<std::string> Prefix = std::nullopt;
    bool AsStored = false; ///< by ReadEntryContent: the file's own data alone, under one name, without dates
    bool Streams = false;  ///< named streams are written beside their files and folders
    bool Report = false;   ///< the listener is told of each file, with its SHA-256
};

/// Whether a save takes an entry.
enum class SaveWish {
    Wanted,
    NotAsked,      ///< nobody asked for such entries, or for entries of such names
    ExcludedType,  ///< a file that is left out for its type
    OtherCondition ///< a file that is left out for its condition
};

/// The one judgement on that. For a folder, whether it is made for its own sake.
SaveWish WishFor(const SaveOptions& options, const CatalogueItem& item);

} // namespace thntfs
