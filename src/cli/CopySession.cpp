#include "cli/CopySession.h"

#include "cli/CopyReport.h"
#include "cli/ExitCode.h"
#include "cli/OpenMediumStep.h"
#include "cli/Output.h"
#include "disktools/CopyRules.h"
#include "engine/EngineState.h"
#include "platform/system/Interrupt.h"

namespace thntfs {

void CopyHost::CopyPosition(std::uint64_t /*sectorsDone*/, std::uint64_t /*totalSectors*/) { JobProgress(); }
void CopyHost::PassGate() { JobProgress(); }

CopySession::CopySession(const Options& options, CopyWork work)
    : options_(options)
    , work_(work) {
    OnInterrupt(Engine.ScanRunFlag);
}

CopySession::~CopySession() {
    Host.Bar.End();
    Host.TellSuppressed();
    ResetEngineState();
}

int CopySession::OpenSourceDisk() {
    if (const int code = OpenMediumOrTell(options_.Medium); code != kExitDone) {
        return code;
    }
    if (const CopyVerdict verdict = CheckSource(options_.Medium); !verdict.Allowed()) {
        return Refuse(CopyRefusalText(verdict, options_.Medium));
    }
    return kExitDone;
}

void CopySession::Copy(CopyJob& job) {
    SetUnlessInterrupted(Engine.ScanRunFlag);
    end_ = RunCopy(job, [this](CopyPart part) { BeginPart(part); });
}

void CopySession::BeginPart(CopyPart part) {
    const char* work = work_ == CopyWork::Imaging ? "Imaging" : "Cloning";
    Engine.ProgressDone = 0;
    Engine.ProgressTotal = 0;
    Host.Bar.Begin(part == CopyPart::Copying ? work : "Reading bad places again", ProgressBar::Unit::Sector,
                   Engine.SourceDisk.BytesPerSector);
}

int CopySession::Finish(const CopyJob& job) {
    Host.Bar.End();
    Host.TellSuppressed();
    CopyReport report;
    report.Work = work_ == CopyWork::Imaging ? "Disk Imaging" : "Disk Cloning";
    report.Source = options_.Medium;
    report.Target = options_.Target;
    report.MapPath = job.MapPath;
    report.Failed = end_ == CopyEnd::Failed;
    report.Stopped = Engine.ScanRunFlag == 0;
    LogEnd(end_ == CopyEnd::Completed);
    const CopyLedger& ledger = job.Ledger;
    if (ledger.MapFailure() != kErrorNone) {
        PrintMessage("Cannot write " + job.MapPath + ": " + SystemErrorText(ledger.MapFailure()) +
                     " It tells less than has been read.");
    }
    Output output;
    PrintCopyReport(output, report, ledger.Map(), options_.Json);
    if (report.Failed) {
        return output.Finish(kExitFailed);
    }
    const bool whole = ledger.Map().BytesOf(AreaState::Read) == ledger.Map().TotalBytes();
    return output.Finish(whole && !report.Stopped && ledger.MapFailure() == kErrorNone ? kExitDone
                                                                                       : kExitDoneInPart);
}

void CopySession::LogEnd(bool completed) const {
    LogLine(std::string(completed ? "Completed " : "Aborted ") +
                (work_ == CopyWork::Imaging ? "Disk Imaging" : "Disk Cloning"),
            options_.Medium + " to " + options_.Target, completed ? kLogDone : kLogFailed);
}

} // namespace thntfs
