#include "frame/TargetQuestion.h"

#include "content/TargetRules.h"
#include "shell/Boxes.h"

namespace thntfs {

bool MayWriteTo(const QString& path) {
    const TargetVerdict verdict = CheckTarget(path.toStdString(), {SourceMediumPath(), {}, {}});
    if (verdict.Allowed()) {
        return true;
    }
    if (verdict.Why != TargetRefusal::OnMedium) {
        ShowBox(
            QStringLiteral("%1 is the medium that is being read.\nPlease choose another place.").arg(path),
            QStringLiteral("Warning"), BoxIcon::Warning);
        return false;
    }
    return AskYesNo(QStringLiteral("Please ensure that you are not saving data to\n"
                                   "the same location from where you are recovering. \n\n"
                                   "Saving data to the same location would result in\n"
                                   "permanent data loss.\n"
                                   "Do you want to continue?"),
                    QStringLiteral("Confirm"), BoxAnswer::No);
}

} // namespace thntfs
