#include "frame/ScanInfoFiles.h"

#include "dialogs/FileDialogs.h"
#include "engine/EngineState.h"
#include "engine/Host.h"
#include "frame/RecentFiles.h"
#include "frame/TargetQuestion.h"
#include "platform/files/ReplacementFile.h"
#include "platform/system/Text.h"
#include "scaninfo/PartitionInfoFile.h"
#include "scaninfo/ProcessLog.h"
#include "scaninfo/ScanInfoNames.h"
#include "scaninfo/TreeInfoFile.h"
#include "shell/Boxes.h"

#include <QApplication>
#include <QCoreApplication>
#include <ctime>

namespace thntfs {

namespace {

QString TreeFilter() { return QCoreApplication::translate("ScanInfoFiles", "Scan Info File (*.tht)"); }
QString PartitionFilter() { return QCoreApplication::translate("ScanInfoFiles", "Scan Info File (*.thd)"); }

QString TextOf(std::string_view text) { return QString::fromLatin1(text.data(), qsizetype(text.size())); }

std::tm LocalNow() {
    const std::time_t now = std::time(nullptr);
    return *std::localtime(&now);
}

QString TargetOf(const QString& path, std::string_view extension) {
    return QString::fromStdString(ScanInfoPlaceOf(path.toStdString(), extension).Target);
}

bool MayWriteScanInfo(const QString& path, std::string_view extension) {
    return MayWriteTo(TargetOf(path, extension));
}

// Scan information holds the medium's path, by which it is opened again.
bool PathIsKept() {
    if (Engine.SourceDisk.Description.size() < kMaxDescriptionUnits || DescriptionFits(Engine.ImagePath)) {
        return true;
    }
    ShowBox(QCoreApplication::translate(
                "ScanInfoFiles", "Scan information can't be saved: the path of the medium is too long.\n"
                                 "Please open the medium by a link with a shorter path."),
            QCoreApplication::translate("ScanInfoFiles", "Warning"), BoxIcon::Warning);
    return false;
}

// Files saved from another medium than the scanned one have wrong bytes under right names.
bool AcceptMedium(const MediumMatch& match) {
    const std::string text = MediumMatchText(match);
    if (!text.empty()) {
        LogLine(text, NarrowText(Engine.SourceDisk.Description), kLogFailed);
    }
    return !match.NeedsConsent() ||
           AskYesNo(QCoreApplication::translate("ScanInfoFiles", "%1\n\nDo you want to go on with this scan?")
                        .arg(QString::fromStdString(text)),
                    QCoreApplication::translate("ScanInfoFiles", "Warning"), BoxAnswer::No);
}

} // namespace

void ScanInfoFiles::NoteBasicScan() {
    NoteTurboScan();
    noScanYet_ = false;
}

void ScanInfoFiles::NoteTurboScan() {
    scanInfoDirty_ = true;
    scanUnsaved_ = true;
}

// A scan that has been given up can't be saved any more, so there is nothing to ask about.
bool ScanInfoFiles::MayForgetCatalogue() const {
    return !scanInfoDirty_ || noScanYet_ || !CatalogueIsOfVolumeInWork();
}

QString ScanInfoFiles::ChooseTreeInfo() const {
    return ChooseFileToOpen(&owner_, tr("Load Tree Info"), TreeFilter(), FileKind::Scan);
}

QString ScanInfoFiles::ChoosePartitionInfo() const {
    return ChooseFileToOpen(&owner_, tr("Load Partition Info"), PartitionFilter(), FileKind::Scan);
}

bool ScanInfoFiles::LoadTree(const QString& path, const std::function<void()>& show) {
    scanUnsaved_ = false;
    const auto showLoaded = [this, &show] {
        scanInfoDirty_ = true;
        noScanYet_ = false;
        show();
    };
    return LoadTreeInfo(path.toStdString(), showLoaded, AcceptMedium).Done;
}

bool ScanInfoFiles::SaveTree() {
    QWidget* wizard = QApplication::activeModalWidget(); // it may lead here as well as the menu
    const QString path = ChooseFileToSave(wizard != nullptr ? wizard : &owner_, tr("Save Tree Info"),
                                          QString::fromStdString(SuggestedTreeInfoName(LocalNow())),
                                          TreeFilter(), TextOf(kTreeInfoExtension), FileKind::Scan);
    if (path.isEmpty() || !MayWriteScanInfo(path, kTreeInfoExtension) || !PathIsKept()) {
        return false;
    }
    const bool done = SaveTreeInfo(path.toStdString()).Done;
    scanInfoDirty_ = false;
    scanUnsaved_ = scanUnsaved_ && !done;
    if (done) {
        recent_.Note(TargetOf(path, kTreeInfoExtension));
    }
    return done;
}

void ScanInfoFiles::SavePartitions() const {
    const QString path = ChooseFileToSave(&owner_, tr("Save Partition Info"),
                                          QString::fromStdString(SuggestedPartitionInfoName(LocalNow())),
                                          PartitionFilter(), TextOf(kPartitionInfoExtension), FileKind::Scan);
    if (!path.isEmpty() && MayWriteScanInfo(path, kPartitionInfoExtension) && PathIsKept() &&
        SavePartitionInfo(path.toStdString()).Done) {
        recent_.Note(TargetOf(path, kPartitionInfoExtension));
    }
}

void SaveLog(QWidget& owner, const ProcessLog& log) {
    const QString path =
        ChooseTextFileToSave(&owner, QCoreApplication::translate("ScanInfoFiles", "Save Process Log"),
                             QLatin1String(kSuggestedLogName));
    if (path.isEmpty() || !MayWriteTo(path)) {
        return;
    }
    ReplacementFile file;
    ErrorCode code = file.Create(path.toStdString());
    code = code == kErrorNone ? WriteLogText(log, file.Handle()) : code;
    code = code == kErrorNone ? file.Commit() : code;
    if (code != kErrorNone) {
        ShowBox(QCoreApplication::translate("ScanInfoFiles", "Error creating log file"),
                QCoreApplication::translate("ScanInfoFiles", "Error"), BoxIcon::Information);
    }
}

} // namespace thntfs
