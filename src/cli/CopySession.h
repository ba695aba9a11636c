#pragma once

#include "cli/Options.h"
#include "cli/TerminalHost.h"
#include "disktools/CopyJob.h"

#include <string>

namespace thntfs {

/// The terminal's host during a copy.
class CopyHost final : public TerminalHost {
public:
    void CopyPosition(std::uint64_t sectorsDone, std::uint64_t totalSectors) override;

    /// Passed at each single-sector read: a bad stretch takes long, and the time left grows with it.
    void PassGate() override;
};

enum class CopyWork { Imaging, Cloning };

/// One run of the terminal program that copies a medium. Options::Medium is the source, Options::Target the
/// target.
class CopySession {
public:
    CopySession(const Options& options, CopyWork work);
    ~CopySession();
    CopySession(const CopySession&) = delete;
    CopySession& operator=(const CopySession&) = delete;

    /// Opens the source as SourceDisk. Gives an exit code, and has said what is wrong where it isn't
    /// kExitDone.
    int OpenSourceDisk();

    /// Runs the job with a bar for each of its parts, unless it has been stopped already.
    void Copy(CopyJob& job);

    /// Tells in the log and on standard output what came of the job, and gives the exit code.
    int Finish(const CopyJob& job);

    CopyHost Host;

private:
    void BeginPart(CopyPart part);
    void LogEnd(bool completed) const;

    const Options& options_;
    CopyWork work_;
    CopyEnd end_ = CopyEnd::Stopped;
};

} // namespace thntfs
