// How the main window starts a clone or an image, and what it passes on to its dialog.

#include "dialogs/VarientCloneImageDialog.h"
#include "engine/EngineState.h"
#include "frame/MainFrame.h"
#include "shell/DesktopState.h"
#include "wizard/WizardSheet.h"

namespace thntfs {

// The wizard's first page doesn't offer it.
void CMainFrame::RunCloneWizard() {
    if (job_.MayStartWork()) {
        CWizardSheet sheet(this, logicalDriveNumber_);
        sheet.OpenOnClone();
        RunSheet(sheet);
    }
}

// The wizard has opened both media.
void CMainFrame::BeginCopy(const WizardState& chosen) {
    if (Engine.ScanRunFlag != 0) {
        return;
    }
    job_.Choose(chosen.WizardLogEntry);
    job_.SetRunning();
    Desktop.CopyDialog = new CVarientCloneImageDialog; // deletes itself
    const auto& start = chosen.WizardTask == kTaskClone ? WM_START_CLONE : WM_START_IMAGE;
    start.Send(Desktop.CopyDialog, *chosen.Copy);
    UpdateCommands();
}

void CMainFrame::PassCopyPosition(std::uint32_t done, std::uint32_t total) {
    if (Engine.ScanRunFlag != 0) {
        WM_COPY_PROGRESS.Send(Desktop.CopyDialog, total, done);
    }
}

} // namespace thntfs
