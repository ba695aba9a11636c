#include "wizard/SourceSteps.h"

#include "engine/EngineState.h"
#include "partitions/OpenSource.h"
#include "partitions/ReadVolumes.h"
#include "partitions/VolumeList.h"
#include "partitions/WhyNoVolumes.h"
#include "shell/Boxes.h"
#include "shell/CoreTexts.h"
#include "shell/WaitCursor.h"
#include "shell/WindowMessages.h"
#include "wizard/SearchForPartitions.h"

#include <QCoreApplication>

namespace thntfs {

namespace {

bool TableNamesVolumes() {
    const WaitCursor slow; // a failing disk takes its time
    return ReadVolumes();
}

// A medium that gives nothing at all has no missing table: that is told first, and there is no further
// reason.
bool TellUnreadableMedium(const std::string& path) {
    MediumAnswer answer;
    {
        const WaitCursor slow;
        answer = AskMedium();
    }
    if (!answer.Answers) {
        ShowBox(QCoreApplication::translate("SourceSteps", "%1 can't be read: %2")
                    .arg(QString::fromStdString(path), ShownCoreText(SystemErrorText(answer.FirstSector))),
                QCoreApplication::translate("SourceSteps", "Error"), BoxIcon::Stop);
    }
    return !answer.Answers;
}

QString Reason() {
    const WaitCursor slow;
    return ShownCoreText(WhyNoVolumes());
}

/// A sentence on encrypted volumes, if there is one; else the advice to search.
QString NoPartitionsText(const ChosenSource& source) {
    for (const TableVolume& entry : Engine.TableVolumes) {
        if (entry.State == TableVolumeState::Encrypted) {
            return QCoreApplication::translate("SourceSteps", "Start sector %1: %2.")
                .arg(entry.StartSector)
                .arg(ShownCoreText(ProblemText(entry.State)));
        }
    }
    return source.NoPartitions;
}

bool ReadTable(const ChosenSource& source) {
    if (!TableNamesVolumes()) {
        const QString reason = TellUnreadableMedium(source.Path) ? QString() : Reason();
        ShowBox(NoPartitionsText(source), QCoreApplication::translate("SourceSteps", "Volume Salvage (NTFS)"),
                BoxIcon::Stop, BoxButtons::Ok, BoxAnswer::Ok, reason);
        return false;
    }
    source.LogChosen(false);
    return true;
}

bool Search(const ChosenSource& source, QWidget* owner) {
    source.LogChosen(true);
    return SearchForPartitions(Engine.SourceDisk.TotalSectors, owner);
}

} // namespace

QString WayToTheRight(const std::string& path) {
    return QCoreApplication::translate(
               "SourceSteps",
               "This program may not read the disk %1.\n\n"
               "Reading a disk needs a right that an ordinary user doesn't have, and there is no disk "
               "service "
               "here (UDisks2, in the package udisks2) that could be asked for it. In a terminal an "
               "administrator can make an image of the disk, which this program then opens:\n\n"
               "    sudo ./run image %1 /media/usb/disk.th2\n\n"
               "or add you to the group \"disk\"; then log in again.")
        .arg(QString::fromStdString(path));
}

bool GiveUpOldScan() { return WM_GIVE_UP_SCAN.Send(MainWindow()) == 0; }

bool CloseOldMedium() {
    if (!GiveUpOldScan()) {
        return false;
    }
    ResetEngineState();
    WM_CLEAR_VIEWS.Send(MainWindow());
    return true;
}

bool ListPartitions(const ChosenSource& source, std::uint8_t processingMode, QWidget* owner) {
    return processingMode == 0 ? ReadTable(source) : Search(source, owner);
}

} // namespace thntfs
