#pragma once

#include "disktools/CopyJob.h"
#include "disktools/CopySums.h"
#include "shell/DesktopHost.h"

namespace thntfs {

/// How far a copy is, in sectors.
struct CopyFigures {
    CopyPart Part = CopyPart::Copying;
    std::uint64_t Position = 0; ///< of the source, behind what was copied last
    std::uint64_t Done = 0;     ///< in this part of this run
    std::uint64_t PartTotal = 0;
    double Seconds = 0; ///< that the copy has been at work, the user's pauses left out
    CopySums Sums;
};

/// What the engine reports to while a copy runs. Each transfer passes the gate; the way to the interface
/// thread is gone only where the percent has changed or some time has passed, since it takes as long as a
/// good part of a transfer.
class CopyHost final : public DesktopHost {
public:
    /// In place of the host in use from here to the destructor, to be called with no worker running. Dialog
    /// and job are the caller's.
    CopyHost(MessageTarget& dialog, const CopyJob& job);
    ~CopyHost() override;
    CopyHost(const CopyHost&) = delete;
    CopyHost& operator=(const CopyHost&) = delete;

    /// The worker begins a part.
    void BeginPart(CopyPart part);
    /// Sends what came of the copy.
    void TellLast();

    void CopyPosition(std::uint64_t sectorsDone, std::uint64_t totalSectors) override;
    void PassGate() override;
    void JobProgress() override;

private:
    [[nodiscard]] bool IsDue() const;
    void Report();
    template <typename Wait>
    void WaitFor(Wait wait);

    EngineHost& before_;
    MessageTarget& dialog_;
    const CopyJob& job_;
    CopyPart part_ = CopyPart::Copying;
    std::uint64_t position_ = 0;
    int percent_ = -1;
    double began_;
    double waited_ = 0; ///< seconds in the gate and on the way
    double reported_ = 0;
};

} // namespace thntfs
