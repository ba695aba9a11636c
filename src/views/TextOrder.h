#pragma once

#include <QCollator>
#include <QString>
#include <cstdint>
#include <vector>

namespace thntfs {

/// The order in which the user's language sorts texts, upper and lower case alike. It makes keys once, which
/// then compare fast.
class TextOrder {
public:
    using Key = QCollatorSortKey;

    [[nodiscard]] Key KeyOf(const QString& text) const;

private:
    QCollator collator_;
};

/// The places of the keys in their sorted order; equal keys keep theirs.
template <typename Key>
std::vector<std::uint32_t> SortedPlaces(const std::vector<Key>& keys, bool ascending);

extern template std::vector<std::uint32_t> SortedPlaces(const std::vector<TextOrder::Key>&, bool);
extern template std::vector<std::uint32_t> SortedPlaces(const std::vector<std::uint64_t>&, bool);

} // namespace thntfs
