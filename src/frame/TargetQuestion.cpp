#include "frame/TargetQuestion.h"

#include "content/TargetRules.h"
#include "engine/EngineState.h"
#include "shell/Boxes.h"

#include <QCoreApplication>

namespace thntfs {

bool MayWriteTo(const QString& path) {
    const TargetVerdict verdict = CheckTarget(path.toStdString(), {SourceMediumPath(), {}, {}});
    if (verdict.Allowed()) {
        return true;
    }
    if (verdict.Why != TargetRefusal::OnMedium) {
        ShowBox(QCoreApplication::translate(
                    "TargetQuestion", "%1 is the medium that is being read.\nPlease choose another place.")
                    .arg(path),
                QCoreApplication::translate("TargetQuestion", "Warning"), BoxIcon::Warning);
        return false;
    }
    return AskYesNo(QCoreApplication::translate("TargetQuestion",
                                                "Please ensure that you are not saving data to\n"
                                                "the same location from where you are recovering. \n\n"
                                                "Saving data to the same location would result in\n"
                                                "permanent data loss.\n"
                                                "Do you want to continue?"),
                    QCoreApplication::translate("TargetQuestion", "Confirm"), BoxAnswer::No);
}

bool CatalogueFits() {
    if (!CatalogueIsOfVolumeInWork()) {
        ShowBox(QCoreApplication::translate(
                    "TargetQuestion", "What the window shows belongs to another medium or partition than the "
                                      "one that is open now.\nPlease open and scan it again."),
                QCoreApplication::translate("TargetQuestion", "Warning"), BoxIcon::Warning);
    }
    return CatalogueIsOfVolumeInWork();
}

} // namespace thntfs
