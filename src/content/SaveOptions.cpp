#include "content/SaveOptions.h"

#include "catalogue/CatalogueReader.h"

namespace thntfs {

namespace {

// Lost folders have no record of their own: they stand for a name that isn't known, and are neither deleted
// nor there.
bool InReach(SaveReach reach, const CatalogueItem& item) {
    const bool lost = item.IsFolder() && item.RecordSector == 0;
    return reach == SaveReach::All || (!lost && item.IsLive() == (reach == SaveReach::ExistingOnly));
}

} // namespace

SaveWish WishFor(const SaveOptions& options, const CatalogueItem& item) {
    if (!InReach(options.Reach, item) || (options.Names && !options.Names->Matches(item))) {
        return SaveWish::NotAsked;
    }
    if (item.IsFolder()) {
        return SaveWish::Wanted;
    }
    if (options.Excluded.Has(item.Name)) {
        return SaveWish::ExcludedType;
    }
    return ConditionWanted(options.Conditions, item) ? SaveWish::Wanted : SaveWish::OtherCondition;
}

} // namespace thntfs
