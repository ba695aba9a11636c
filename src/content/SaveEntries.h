#pragma once

#include "catalogue/FindEntry.h"
#include "content/SaveAccount.h"
#include "content/TargetPath.h"
#include "platform/files/TargetFolder.h"

#include <memory>
#include <string>
#include <string_view>

namespace thntfs {

/// Writes catalogue entries, and all below them, into a folder of a healthy disk, with the folders above and
/// below them made again. Nothing that stands there is written over, and nothing is written outside it. A
/// file above 1 MiB gets its name when it is whole and synced; until then it carries a part name. A job:
/// ScanRunFlag must be set.
class EntrySaver {
public:
    /// `deletedOnly`: live files are left out, and folders are made only for what is in them.
    EntrySaver(std::unique_ptr<TargetFolder> target, SaveListener& listener, bool deletedOnly);

    void Save(const LocatedEntry& entry);

    /// Waits until all that was saved is on the device, and gives the totals. To be called at the end.
    const SaveTotals& Finish();

private:
    void SaveBelow(const LocatedEntry& entry);
    void EnterFolder(const CatalogueItem& item);
    void SaveFile(const CatalogueItem& item, const std::string& path);
    void WriteSmall(TargetPath::Level& folder, const CatalogueItem& item, const std::string& path);
    void WriteBig(TargetPath::Level& folder, const CatalogueItem& item, const std::string& path);
    void Conclude(const CatalogueItem& item, const std::string& path, const std::string& name,
                  const ContentOutcome& outcome, ErrorCode error);
    void FailContent(const std::string& path, const ContentOutcome& outcome);
    [[nodiscard]] bool Wanted(const CatalogueItem& item) const { return !deletedOnly_ || !item.IsLive(); }
    bool HasRoom(const CatalogueItem& item, const std::string& path);
    TargetPath::Level* OpenLevel();
    void TellName(const std::string& path, std::u16string_view name, const std::string& targetName);

    SaveListener& listener_;
    bool deletedOnly_;
    TargetPath path_;
    SaveAccount account_;
};

} // namespace thntfs
