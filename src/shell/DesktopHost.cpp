#include "shell/DesktopHost.h"

#include "diskservice/DiskService.h"
#include "engine/EngineState.h"
#include "platform/system/Interrupt.h"
#include "shell/Boxes.h"
#include "shell/CoreTexts.h"
#include "shell/EscapeWatch.h"
#include "shell/PauseGate.h"
#include "shell/WindowMessages.h"

namespace thntfs {

namespace {

constexpr std::chrono::milliseconds kManyWorksPace{100};
constexpr std::chrono::milliseconds kTimePace{1000};

} // namespace

void DesktopHost::LogEvent(const ProcessLogEntry& entry) { WM_LOG_EVENT.Send(MainWindow(), entry); }

// The question for a password is a window of the desktop session, not one of ours.
DiskAnswer DesktopHost::AskForDisk(const std::string& devicePath, DiskUse use) {
    if (!OnInterfaceThread()) {
        return OpenByDiskService(devicePath, use, [] { return !WasInterrupted(); });
    }
    EscapeWatch watch;
    return OpenByDiskService(devicePath, use, [&watch] { return watch.MayGoOn(); });
}

// The bar shows whole percents and the time whole seconds, so a look that would change neither is spared the
// way to the other thread.
void DesktopHost::JobProgress() {
    const int percent = ProgressPercent();
    if (manyWorks_ ? IsDue(kManyWorksPace) : percent != sentPercent_ || IsDue(kTimePace)) {
        sentPercent_ = percent;
        WM_JOB_PROGRESS.Send(MainWindow());
        passedOn_ = std::chrono::steady_clock::now();
    }
}

bool DesktopHost::IsDue(std::chrono::milliseconds pace) const {
    return std::chrono::steady_clock::now() - passedOn_ >= pace;
}

void DesktopHost::SetManyWorks(bool many) {
    manyWorks_ = many;
    failuresTold_.clear();
}

void DesktopHost::ErrorBox(const std::string& text) {
    if (manyWorks_ && !failuresTold_.insert(text).second) {
        return;
    }
    ShowBox(ShownCoreText(text), tr("Error"), BoxIcon::Stop);
}

void DesktopHost::MessageBox(const std::string& text, const std::string& caption, BoxIcon icon) {
    ShowBox(ShownCoreText(text), ShownCoreText(caption), icon);
}

void DesktopHost::PassGate() {
    if (!OnInterfaceThread()) {
        WorkerGate().Pass();
    }
}

void DesktopHost::SetSearchDialog(MessageTarget* dialog) {
    searchDialog_ = dialog;
    sentSearchPercent_ = kNothingSent;
}

// As with a job's progress; a search comes here for each piece of a disk.
void DesktopHost::SearchPosition(std::uint64_t sector, std::uint64_t endSector) {
    const auto position = static_cast<std::uint32_t>(sector);
    const auto end = static_cast<std::uint32_t>(endSector);
    const int percent = PercentOf(position, end);
    if (percent != sentSearchPercent_ || IsDue(kTimePace)) {
        sentSearchPercent_ = percent;
        searchedTo_ = {sector, endSector};
        WM_SEARCH_POSITION.Send(searchDialog_, position, end);
        passedOn_ = std::chrono::steady_clock::now();
    }
}

void DesktopHost::PartitionFound(std::uint64_t startSector) {
    WM_PARTITION_FOUND.Send(searchDialog_, static_cast<std::uint32_t>(startSector));
}

void DesktopHost::CopyPosition(std::uint64_t sectorsDone, std::uint64_t totalSectors) {
    WM_COPY_POSITION.Send(MainWindow(), static_cast<std::uint32_t>(sectorsDone),
                          static_cast<std::uint32_t>(totalSectors));
}

DesktopHost& TheDesktopHost() {
    static DesktopHost host;
    return host;
}

int PercentOf(std::uint64_t done, std::uint64_t total) {
    return total == 0 ? 0 : static_cast<int>(static_cast<double>(done) / static_cast<double>(total) * 100);
}

int ProgressPercent() { return PercentOf(Engine.ProgressDone, Engine.ProgressTotal); }

} // namespace thntfs
