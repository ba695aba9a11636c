#include "frame/FolderMount.h"

#include "content/TargetName.h"
#include "content/TargetRules.h"
#include "engine/EngineState.h"
#include "frame/MountCall.h"
#include "mount/Mount.h"
#include "partitions/ExamineVolumes.h"
#include "platform/media/LentDisk.h"
#include "platform/media/Medium.h"
#include "scaninfo/TreeInfoFile.h"
#include "shell/Boxes.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>
#include <utility>

namespace thntfs {

namespace {

constexpr int kEndMilliseconds = 5000;
constexpr int kMaxFolders = 100; // of one name

void ShowInFileManager(const QString& folder) { QDesktopServices::openUrl(QUrl::fromLocalFile(folder)); }

// A folder of the user's own, and in it one of ours, that nobody else can look into.
QString PlaceOfFolders() {
    const QString runtime = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    const QDir place(runtime + QStringLiteral("/th-ntfs"));
    const bool made = !runtime.isEmpty() && place.mkpath(QStringLiteral("."));
    return made && QFile::setPermissions(place.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner)
               ? place.path()
               : QString();
}

QString NameOfVolume() {
    const QString label = QString::fromStdU16String(LabelOfVolumeInWork()).trimmed();
    const QString medium = QFileInfo(QString::fromStdString(SourceMediumPath())).completeBaseName();
    return QString::fromStdString(TargetName((label.isEmpty() ? medium : label).toStdU16String()));
}

} // namespace

FolderMount::FolderMount(Show show)
    : show_(show ? std::move(show) : ShowInFileManager) {
    QObject::connect(&process_, &QProcess::readyReadStandardOutput, [this] { TakeOutput(); });
    QObject::connect(&process_, &QProcess::finished, [this] { TakeEnd(); });
    QObject::connect(&process_, &QProcess::errorOccurred, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            TakeEnd();
        }
    });
}

FolderMount::~FolderMount() { End(); }

void FolderMount::Open(const QString& program) {
    if (mounted_) {
        show_(folder_);
    } else if (process_.state() == QProcess::NotRunning) {
        Start(program);
    }
}

void FolderMount::Start(const QString& program) {
    if (!CanMount()) {
        TellFailure(QString::fromStdString(MountObstacle({})));
        return;
    }
    if (!MakeFolder()) {
        TellFailure(tr("A folder to show the files in couldn't be made."));
        return;
    }
    if (!KeepScan()) {
        RemoveFolder();
        TellFailure(tr("The scan's result couldn't be written to a temporary file."));
        return;
    }
    Run(program.isEmpty() ? QCoreApplication::applicationFilePath() : program);
}

void FolderMount::Run(const QString& program) {
    QStringList words{QLatin1String(kMountWord), scan_->filePath(QStringLiteral("scan.tht")), folder_};
    const Medium* medium = Engine.SourceDisk.MediaHandle.get();
    const LentDisk* disk = medium != nullptr ? medium->Lent() : nullptr;
    if (disk != nullptr) {
        words.append(QString::fromStdString(WordForLent(*disk)));
    }
    process_.setChildProcessModifier([disk] {
        if (disk != nullptr) {
            KeepForProgram(*disk);
        }
    });
    process_.start(program, words);
}

bool FolderMount::MakeFolder() {
    const QString place = PlaceOfFolders();
    const QString name = NameOfVolume();
    folder_ = place + QLatin1Char('/') + name;
    for (int number = 2; !place.isEmpty() && number <= kMaxFolders; ++number) {
        if (QDir().mkdir(folder_)) {
            return true;
        }
        folder_ = place + QLatin1Char('/') +
                  QString::fromStdString(NumberedName(name.toStdString(), static_cast<unsigned>(number)));
    }
    return false;
}

bool FolderMount::KeepScan() {
    scan_ = std::make_unique<QTemporaryDir>(QString::fromStdString(Engine.CatalogueFolder) +
                                            QStringLiteral("/mount-XXXXXX"));
    return scan_->isValid() && SaveTreeInfo(scan_->filePath(QStringLiteral("scan.tht")).toStdString()).Done;
}

void FolderMount::TakeOutput() {
    if (!mounted_ && process_.readAllStandardOutput().contains(kMountedLine)) {
        mounted_ = true;
        scan_.reset();
        show_(folder_);
    }
}

// Unmounted from outside is an end like any other.
void FolderMount::TakeEnd() {
    const bool wasMounted = std::exchange(mounted_, false);
    scan_.reset();
    RemoveFolder();
    if (!wasMounted) {
        const QString reason = QString::fromLocal8Bit(process_.readAllStandardError()).trimmed();
        TellFailure(reason.isEmpty() ? process_.errorString() : reason);
    }
}

void FolderMount::End() {
    if (process_.state() == QProcess::NotRunning) {
        return;
    }
    process_.blockSignals(true); // nothing is told of an end that is wanted
    process_.terminate();
    if (!process_.waitForFinished(kEndMilliseconds)) {
        process_.kill();
        process_.waitForFinished(kEndMilliseconds);
    }
    process_.blockSignals(false);
    mounted_ = false;
    scan_.reset();
    RemoveFolder();
}

// Only ever an empty one.
void FolderMount::RemoveFolder() { QDir().rmdir(folder_); }

void FolderMount::TellFailure(const QString& reason) {
    ShowBox(tr("The files can't be shown as a folder.\n\n%1").arg(reason), tr("Open as Folder"),
            BoxIcon::Warning);
}

} // namespace thntfs
