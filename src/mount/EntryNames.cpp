#include "mount/EntryNames.h"

#include "catalogue/EntryPass.h"
#include "content/SaveOptions.h"

namespace thntfs {

namespace {

// As the pass gives those that it can't read.
bool IsBlank(const CatalogueEntry& entry) {
    return entry.RecordSector == 0 && entry.Flags == 0 && entry.NameLength == 0;
}

} // namespace

EntryNames::EntryNames(const SaveOptions& options, MountIndex& index) {
    const auto count = static_cast<std::size_t>(CatalogueEntryCount());
    index.Reserve(static_cast<std::size_t>(Engine.NameFile->Size() / sizeof(char16_t)));
    CatalogueItem item;
    PassEntries([&](std::uint32_t id, const CatalogueEntry& entry) {
        FillItem(entry, item);
        item.EntryId = id;
        item.Name.clear();
        AppendName(entry, item.Name);
        Facts& facts = facts_.Add();
        facts.BlockOffset = entry.BlockOffset;
        facts.Readable = !IsBlank(entry);
        facts.Folder = item.IsFolder();
        facts.Wanted = WishFor(options, item) == SaveWish::Wanted;
        if (facts.Folder || facts.Wanted) {
            facts.Name = index.KeepTargetName(item.Name);
        }
        return Engine.ScanRunFlag != 0;
    });
    while (facts_.Count() < count) {
        facts_.Add();
    }
}

} // namespace thntfs
