#include "frame/CataloguePlace.h"

#include "content/TargetRules.h"
#include "content/WorkPlace.h"
#include "engine/EngineState.h"
#include "engine/Host.h"
#include "shell/Boxes.h"

namespace thntfs {

namespace {

constexpr const char* kNoFolder = "/dev/null"; // nothing can be created below it

} // namespace

// The folder may have gone since the last scan: whoever clears up temporary files asks nobody.
void CataloguePlace::KeepAwayFrom(const std::string& medium) {
    const std::string& present = Engine.CatalogueFolder;
    const bool given = !present.empty() && present != kNoFolder && present != folder_.Path();
    if (given && CheckTarget(present, {medium, {}, {}}).Allowed()) {
        return;
    }
    const WorkPlace place = TakeLastingWorkFolder(folder_, medium);
    if (place.Code != kErrorNone) {
        Engine.CatalogueFolder = kNoFolder;
        ShowBox(QString::fromStdString(place.Told), tr("Error"), BoxIcon::Stop);
        return;
    }
    if (!place.Told.empty() && folder_.Path() != present) {
        LogLine("Temporary files", place.Told, kLogInProgress);
    }
    Engine.CatalogueFolder = folder_.Path();
}

} // namespace thntfs
