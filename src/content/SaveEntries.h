#pragma once

#include "catalogue/FindEntry.h"
#include "content/FileSaver.h"
#include "content/SaveAccount.h"
#include "content/SaveOptions.h"
#include "content/TargetPath.h"
#include "platform/files/TargetFolder.h"

#include <memory>
#include <string>
#include <vector>

namespace thntfs {

/// Writes catalogue entries, and all below them, into a folder of a healthy disk, with the folders above and
/// below them made again. Nothing that stands there is written over, and nothing is written outside it. A
/// job: ScanRunFlag must be set.
class EntrySaver {
public:
    EntrySaver(std::unique_ptr<TargetFolder> target, SaveListener& listener, const SaveOptions& options);

    /// Saves all these. A further name of a file is made where its folder is among them or below one of them.
    void Save(const std::vector<LocatedEntry>& entries);

    /// Waits until all that was saved is on the device, and gives the totals. To be called at the end.
    const SaveTotals& Finish();

private:
    void SaveOne(const LocatedEntry& entry);
    void SaveBelow(const LocatedEntry& entry);
    void EnterFolder(const CatalogueItem& item);
    void SaveFile(const CatalogueItem& item, const std::string& path);
    TargetPath::Level* OpenLevel();
    [[nodiscard]] bool Wanted(const CatalogueItem& item) const {
        return !options_.DeletedOnly || !item.IsLive();
    }

    SaveOptions options_;
    std::unique_ptr<TargetFolder> target_;
    SaveAccount account_;
    MadeFolders made_;
    FileSaver files_;
    TargetPath path_;
};

} // namespace thntfs
