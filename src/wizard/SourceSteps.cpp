#include "wizard/SourceSteps.h"

#include "engine/EngineState.h"
#include "partitions/OpenSource.h"
#include "partitions/PartitionTable.h"
#include "scaninfo/JobLog.h"
#include "shell/Boxes.h"
#include "shell/MessageTarget.h"
#include "shell/WaitCursor.h"
#include "wizard/SearchForPartitions.h"

namespace thntfs {

const SourceKind kDiskSource = {LogDiskChosen, "Use search for lost partition(s) option."};
const SourceKind kImageSource = {LogImageChosen, "Please use search for lost partition(s)."};

namespace {

bool TableNamesVolumes() {
    const WaitCursor slow; // a failing disk takes its time
    return ReadPartitionTable() != 0;
}

// A medium that gives nothing at all has no missing table: the reason comes first.
void TellUnreadableMedium(const std::string& path) {
    MediumAnswer answer;
    {
        const WaitCursor slow;
        answer = AskMedium();
    }
    if (!answer.Answers) {
        ShowBox(QString::fromStdString(path + " can't be read: " + SystemErrorText(answer.FirstSector)),
                QStringLiteral("Error"), BoxIcon::Stop);
    }
}

bool ReadTable(const SourceKind& kind, const std::string& path) {
    if (!TableNamesVolumes()) {
        TellUnreadableMedium(path);
        ShowBox(QString::fromLatin1(kind.NoPartitions), QStringLiteral("Volume Salvage (NTFS)"),
                BoxIcon::Stop);
        return false;
    }
    kind.LogChosen(path, false);
    return true;
}

bool Search(const SourceKind& kind, const std::string& path, QWidget* owner) {
    kind.LogChosen(path, true);
    return SearchForPartitions(Engine.SourceDisk.TotalSectors, owner);
}

} // namespace

bool GiveUpOldScan() { return SendWindowMessage(MainWindow(), WM_GIVE_UP_SCAN) == 0; }

bool CloseOldMedium() {
    if (!GiveUpOldScan()) {
        return false;
    }
    ResetEngineState();
    SendWindowMessage(MainWindow(), WM_CLEAR_VIEWS);
    return true;
}

bool ListPartitions(const SourceKind& kind, const std::string& path, std::uint8_t processingMode,
                    QWidget* owner) {
    return processingMode == 0 ? ReadTable(kind, path) : Search(kind, path, owner);
}

} // namespace thntfs
