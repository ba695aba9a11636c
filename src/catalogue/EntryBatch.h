#pragma once

#include "catalogue/CatalogueReader.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace thntfs {

/// Many entries loaded at once, in the order in which the files hold them, whatever the order in which they
/// were asked for: each page of the files is then read once a batch.
class EntryBatch {
public:
    /// Loads the entries with these ids; place i holds the entry of ids[i]. One that can't be read shows its
    /// box.
    void Load(std::span<const std::uint32_t> ids);

    /// Copies the entry at a place. Gives 1, or 0 where it couldn't be read.
    int Take(std::size_t place, CatalogueItem& item) const;

private:
    struct Loaded {
        CatalogueEntry Entry;
        std::size_t NameStart = 0; ///< in names_
        std::size_t NameUnits = 0;
        bool Valid = false;
    };

    std::vector<std::uint32_t> order_;
    std::vector<Loaded> loaded_;
    std::u16string names_;
};

} // namespace thntfs
