#include "views/RowFilter.h"

#include "catalogue/Wildcard.h"
#include "views/FolderListing.h"

namespace thntfs {

std::vector<std::uint32_t> FittingPlaces(const FileRows& rows, const RowFilter& filter) {
    const Wildcard pattern('*' + filter.NamePart + '*', false);
    std::vector<std::uint32_t> places;
    places.reserve(filter.Narrows() ? 0 : rows.Rows.size());
    for (std::uint32_t place = 0; place < rows.Rows.size(); ++place) {
        const bool wanted = !filter.DeletedOnly || !rows.Rows[place].Live;
        if (wanted && (filter.NamePart.empty() || pattern.Matches(rows.Name(place)))) {
            places.push_back(place);
        }
    }
    return places;
}

} // namespace thntfs
