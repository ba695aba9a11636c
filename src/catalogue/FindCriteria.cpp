#include "catalogue/FindCriteria.h"

#include "catalogue/CatalogueReader.h"

namespace thntfs {

namespace {

bool Holds(const std::optional<DosDateRange>& range, std::uint16_t date) {
    return !range || (date >= range->From && date <= range->To);
}

} // namespace

FindMatcher::FindMatcher(const FindCriteria& criteria)
    : criteria_(criteria)
    , pattern_(criteria.Pattern, criteria.MatchCase) {}

bool FindMatcher::Matches(const CatalogueItem& item) const {
    return item.Size >= criteria_.MinSize && item.Size <= criteria_.MaxSize &&
           Holds(criteria_.Created, item.CreatedDate) && Holds(criteria_.Accessed, item.AccessedDate) &&
           !(criteria_.DeletedOnly && item.IsLive()) && pattern_.Matches(item.Name);
}

} // namespace thntfs
