#pragma once

#include "catalogue/FindEntry.h"
#include "content/FolderChains.h"
#include "content/TargetPath.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace thntfs {

struct ExactName;

/// The way to the folders that further names of files stand in, as far as these are being saved.
class FurtherNames {
public:
    FurtherNames(TargetFolder& target, MadeFolders& made, const NameRules& rules,
                 const TargetPath::DatesOf& datesOf)
        : way_(target, made, rules, datesOf) {}

    /// Names are given in these folders and below them.
    void Select(const std::vector<LocatedEntry>& entries);

    /// Goes to a name's folder. False where it isn't among those that are being saved, and where another
    /// folder has its record number by now. Passes CUserException on.
    bool GoTo(const ExactName& name);

    /// The folder gone to, made and open; null where it can't be.
    TargetPath::Level* Open(const TargetPath::Teller& tell) { return way_.Open(tell); }

    /// True where it can't be since the user skips it, or one above it.
    [[nodiscard]] bool Skipped() const { return way_.Skipped(); }

    /// Path in the catalogue of a name in the folder gone to.
    [[nodiscard]] std::string PathOf(const std::u16string& name) const;

    /// Leaves the folder gone to.
    void Leave() { way_.Cut(1); }

private:
    [[nodiscard]] bool Selected(const std::vector<CatalogueItem>& chain) const;

    FolderChains chains_;
    TargetPath way_;
    std::set<std::uint32_t> selected_; ///< EntryIds
};

} // namespace thntfs
