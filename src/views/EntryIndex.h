#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace thntfs {

/// Finds the place of an entry among many by its EntryId. Made at the first question after a change: a line
/// of searches asks once for each hit.
class EntryIndex {
public:
    /// The entries have changed, or their places.
    void Forget() { sorted_.clear(); }

    /// The place of an entry, nothing where it isn't there. `idOf(place)` gives the EntryId at a place below
    /// `count`.
    template <typename IdOf>
    std::optional<std::uint32_t> PlaceOf(std::uint32_t entryId, std::size_t count, IdOf idOf) {
        if (sorted_.size() != count) {
            Make(count, idOf);
        }
        const auto found = std::lower_bound(sorted_.begin(), sorted_.end(), std::pair(entryId, 0U));
        if (found == sorted_.end() || found->first != entryId) {
            return std::nullopt;
        }
        return found->second;
    }

private:
    template <typename IdOf>
    void Make(std::size_t count, IdOf idOf) {
        sorted_.clear();
        sorted_.reserve(count);
        for (std::uint32_t place = 0; place < count; ++place) {
            sorted_.emplace_back(idOf(place), place);
        }
        std::sort(sorted_.begin(), sorted_.end());
    }

    std::vector<std::pair<std::uint32_t, std::uint32_t>> sorted_; ///< EntryId and place
};

} // namespace thntfs
