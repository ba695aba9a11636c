#include "catalogue/EntryBatch.h"

#include <algorithm>
#include <numeric>

namespace thntfs {

namespace {

// Names of a damaged catalogue may overlap and be far longer than all that the file holds.
constexpr std::size_t kMaxBatchUnits = std::size_t{16} << 20U;

} // namespace

void EntryBatch::Load(std::span<const std::uint32_t> ids) {
    order_.resize(ids.size());
    std::iota(order_.begin(), order_.end(), 0U);
    std::sort(order_.begin(), order_.end(),
              [&](std::uint32_t a, std::uint32_t b) { return ids[a] < ids[b]; });

    loaded_.assign(ids.size(), Loaded());
    names_.clear();
    for (const std::uint32_t place : order_) {
        Loaded& loaded = loaded_[place];
        loaded.Valid = LoadStoredEntry(ids[place], loaded.Entry) != 0;
        loaded.NameStart = names_.size();
        if (loaded.Valid && names_.size() < kMaxBatchUnits) {
            AppendName(loaded.Entry, names_);
        }
        loaded.NameUnits = names_.size() - loaded.NameStart;
    }
}

int EntryBatch::Take(std::size_t place, CatalogueItem& item) const {
    const Loaded& loaded = loaded_[place];
    FillItem(loaded.Entry, item);
    item.Name.assign(names_, loaded.NameStart, loaded.NameUnits);
    if (loaded.NameUnits == 0 && loaded.Entry.NameLength != 0) {
        AppendName(loaded.Entry, item.Name);
    }
    return loaded.Valid ? 1 : 0;
}

} // namespace thntfs
