// What the commands of the main window do.

#include "dialogs/AboutBox.h"
#include "dialogs/HelpViewer.h"
#include "frame/CommandIds.h"
#include "frame/CommandTable.h"
#include "frame/MainFrame.h"
#include "scaninfo/ScanInfo.h"
#include "shell/Boxes.h"
#include "shell/DesktopState.h"
#include "wizard/WizardSheet.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QStatusBar>
#include <QStyleFactory>

namespace thntfs {

namespace {

constexpr std::array<int, 4> kToolbarPixels{16, 24, 32, 48};

QString PlainTitle(std::uint32_t command) {
    return QString::fromLatin1(TextOfCommand(command).Menu)
        .section(QLatin1Char('\t'), 0, 0)
        .remove(QLatin1Char('&'))
        .trimmed();
}

// The one local file that is being dragged, empty where it is anything else.
QString DroppedFile(const QMimeData* data) {
    const QList<QUrl> urls = data->urls();
    return urls.size() == 1 && urls.front().isLocalFile() ? urls.front().toLocalFile() : QString();
}

// Why a file can't be opened, empty where it can.
QString FaultOf(const QFileInfo& file) {
    if (file.isDir()) {
        return file.filePath() + QStringLiteral(" is a folder.\nPlease open a file: the image of a disk, or "
                                                "saved scan information (.tht, .thd).");
    }
    return file.exists() ? QString() : file.filePath() + QStringLiteral(" isn't there.");
}

} // namespace

void CMainFrame::RunCommand(std::uint32_t command) {
    if (RunViewCommand(command) || RunHelpCommand(command)) {
        return;
    }
    switch (command) {
    case kCmdWizard:
        RunWizard();
        break;
    case kCmdOpenFoundDrive:
        OpenFoundDrive();
        break;
    case kCmdLoadPartitionInfo:
        LoadPartitionInfoByDialog();
        break;
    case kCmdLoadTreeInfo:
        LoadTreeInfoByDialog();
        break;
    case kCmdSavePartitionInfo:
        SavePartitionInfoByDialog();
        break;
    case kCmdSaveTreeInfo:
        SaveTreeInfoByDialog();
        break;
    case kCmdExit:
        close();
        break;
    case kCmdStop:
        StopProcess();
        break;
    case kCmdTurboScan:
        StartTurboScan();
        break;
    case kCmdParentFolder:
        if (Desktop.WaitDialog == nullptr) {
            TreeView->GoToParent();
        }
        break;
    case kCmdClearLog:
        LogList->Clear();
        break;
    case kCmdSaveLog:
        SaveLogByDialog();
        break;
    case kCmdEscape:
        ClearFindMark();
        break;
    default:
        TellNotBuilt(PlainTitle(command));
        break;
    }
    UpdateCommands();
}

bool CMainFrame::RunViewCommand(std::uint32_t command) {
    if (command >= kCmdLargeIcons && command <= kCmdDetails) {
        SetViewMode(command);
    } else if (command >= kCmdThemeOffice2000 && command <= kCmdThemeNative) {
        SetTheme(command);
    } else if (command >= kCmdToolbar16 && command <= kCmdToolbar48) {
        SetToolbarSize(kToolbarPixels[command - kCmdToolbar16]);
    } else if (command == kCmdViewToolbar) {
        toolbar_->setVisible(toolbar_->isHidden());
    } else if (command == kCmdViewStatusBar) {
        statusBar()->setVisible(statusBar()->isHidden());
    } else {
        return false;
    }
    UpdateCommands();
    return true;
}

bool CMainFrame::RunHelpCommand(std::uint32_t command) {
    switch (command) {
    case kCmdHelpContents:
        ShowHelp(QStringLiteral("contents.htm"));
        return true;
    case kCmdFeatures:
        ShowHelp(QStringLiteral("features.htm"));
        return true;
    case kCmdContact:
        ShowHelp(QStringLiteral("contact.htm"));
        return true;
    case kCmdFaq:
        ShowHelp(QStringLiteral("faq.htm"));
        return true;
    case kCmdTips:
        WM_SHOW_TIPS.Send(this);
        return true;
    case kCmdAbout:
        ShowAboutBox(this);
        return true;
    default:
        return false;
    }
}

void CMainFrame::RunWizard(const QString& imagePath) {
    if (!MayStartWork()) {
        return;
    }
    CWizardSheet sheet(this, LogicalDriveNumber);
    if (!imagePath.isEmpty()) {
        sheet.OpenOnImage(imagePath);
    }
    RunSheet(sheet);
}

void CMainFrame::OpenFoundDrive() {
    if (!MayStartWork()) {
        return;
    }
    CWizardSheet sheet(this, LogicalDriveNumber);
    sheet.OpenOnPartitionList(Desktop.ProcessingMode);
    RunSheet(sheet);
}

// A click in the list of partitions counts though the wizard is cancelled.
void CMainFrame::RunSheet(CWizardSheet& sheet) {
    const bool finished = sheet.Run() == kWizardFinished;
    LogicalDriveNumber = sheet.State().LogicalDriveNumber;
    if (finished) {
        TakeWizardResult(sheet);
    }
}

void CMainFrame::SetViewMode(std::uint32_t command) {
    ViewMode = command >= kCmdLargeIcons && command <= kCmdDetails ? command : kCmdDetails;
    ListView->SetViewMode(ViewMode);
}

// A theme is one of the toolkit's styles; the start-up theme is the one that suits the user's desktop.
void CMainFrame::SetTheme(std::uint32_t command) {
    static const QString native = QApplication::style()->objectName();
    switch (command) {
    case kCmdThemeOffice2000:
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Windows")));
        break;
    case kCmdThemeOfficeXp:
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
        break;
    default:
        if (QApplication::style()->objectName() != native) {
            QApplication::setStyle(QStyleFactory::create(native));
        }
        break;
    }
    ThemeIndex = static_cast<std::uint8_t>(command - kCmdThemeOffice2000);
}

void CMainFrame::SetToolbarSize(int pixels) {
    const auto* known = std::find(kToolbarPixels.begin(), kToolbarPixels.end(), pixels);
    const int size = known != kToolbarPixels.end() ? pixels : 32;
    toolbar_->setIconSize(QSize(size, size));
}

void CMainFrame::ClearFindMark() {
    FoundEntry = kNoEntry;
    ListView->SetFoundEntry(kNoEntry);
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
    const QString path = QFileInfo(file).absoluteFilePath();
    const QString fault = FaultOf(QFileInfo(path));
    if (!fault.isEmpty()) {
        ShowBox(fault, QStringLiteral("Warning"), BoxIcon::Warning);
        return;
    }
    const ScanInfoKind kind = ProbeScanInfo(path.toStdString()).Kind;
    if (kind == ScanInfoKind::None) {
        RunWizard(path);
    } else if (MayStartWork()) {
        kind == ScanInfoKind::Tree ? LoadTreeInfoFrom(path) : LoadPartitionInfoFrom(path);
    }
}

} // namespace thntfs
