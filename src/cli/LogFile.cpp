#include "cli/LogFile.h"

#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "cli/ScanInfoSteps.h"
#include "platform/Dates.h"
#include "platform/DiskIdentity.h"
#include "platform/Paths.h"
#include "scaninfo/ProcessLog.h"
#include "scaninfo/ScanInfo.h"

#include <utility>
#include <vector>

namespace thntfs {

namespace {

std::string FailureText(const std::string& path, ErrorCode code) {
    return "Error creating log file " + path + ": " + SystemErrorText(code);
}

// A saved result stands for the medium that it was made from, and must not be written over itself.
bool WouldHarm(const std::string& path, const std::string& medium) {
    return SharesMedium(path, medium) || SharesMedium(path, ProbeScanInfo(medium).Medium);
}

bool IsCopyTarget(const std::string& path, const Options& options) {
    if (options.Chosen != Command::Image && options.Chosen != Command::Clone) {
        return false;
    }
    const std::string target = AbsolutePath(options.Target);
    const std::string place = AbsolutePath(path);
    return place == target || place == target + ".map" || SharesMedium(path, options.Target);
}

// The file that the run itself is to write, so far as the words tell; empty where the log doesn't meet it.
std::string TargetAt(const std::string& path, const Options& options) {
    if (options.SaveInfo && AbsolutePath(path) == SaveInfoTarget(options)) {
        return SaveInfoTarget(options);
    }
    return IsCopyTarget(path, options) ? options.Target : std::string();
}

} // namespace

int LogFile::Open(const Options& options) {
    if (!options.Log) {
        return kExitDone;
    }
    path_ = *options.Log;
    if (WouldHarm(path_, options.Medium)) {
        PrintMessage("The log can't go to " + path_ + ", which is or lies on the medium that is to be read.");
        return kExitFailed;
    }
    if (const std::string target = TargetAt(path_, options); !target.empty()) {
        PrintMessage("The log can't go to " + path_ + ", since " + target + " is to be written.");
        return kExitWrongWords;
    }
    if (const ErrorCode code = Files().Open(path_, FileMode::CreateAlways, file_); code != kErrorNone) {
        PrintMessage(FailureText(path_, code));
        return kExitFailed;
    }
    Write(LogHeadText());
    return kExitDone;
}

void LogFile::Add(ProcessLogEntry entry) {
    if (file_ != nullptr) {
        entry.Time = LogTimeNow();
        Write(LogRowText(entry));
    }
}

void LogFile::Write(const std::string& text) {
    if (failure_ == kErrorNone) {
        const std::vector<std::uint8_t> bytes(text.begin(), text.end());
        failure_ = file_->Write(bytes);
    }
}

int LogFile::Finish(int code) {
    file_.reset();
    if (failure_ == kErrorNone) {
        return code;
    }
    PrintMessage(FailureText(path_, failure_));
    return code == kExitDone ? int{kExitFailed} : code;
}

LogFile& RunLog() {
    static LogFile log;
    return log;
}

} // namespace thntfs
