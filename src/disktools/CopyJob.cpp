#include "disktools/CopyJob.h"

#include "engine/EngineState.h"
#include "platform/files/File.h"

namespace thntfs {

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
    } else if (job.Start == CopyStart::GoOn) {
        ResumeCopy(target, job.TotalSectors, job.SectorsPerTransfer, job.Ledger);
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
