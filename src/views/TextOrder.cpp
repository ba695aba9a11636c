#include "views/TextOrder.h"

#include <algorithm>
#include <numeric>

namespace thntfs {

// The collator's own way to ignore case does not reach the keys in the C locale.
TextOrder::Key TextOrder::KeyOf(const QString& text) const { return collator_.sortKey(text.toCaseFolded()); }

template <typename Key>
std::vector<std::uint32_t> SortedPlaces(const std::vector<Key>& keys, bool ascending) {
    std::vector<std::uint32_t> places(keys.size());
    std::iota(places.begin(), places.end(), 0U);
    const auto isBefore = [&](std::uint32_t a, std::uint32_t b) {
        return ascending ? keys[a] < keys[b] : keys[b] < keys[a];
    };
    std::stable_sort(places.begin(), places.end(), isBefore);
    return places;
}

template std::vector<std::uint32_t> SortedPlaces(const std::vector<TextOrder::Key>&, bool);
template std::vector<std::uint32_t> SortedPlaces(const std::vector<std::uint64_t>&, bool);

} // namespace thntfs
