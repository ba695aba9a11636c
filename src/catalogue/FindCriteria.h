#pragma once

#include "catalogue/Wildcard.h"

#include <cstdint>
#include <optional>
#include <string>

namespace thntfs {

struct CatalogueItem;

/// DOS dates, both included. No date is 0, which lies before all others.
struct DosDateRange {
    std::uint16_t From = 0;
    std::uint16_t To = 0xFFFF;
};

/// What an entry must be like to be found.
struct FindCriteria {
    std::string Pattern; ///< narrow text, as Wildcard takes it
    bool MatchCase = false;
    std::uint64_t MinSize = 0; ///< bytes
    std::uint64_t MaxSize = ~std::uint64_t{0};
    std::optional<DosDateRange> Created{};
    std::optional<DosDateRange> Accessed{};
    bool DeletedOnly = false;
};

/// Criteria made ready for many entries.
class FindMatcher {
public:
    explicit FindMatcher(const FindCriteria& criteria);

    [[nodiscard]] bool Matches(const CatalogueItem& item) const;

private:
    FindCriteria criteria_;
    Wildcard pattern_;
};

} // namespace thntfs
