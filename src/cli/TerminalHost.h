#pragma once

#include "cli/ProgressBar.h"
#include "engine/Host.h"

#include <cstdint>
#include <functional>
#include <string>

namespace thntfs {

/// The engine's host in the terminal: boxes and read errors become lines on standard error, progress a bar.
/// All records go to the log file of the run; of what else failed, the command itself tells.
class TerminalHost : public EngineHost {
public:
    TerminalHost();
    ~TerminalHost() override;

    void LogEvent(const ProcessLogEntry& entry) override;
    DiskAnswer AskForDisk(const std::string& devicePath, DiskUse use) override;
    void JobProgress() override;
    void ErrorBox(const std::string& text) override;
    void SearchPosition(std::uint64_t sector, std::uint64_t endSector) override;
    void PartitionFound(std::uint64_t startSector) override;
    void MessageBox(const std::string& text, const std::string& caption, BoxIcon icon) override;

    /// Where the search begins, for its progress.
    void SearchFrom(std::uint64_t sector) { searchFirst_ = sector; }

    /// Says how many read errors were not shown one by one, if any.
    void TellSuppressed();

    /// True once a fatal failure of the medium or of the catalogue has been shown.
    [[nodiscard]] bool HadFatal() const { return !lastBox_.empty(); }

    /// True where the fatal failure was that nobody reads the output any more, which is no fault and isn't
    /// shown.
    [[nodiscard]] bool ReaderGone() const;

    ProgressBar Bar;

    /// Where a job has many small works: brings the bar up to date in place of the progress pair, which
    /// counts in one of them.
    std::function<void()> ShowWork;

private:
    std::uint64_t readErrors_ = 0;
    std::uint64_t searchFirst_ = 0;
    std::string lastBox_;
};

} // namespace thntfs
