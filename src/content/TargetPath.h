#pragma once

#include "catalogue/CatalogueReader.h"
#include "content/NameChoice.h"
#include "platform/files/TargetFolder.h"
#include "platform/system/Dates.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace thntfs {

/// Which folders of the catalogue a save has made in the target, and under which names: a bit an entry, and
/// the names that differ.
class MadeFolders {
public:
    [[nodiscard]] bool Has(const CatalogueItem& folder) const;
    /// Name in the target of a folder that has been made.
    [[nodiscard]] std::string NameOf(const CatalogueItem& folder) const;
    void Add(const CatalogueItem& folder, const std::string& name);

    /// Folders that the user doesn't want.
    [[nodiscard]] bool Skips(const CatalogueItem& folder) const { return skipped_.contains(folder.EntryId); }
    void Skip(const CatalogueItem& folder) { skipped_.insert(folder.EntryId); }

private:
    std::vector<bool> made_; ///< by EntryId
    std::unordered_map<std::uint32_t, std::string> otherNames_;
    std::set<std::uint32_t> skipped_; ///< EntryIds
};

/// The folders on the way from the target down to the entry in hand. Each is made when something is to go
/// into it, under a name that is free, and gets its dates when it is left. However long the way is, the
/// handles of its last folders alone are open: one further up is opened again by its name, from the nearest
/// open one above it, which leads through no link and never out of the target.
class TargetPath {
public:
    struct Level {
        CatalogueItem Item;                  ///< the folder in the catalogue
        std::string MadeName;                ///< in the target; empty as long as it is not made
        std::unique_ptr<TargetFolder> Owned; ///< null for the target itself and where it is not open
        TargetFolder* Handle = nullptr;      ///< the open folder
        bool Failed = false;                 ///< it can't be made
        bool Skipped = false;                ///< the user doesn't want it
        bool Transparent = false;            ///< " Root": what is in it goes into the level above
        NextNumbers Numbers;
    };

    /// Told once of each folder that is made, or can't be, with its path in the catalogue and the code, which
    /// is kErrorCancelled where the user skips it.
    using Teller =
        std::function<void(TargetPath& way, const Level& level, const std::string& path, ErrorCode code)>;

    /// Asked for the dates of a folder that is left after something has gone into it.
    using DatesOf = std::function<FileDates(const CatalogueItem& folder)>;

    /// `target` and `made`, which several paths may share, outlive the path.
    TargetPath(TargetFolder& target, MadeFolders& made, const NameRules& rules, DatesOf datesOf);

    /// Folders on the way, the target counted.
    [[nodiscard]] std::size_t Length() const { return levels_.size(); }

    /// Leaves all folders but the first `length`.
    void Cut(std::size_t length);

    void Enter(const CatalogueItem& folder);

    /// Leaves the folders that aren't on the way to the last of a chain, and enters those that are missing.
    void EnterChain(const std::vector<CatalogueItem>& chain);

    /// The innermost folder, made and open; null where it, or one above it, can't be.
    Level* Open(const Teller& tell);

    /// True where Open gave null since the user skips one of the folders.
    [[nodiscard]] bool Skipped() const;

    /// The folder in which the one that Open has given stands.
    Level& AboveOpen();

    /// The innermost folder's path in the catalogue.
    [[nodiscard]] std::string Path() const { return PathOf(levels_.size() - 1); }

private:
    [[nodiscard]] std::size_t InnermostOpen() const;
    ErrorCode OpenBelow(Level& above, std::size_t index, const Teller& tell);
    ErrorCode MakeBelow(Level& above, Level& level, const std::string& path);
    [[nodiscard]] std::string PathOf(std::size_t index) const;
    void CloseFarAbove(std::size_t index);
    void LeaveInnermost();

    MadeFolders& made_;
    NameRules rules_;
    DatesOf datesOf_;
    std::vector<Level> levels_;
};

} // namespace thntfs
