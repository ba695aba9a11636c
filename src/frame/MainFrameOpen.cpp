// What the main window opens: volumes by the wizard; images and saved scan information by menu and drop.

#include "content/TargetRules.h"
#include "frame/MainFrame.h"
#include "scaninfo/PartitionInfoFile.h"
#include "scaninfo/ScanInfo.h"
#include "shell/Boxes.h"
#include "shell/DesktopState.h"
#include "views/THNTFSTreeView.h"
#include "wizard/WizardSheet.h"

#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMimeData>

namespace thntfs {

namespace {

// The one local file that is being dragged, empty where it is anything else.
QString DroppedFile(const QMimeData* data) {
    const QList<QUrl> urls = data->urls();
    return urls.size() == 1 && urls.front().isLocalFile() ? urls.front().toLocalFile() : QString();
}

// Why a file can't be opened, empty where it can.
QString FaultOf(const QFileInfo& file) {
    if (file.isDir()) {
        return QCoreApplication::translate("MainFrameOpen",
                                           "%1 is a folder.\nPlease open a file: the image of a disk, or "
                                           "saved scan information (.tht, .thd).")
            .arg(file.filePath());
    }
    return file.exists()
               ? QString()
               : QCoreApplication::translate("MainFrameOpen", "%1 isn't there.").arg(file.filePath());
}

} // namespace

void CMainFrame::RunWizard(const QString& imagePath) {
    if (!job_.MayStartWork()) {
        return;
    }
    CWizardSheet sheet(this, logicalDriveNumber_);
    if (!imagePath.isEmpty()) {
        sheet.OpenOnImage(imagePath);
    }
    RunSheet(sheet);
}

void CMainFrame::OpenFoundDrive() {
    if (!job_.MayStartWork()) {
        return;
    }
    CWizardSheet sheet(this, logicalDriveNumber_);
    sheet.OpenOnPartitionList(Desktop.ProcessingMode);
    RunSheet(sheet);
}

// A click in the list of partitions counts though the wizard is cancelled.
void CMainFrame::RunSheet(CWizardSheet& sheet) {
    const bool finished = sheet.Run() == kWizardFinished;
    activateWindow(); // a box of the sheet's that went with it leaves some desktops without an active window
    logicalDriveNumber_ = sheet.State().LogicalDriveNumber;
    if (finished && sheet.State().Copy != nullptr) {
        BeginCopy(sheet.State());
    } else if (finished) {
        recent_.Note(QString::fromStdString(SourceMediumPath()));
        scans_.TakeVolume(sheet.State().WizardLogEntry);
        BeginBasicScan();
    }
}

void CMainFrame::dragEnterEvent(QDragEnterEvent* event) {
    if (!DroppedFile(event->mimeData()).isEmpty() && CommandEnabled(kCmdWizard, State())) {
        event->acceptProposedAction();
    }
}

// The file is opened once the drop is over: the program that it comes from waits until then.
void CMainFrame::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    QTimer::singleShot(0, this, [this, path = DroppedFile(event->mimeData())] { OpenFile(path); });
}

void CMainFrame::OpenFile(const QString& file) {
    startUp_.GiveWay();
    const QString path = QFileInfo(file).absoluteFilePath();
    const QString fault = FaultOf(QFileInfo(path));
    if (!fault.isEmpty()) {
        ShowBox(fault, tr("Warning"), BoxIcon::Warning);
        return;
    }
    const ScanInfoKind kind = ProbeScanInfo(path.toStdString()).Kind;
    if (kind == ScanInfoKind::None) {
        RunWizard(path);
    } else if (job_.MayStartWork()) {
        kind == ScanInfoKind::Tree ? LoadTreeInfoFrom(path) : LoadPartitionInfoFrom(path);
    }
}

void CMainFrame::OpenRecent(const QString& file) {
    if (QFileInfo::exists(file)) {
        OpenFile(file);
    } else if (AskYesNo(tr("%1 isn't there.\n\nDo you want to take it off the list?").arg(file),
                        tr("Confirm"))) {
        recent_.Remove(file);
    }
}

void CMainFrame::LoadTreeInfoByDialog() {
    if (!job_.MayStartWork()) {
        return;
    }
    const QString path = scanInfo_.ChooseTreeInfo();
    if (!path.isEmpty()) {
        LoadTreeInfoFrom(path);
    }
}

void CMainFrame::LoadTreeInfoFrom(const QString& path) {
    if (!GiveUpScan()) {
        return;
    }
    cataloguePlace_.KeepAwayFrom(ProbeScanInfo(path.toStdString()).Medium);
    const bool loaded = scanInfo_.LoadTree(path, [this] {
        panes_.BeginProgress(kBlankCaption);
        treeView_->FillTree();
    });
    panes_.EndProgress();
    if (loaded) {
        recent_.Note(path);
    } else {
        ClearViews();
    }
    UpdateCommands();
}

void CMainFrame::LoadPartitionInfoByDialog() {
    if (!job_.MayStartWork()) {
        return;
    }
    const QString path = scanInfo_.ChoosePartitionInfo();
    if (!path.isEmpty()) {
        LoadPartitionInfoFrom(path);
    }
}

void CMainFrame::LoadPartitionInfoFrom(const QString& path) {
    if (!GiveUpScan()) {
        return;
    }
    LoadPartitionInfo(path.toStdString(), [this, path] {
        recent_.Note(path);
        OpenFoundDrive();
    });
    UpdateCommands();
}

bool CMainFrame::SaveTree() { return job_.MayStartWork() && scanInfo_.SaveTree(); }

} // namespace thntfs
