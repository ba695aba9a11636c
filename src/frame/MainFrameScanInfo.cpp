// The main window's commands that load and save: scan information of both kinds, the log's text.

#include "content/TargetRules.h"
#include "dialogs/FileDialogs.h"
#include "engine/EngineState.h"
#include "engine/Host.h"
#include "frame/CataloguePlace.h"
#include "frame/MainFrame.h"
#include "platform/files/ReplacementFile.h"
#include "platform/system/Text.h"
#include "scaninfo/PartitionInfoFile.h"
#include "scaninfo/ProcessLog.h"
#include "scaninfo/ScanInfoNames.h"
#include "scaninfo/TreeInfoFile.h"
#include "shell/Boxes.h"
#include "wizard/WizardSheet.h"

#include <QApplication>
#include <ctime>

namespace thntfs {

namespace {

QString TreeFilter() { return QStringLiteral("Scan Info File (*.tht)"); }
QString PartitionFilter() { return QStringLiteral("Scan Info File (*.thd)"); }

std::tm LocalNow() {
    const std::time_t now = std::time(nullptr);
    return *std::localtime(&now);
}

// A file on the medium that is being read might land on what the user wants back.
bool LiesElsewhere(const QString& path, std::string_view extension) {
    const std::string target = ScanInfoPlaceOf(path.toStdString(), extension).Target;
    if (!CheckTarget(target, {SourceMediumPath(), {}, {}}).Allowed()) {
        ShowBox(QStringLiteral(
                    "%1 lies on the medium that is being read.\nPlease choose a place on another disk.")
                    .arg(QString::fromStdString(target)),
                QStringLiteral("Warning"), BoxIcon::Warning);
        return false;
    }
    return true;
}

// Scan information holds the medium's path, by which it is opened again.
bool PathIsKept() {
    if (Engine.SourceDisk.Description.size() < kMaxDescriptionUnits || DescriptionFits(Engine.ImagePath)) {
        return true;
    }
    ShowBox(QStringLiteral("Scan information can't be saved: the path of the medium is too long.\n"
                           "Please open the medium by a link with a shorter path."),
            QStringLiteral("Warning"), BoxIcon::Warning);
    return false;
}

// Files saved from another medium than the scanned one have wrong bytes under right names.
bool AcceptMedium(const MediumMatch& match) {
    const std::string text = MediumMatchText(match);
    if (!text.empty()) {
        LogLine(text, NarrowText(Engine.SourceDisk.Description), kLogFailed);
    }
    return !match.NeedsConsent() ||
           AskYesNo(QString::fromStdString(text + "\n\nDo you want to go on with this scan?"),
                    QStringLiteral("Warning"), BoxAnswer::No);
}

} // namespace

void CMainFrame::LoadTreeInfoByDialog() {
    if (!MayStartWork()) {
        return;
    }
    const QString path = ChooseFileToOpen(this, QStringLiteral("Load Tree Info"), TreeFilter());
    if (!path.isEmpty()) {
        LoadTreeInfoFrom(path);
    }
}

void CMainFrame::LoadTreeInfoFrom(const QString& path) {
    if (!GiveUpScan()) {
        return;
    }
    scanUnsaved_ = false;
    PlaceCatalogue(catalogueFolder_, ProbeScanInfo(path.toStdString()).Medium);
    const auto show = [this] {
        CreateProgressBar(QString(8, QLatin1Char(' ')));
        ScanInfoDirty = 1;
        NoScanYet = 0;
        TreeView->FillTree();
    };
    const ScanInfoResult result = LoadTreeInfo(path.toStdString(), show, AcceptMedium);
    ProgressBar.reset();
    if (!result.Done) {
        ClearViews();
    }
    UpdateCommands();
}

bool CMainFrame::SaveTreeInfoByDialog() {
    if (!MayStartWork()) {
        return false;
    }
    QWidget* wizard = QApplication::activeModalWidget(); // it may lead here as well as the menu
    const QString path =
        ChooseFileToSave(wizard != nullptr ? wizard : this, QStringLiteral("Save Tree Info"),
                         QString::fromStdString(SuggestedTreeInfoName(LocalNow())), TreeFilter(),
                         QString::fromLatin1(kTreeInfoExtension.data(), kTreeInfoExtension.size()));
    if (path.isEmpty() || !LiesElsewhere(path, kTreeInfoExtension) || !PathIsKept()) {
        return false;
    }
    const ScanInfoResult result = SaveTreeInfo(path.toStdString());
    ScanInfoDirty = 0;
    scanUnsaved_ = scanUnsaved_ && !result.Done;
    return result.Done;
}

void CMainFrame::LoadPartitionInfoByDialog() {
    if (!MayStartWork()) {
        return;
    }
    const QString path = ChooseFileToOpen(this, QStringLiteral("Load Partition Info"), PartitionFilter());
    if (!path.isEmpty()) {
        LoadPartitionInfoFrom(path);
    }
}

void CMainFrame::LoadPartitionInfoFrom(const QString& path) {
    if (!GiveUpScan()) {
        return;
    }
    LoadPartitionInfo(path.toStdString(), [this] { OpenFoundDrive(); });
    UpdateCommands();
}

void CMainFrame::SavePartitionInfoByDialog() {
    if (!MayStartWork()) {
        return;
    }
    const QString path =
        ChooseFileToSave(this, QStringLiteral("Save Partition Info"),
                         QString::fromStdString(SuggestedPartitionInfoName(LocalNow())), PartitionFilter(),
                         QString::fromLatin1(kPartitionInfoExtension.data(), kPartitionInfoExtension.size()));
    if (!path.isEmpty() && LiesElsewhere(path, kPartitionInfoExtension) && PathIsKept()) {
        SavePartitionInfo(path.toStdString());
    }
}

void CMainFrame::SaveLogByDialog() {
    const QString path =
        ChooseTextFileToSave(this, QStringLiteral("Save Process Log"), QLatin1String(kSuggestedLogName));
    if (path.isEmpty() || !LiesElsewhere(path, {})) {
        return;
    }
    ReplacementFile file;
    ErrorCode code = file.Create(path.toStdString());
    code = code == kErrorNone ? WriteLogText(LogList->Log(), file.Handle()) : code;
    code = code == kErrorNone ? file.Commit() : code;
    if (code != kErrorNone) {
        ShowBox(QStringLiteral("Error creating log file"), QStringLiteral("Error"), BoxIcon::Information);
    }
}

} // namespace thntfs
