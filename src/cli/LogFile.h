#pragma once

#include "cli/Options.h"
#include "engine/Host.h"
#include "platform/system/ErrorCodes.h"

#include <memory>
#include <string>

namespace thntfs {

class File;

/// The process log of a run, on its way into the file that --log names. Each record is written when it
/// arrives: a disk in ruins gives millions of them, and a run that is cut off leaves its log up to there.
class LogFile {
public:
    LogFile();
    ~LogFile();
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    /// Creates the file, where the options name one, before any work is done. Gives an exit code; where it
    /// isn't kExitDone, standard error says why. A place on the medium that is to be read is refused.
    int Open(const Options& options);

    /// Takes a record, with the present time. Does nothing where there is no file.
    void Add(ProcessLogEntry entry);

    /// Closes the file. Gives the exit code that a run is to end with: `code`, or kExitFailed, with a
    /// message, where it would be kExitDone but the log isn't complete.
    int Finish(int code);

private:
    void Write(const std::string& text);

    std::string path_;
    std::unique_ptr<File> file_;
    ErrorCode failure_ = kErrorNone;
};

/// The log file of this run.
LogFile& RunLog();

} // namespace thntfs
