#pragma once

#include <cstdint>
#include <string>

namespace thntfs {

struct DiskAnswer;
enum class DiskUse : std::uint8_t;

/// One record of the process log.
struct ProcessLogEntry {
    std::string Name;        ///< first column, narrow text
    std::string Description; ///< second column, narrow text
    std::string Time;        ///< third column, written by the log itself on arrival
    std::uint8_t Status = 0; ///< kLogInProgress, kLogFailed or kLogDone
    std::string Opens{};     ///< folder that the row offers to open, empty for none; in no file
};

enum class BoxIcon { Information, Warning, Stop };

inline constexpr std::uint8_t kLogInProgress = 0;
inline constexpr std::uint8_t kLogFailed = 1;
inline constexpr std::uint8_t kLogDone = 2;

/// What the engine reports to and asks of whoever runs it: the desktop program, the terminal program, a test.
/// All calls come from the thread that runs the engine and return when they have been handled. Each has a
/// default that does nothing, but for the pause.
class EngineHost {
public:
    EngineHost() = default;
    virtual ~EngineHost() = default;
    EngineHost(const EngineHost&) = delete;
    EngineHost& operator=(const EngineHost&) = delete;

    /// A record for the process log.
    virtual void LogEvent(const ProcessLogEntry& entry);

    /// A look at ProgressDone of ProgressTotal of the engine state. Called often; the host decides what is
    /// worth showing.
    virtual void JobProgress();

    /// A blocking box with the caption "Error" and the stop icon.
    virtual void ErrorBox(const std::string& text);

    /// A blocking box with one button.
    virtual void MessageBox(const std::string& text, const std::string& caption, BoxIcon icon);

    /// Asks whoever may, on the user's word, for a disk that this user may not open. Without anybody to ask
    /// the answer is kErrorAccessDenied.
    virtual DiskAnswer AskForDisk(const std::string& devicePath, DiskUse use);

    /// One second's pause before a failed transport is tried again.
    virtual void PauseOneSecond();

    /// The gate of the user's pause: returns when the job may go on. Passed at each batch and each
    /// single-sector read.
    virtual void PassGate();

    /// The partition search has reached a sector (absolute) of a range that ends before `endSector`.
    virtual void SearchPosition(std::uint64_t sector, std::uint64_t endSector);

    /// The partition search has added a volume that starts at an absolute sector.
    virtual void PartitionFound(std::uint64_t startSector);

    /// A copy has put out `sectorsDone` of `totalSectors`.
    virtual void CopyPosition(std::uint64_t sectorsDone, std::uint64_t totalSectors);
};

/// The host in use; one that does nothing until SetHost is called.
EngineHost& Host();

/// Puts a host in place, null for the one that does nothing. The caller keeps ownership.
void SetHost(EngineHost* host);

/// Sends a record made of these three to the host's log.
void LogLine(const std::string& name, const std::string& description, std::uint8_t status);

} // namespace thntfs
