#include "dialogs/CopyWorkers.h"

#include "dialogs/CopyHost.h"
#include "disktools/CloneTarget.h"
#include "engine/EngineState.h"
#include "platform/system/SizeText.h"
#include "shell/WindowMessages.h"

#include <exception>

namespace thntfs {

namespace {

void LogFailure(const CopyJob& job) {
    if (const ErrorCode code = job.Ledger.Failure(); code != kErrorNone) {
        LogLine("The copy to " + job.TargetPath + " can't go on", SystemErrorText(code), kLogFailed);
    }
    if (const ErrorCode code = job.Ledger.MapFailure(); code != kErrorNone) {
        LogLine("Cannot write " + job.MapPath + ": " + SystemErrorText(code),
                "It tells less than has been read.", kLogFailed);
    }
}

// The map, where there is one, names the places.
void LogSums(const CopyJob& job) {
    const CopySums sums = SumsOf(job.Ledger.Map());
    const std::string map = job.MapPath.empty() ? std::string() : "Map: " + job.MapPath;
    if (sums.Unread != 0) {
        LogLine(CountText(sums.Unread, "sector has", "sectors have") + " not been read yet", map, kLogFailed);
    }
    if (sums.Bad != 0) {
        LogLine(CountText(sums.Bad, "sector", "sectors") + " could not be read and " +
                    (sums.Bad == 1 ? "is" : "are") + " zeros in the copy",
                map, kLogFailed);
    }
}

CopyEnd RunToEnd(CopyJob& job, CopyHost& host) {
    try {
        return RunCopy(job, [&host](CopyPart part) { host.BeginPart(part); });
    } catch (const std::exception& failure) {
        Host().ErrorBox(failure.what());
        LogLine("The copy to " + job.TargetPath + " can't go on", failure.what(), kLogFailed);
        return CopyEnd::Failed;
    }
}

void FinishCopy(const CopyJob& job, CopyEnd end, CopyWork work, CopyHost& host, MessageTarget& dialog) {
    LogFailure(job);
    LogSums(job);
    host.TellLast();
    WM_COPY_FINISHED.Send(&dialog, work,
                          end == CopyEnd::Completed ? CopyEvent::Completed : CopyEvent::Aborted);
    ResetEngineState();
}

} // namespace

void CloneThreadProc(CopyJob& job, CopyHost& host, MessageTarget& dialog) {
    const CopyEnd end = RunToEnd(job, host);
    CloseClone(job.TargetPath);
    FinishCopy(job, end, CopyWork::Clone, host, dialog);
}

void ImageThreadProc(CopyJob& job, CopyHost& host, MessageTarget& dialog) {
    const CopyEnd end = RunToEnd(job, host);
    FinishCopy(job, end, CopyWork::Image, host, dialog);
}

} // namespace thntfs
