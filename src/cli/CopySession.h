#pragma once

#include "cli/Options.h"
#include "cli/TerminalHost.h"
#include "disktools/CopyLedger.h"

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

    /// The job may run from here on, unless it has been stopped already.
    void Begin();
    /// A new bar: "Imaging", "Reading bad places again".
    void BeginPart(const std::string& label);

    /// Ends the job: tells in the log and on standard output what came of it, and gives the exit code.
    /// `mapPath` is empty where there is no map file.
    int Finish(const CopyLedger& ledger, const std::string& mapPath);

    CopyHost Host;

private:
    void LogEnd(bool completed) const;

    const Options& options_;
    CopyWork work_;
};

} // namespace thntfs
