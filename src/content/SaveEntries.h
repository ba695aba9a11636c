#pragma once

#include "catalogue/FindEntry.h"
#include "content/ContentOutcome.h"
#include "platform/TargetFolder.h"

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace thntfs {

/// What a save tells of single entries as it goes. Paths are those of the catalogue.
class SaveListener {
public:
    SaveListener() = default;
    virtual ~SaveListener() = default;
    SaveListener(const SaveListener&) = delete;
    SaveListener& operator=(const SaveListener&) = delete;

    /// A file or folder had to take another name in the target.
    virtual void Renamed(const std::string& path, const std::string& targetName) = 0;
    /// A file was saved damaged. Called once for each reason.
    virtual void Warned(const std::string& path, const std::string& text) = 0;
    /// A file or folder could not be saved.
    virtual void Failed(const std::string& path, const std::string& reason) = 0;
};

struct SaveTotals {
    std::uint64_t Files = 0;   ///< files saved
    std::uint64_t Folders = 0; ///< folders saved or made for what is in them
    std::uint64_t Bytes = 0;   ///< bytes of the saved files
    std::uint64_t Damaged = 0; ///< of the saved files, those that aren't whole
    std::uint64_t Failed = 0;  ///< files and folders that could not be saved
    bool Stopped = false;      ///< ScanRunFlag was cleared, or the medium failed for good
};

/// Writes catalogue entries, and all below them, into a folder of a healthy disk, with the folders above and
/// below them made again. Nothing that stands there is written over, and nothing is written outside it. A
/// job: ScanRunFlag must be set.
class EntrySaver {
public:
    /// `deletedOnly`: live files are left out, and folders are made only for what is in them.
    EntrySaver(std::unique_ptr<TargetFolder> target, SaveListener& listener, bool deletedOnly);

    void Save(const LocatedEntry& entry);

    [[nodiscard]] const SaveTotals& Totals() const { return totals_; }

private:
    /// A folder on the way from the target to the entry in hand. It is made when something is to go into it.
    struct Level {
        std::u16string Name;
        std::unique_ptr<TargetFolder> Handle;
        bool Tried = false;
        bool Transparent = false; ///< " Root": what is in it goes into the level above
        std::unordered_map<std::string, unsigned> NextNumbers;
    };

    void SaveBelow(const LocatedEntry& entry);
    void EnterFolder(const CatalogueItem& item, const std::string& path);
    void SaveFile(const CatalogueItem& item, const std::string& path);
    void WriteContent(const CatalogueItem& item, const std::string& path, const std::string& name,
                      File& file);
    void FinishFile(const ContentOutcome& outcome, const std::string& path);
    void Abandon(const std::string& path, const std::string& name, const std::string& reason);
    void Fail(const std::string& path, const std::string& reason);
    bool Wanted(const CatalogueItem& item) const { return !deletedOnly_ || !item.IsLive(); }
    bool HasRoom(const CatalogueItem& item, const std::string& path);

    Level* OpenLevel(const std::string& path);
    ErrorCode MakeLevel(Level& level, Level& above, const std::string& path);
    ErrorCode CreateFileIn(Level& level, const CatalogueItem& item, const std::string& path,
                           std::string& name, std::unique_ptr<File>& file);
    static std::string NextName(Level& level, const std::string& name);
    void TellName(const std::string& path, std::u16string_view name, const std::string& targetName);

    std::vector<Level> levels_; ///< the first is the target itself
    SaveListener& listener_;
    bool deletedOnly_;
    SaveTotals totals_;
};

} // namespace thntfs
