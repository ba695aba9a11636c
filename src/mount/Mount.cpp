#include "mount/Mount.h"

#include "catalogue/CatalogueReader.h"
#include "engine/EngineState.h"
#include "mount/FillIndex.h"
#include "mount/MountHost.h"
#include "mount/MountedVolume.h"
#include "mount/ServeMount.h"

namespace thntfs {

std::string MountCatalogue(const MountWishes& wishes, const std::function<void()>& begun) try {
    MountHost host;
    MountIndex index;
    if (!FillIndex(index, wishes.What, wishes.Loaded ? FurtherNamesBy::Records : FurtherNamesBy::Scan)) {
        return "It was stopped before anything was mounted.";
    }
    MountedVolume volume(index);
    return ServeMount({wishes.Folder, wishes.Source, wishes.OwnFolder}, index, volume, begun);
} catch (const CUserException& failure) {
    return "The catalogue can't be read: " + SystemErrorText(failure.Code);
}

} // namespace thntfs
