#pragma once

#include "engine/Host.h"
#include "shell/MessageTarget.h"

#include <QCoreApplication>
#include <atomic>
#include <chrono>
#include <set>
#include <string>

namespace thntfs {

/// How far a search is, in sectors.
struct SearchPlace {
    std::uint64_t Sector = 0;
    std::uint64_t EndSector = 0;
};

/// What the engine knows of the desktop program. Everything it says goes on as a sent message.
class DesktopHost : public EngineHost {
    Q_DECLARE_TR_FUNCTIONS(DesktopHost)

public:
    void LogEvent(const ProcessLogEntry& entry) override;
    DiskAnswer AskForDisk(const std::string& devicePath, DiskUse use) override;
    void JobProgress() override;
    void ErrorBox(const std::string& text) override;
    void MessageBox(const std::string& text, const std::string& caption, BoxIcon icon) override;
    void PassGate() override;
    void SearchPosition(std::uint64_t sector, std::uint64_t endSector) override;
    void PartitionFound(std::uint64_t startSector) override;
    void CopyPosition(std::uint64_t sectorsDone, std::uint64_t totalSectors) override;

    /// The dialog that a search reports to, null for none. Set while no search runs.
    void SetSearchDialog(MessageTarget* dialog);
    /// From a search's start until its worker adds no candidate any more, also after it was told to stop.
    [[nodiscard]] bool IsSearching() const { return searchDialog_ != nullptr; }
    /// The whole of what WM_SEARCH_POSITION tells in 32 bits; for whoever handles that.
    [[nodiscard]] const SearchPlace& SearchedTo() const { return searchedTo_; }

    /// To be called when a new progress bar stands, or the phase has changed that its text names: the next
    /// look at the progress is passed on whatever it says.
    void BeginProgress() { sentPercent_ = kNothingSent; }

    /// To be called by a job of many small works, each with a progress of its own, before and after: looks at
    /// the progress are passed on some times a second, whatever they say, and a failure that repeats itself
    /// has one box.
    void SetManyWorks(bool many);

private:
    [[nodiscard]] bool IsDue(std::chrono::milliseconds pace) const;

    static constexpr int kNothingSent = -1;

    MessageTarget* searchDialog_ = nullptr;
    int sentSearchPercent_ = kNothingSent; ///< written by the search's thread while one runs
    SearchPlace searchedTo_;               ///< as well
    std::atomic<int> sentPercent_{kNothingSent};

    // The worker's.
    bool manyWorks_ = false;
    std::chrono::steady_clock::time_point passedOn_;
    std::set<std::string> failuresTold_;
};

/// The one that the program runs with.
DesktopHost& TheDesktopHost();

/// Whole percent, rounded down. A total of 0 gives 0.
int PercentOf(std::uint64_t done, std::uint64_t total);

/// The percent of ProgressDone in ProgressTotal.
int ProgressPercent();

} // namespace thntfs
