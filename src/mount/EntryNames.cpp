#include "mount/EntryNames.h"

#include "catalogue/EntryPass.h"
#include "content/SaveOptions.h"
#include "content/TargetName.h"
#include "mount/MountIndex.h"

namespace thntfs {

namespace {

// As the pass gives those that it can't read.
bool IsBlank(const CatalogueEntry& entry) {
    return entry.RecordSector == 0 && entry.Flags == 0 && entry.NameLength == 0;
}

} // namespace

EntryNames::EntryNames(const SaveOptions& options) {
    const auto count = static_cast<std::size_t>(CatalogueEntryCount());
    facts_.reserve(count);
    names_.reserve(count * MountIndex::kUsualNameBytes);
    CatalogueItem item;
    PassEntries([&](std::uint32_t id, const CatalogueEntry& entry) {
        FillItem(entry, item);
        item.EntryId = id;
        item.Name.clear();
        AppendName(entry, item.Name);
        const std::string name = TargetName(item.Name);
        facts_.push_back({.NameAt = names_.size(),
                          .NameBytes = static_cast<std::uint8_t>(name.size()),
                          .Readable = !IsBlank(entry),
                          .Folder = item.IsFolder(),
                          .Wanted = WishFor(options, item) == SaveWish::Wanted});
        names_ += name;
        return Engine.ScanRunFlag != 0;
    });
    facts_.resize(count);
}

std::string_view EntryNames::NameOf(std::uint32_t entryId) const {
    return std::string_view(names_).substr(facts_[entryId].NameAt, facts_[entryId].NameBytes);
}

} // namespace thntfs
