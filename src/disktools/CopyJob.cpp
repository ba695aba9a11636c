#include "disktools/CopyJob.h"

#include "disktools/AdoptImage.h"
#include "engine/EngineState.h"
#include "platform/files/File.h"

namespace thntfs {

namespace {

void GoOnFromWhatIsThere(CopyJob& job, File& image) {
    try {
        AdoptImage(image, job.Ledger.Map());
    } catch (const CUserException& failure) {
        job.Ledger.NoteFailure(failure.Code);
        return;
    }
    if (job.Start == CopyStart::GoOn) {
        ResumeCopy(image, job.TotalSectors, job.SectorsPerTransfer, job.Ledger);
    }
}

} // namespace

CopyJob MakeCloneJob(const std::string& sourcePath, const std::string& targetPath) {
    const std::uint64_t total = Engine.SourceDisk.TotalSectors;
    return {.SourcePath = sourcePath,
            .TargetPath = targetPath,
            .MapPath = {},
            .Ledger = CopyLedger(CopyMap(total * Engine.SourceDisk.BytesPerSector)),
            .TotalSectors = total};
}

CopyEnd RunCopy(CopyJob& job, const std::function<void(CopyPart)>& begin) {
    File& target = *Engine.TargetDisk.WriteHandle;
    begin(CopyPart::Copying);
    if (job.Start == CopyStart::Anew) {
        CopyDisk(target, job.TotalSectors, job.SectorsPerTransfer, &job.Ledger);
    } else {
        GoOnFromWhatIsThere(job, target);
    }
    if (job.Retries != 0 && Engine.ScanRunFlag != 0 && job.Ledger.Failure() == kErrorNone) {
        begin(CopyPart::Retrying);
        RetryBadSectors(target, job.Retries, job.Ledger);
    }
    if (job.Ledger.Failure() != kErrorNone) {
        return CopyEnd::Failed;
    }
    return Engine.ScanRunFlag != 0 ? CopyEnd::Completed : CopyEnd::Stopped;
}

} // namespace thntfs
