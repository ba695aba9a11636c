#include "cli/LogFile.h"

#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "cli/SameDisk.h"
#include "cli/ScanInfoSteps.h"
#include "disktools/CopyMapFile.h"
#include "platform/files/File.h"
#include "platform/system/Dates.h"
#include "platform/system/Text.h"
#include "scaninfo/ProcessLog.h"
#include "scaninfo/ScanInfo.h"

#include <utility>

namespace thntfs {

namespace {

std::string FailureText(const std::string& path, ErrorCode code) {
    return "Error creating log file " + path + ": " + SystemErrorText(code);
}

// All that the run reads and writes, so far as its words tell.
RunPlaces PlacesOf(const Options& options) {
    const ScanInfoProbe saved = ProbeScanInfo(options.Medium);
    const bool isSaved = saved.Kind != ScanInfoKind::None;
    RunPlaces places{
        isSaved ? saved.Medium : options.Medium, isSaved ? options.Medium : "", {}, options.SameDisk};
    if (options.SaveInfo) {
        places.Targets.push_back(SaveInfoTarget(options));
    }
    if (options.Report) {
        places.Targets.push_back(*options.Report);
    }
    if (options.Chosen == Command::Image || options.Chosen == Command::Clone) {
        places.Targets.push_back(options.Target);
    }
    if (options.Chosen == Command::Image) {
        places.Targets.push_back(MapPathOf(options.Target));
    }
    return places;
}

int RefusePlace(const Options& options, const TargetVerdict& verdict) {
    const std::string& path = *options.Log;
    switch (verdict.Why) {
    case TargetRefusal::IsMedium:
    case TargetRefusal::OnMedium:
        return Refuse("The log can't go to " + path + ", which is or lies on the medium that is to be read." +
                      SameDiskHint(options, verdict));
    case TargetRefusal::IsSavedScan:
        return Refuse("The log can't go to " + path + ", which is to be read.");
    default:
        return Refuse("The log can't go to " + path + ", since " + verdict.What + " is to be written.",
                      kExitWrongWords);
    }
}

} // namespace

LogFile::LogFile() = default;
LogFile::~LogFile() = default;

int LogFile::Open(const Options& options) {
    if (!options.Log) {
        return kExitDone;
    }
    path_ = *options.Log;
    if (const TargetVerdict verdict = CheckTarget(path_, PlacesOf(options)); !verdict.Allowed()) {
        return RefusePlace(options, verdict);
    }
    if (const ErrorCode code = Files().Open(path_, FileMode::CreateAlways, file_); code != kErrorNone) {
        return Refuse(FailureText(path_, code));
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
        failure_ = file_->Write(TextBytes(text));
    }
}

int LogFile::Finish(int code) {
    if (file_ != nullptr && failure_ == kErrorNone) {
        failure_ = file_->Close();
    }
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
