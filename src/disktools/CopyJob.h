#pragma once

#include "disktools/CopyDisk.h"

#include <cstdint>
#include <functional>
#include <string>

namespace thntfs {

enum class CopyStart { Anew, GoOn, RetryOnly };

/// A copy of SourceDisk to Engine.TargetDisk, both of which stand open.
struct CopyJob {
    std::string SourcePath;
    std::string TargetPath;
    std::string MapPath; ///< empty where there is none
    CopyLedger Ledger;
    std::uint64_t TotalSectors = 0;
    std::uint32_t SectorsPerTransfer = kCopyTransferSectors;
    CopyStart Start = CopyStart::Anew;
    unsigned Retries = 0; ///< passes over the bad sectors once all has been tried
};

/// The clone of SourceDisk onto what Engine.TargetDisk has open; its account is in memory alone.
CopyJob MakeCloneJob(const std::string& sourcePath, const std::string& targetPath);

enum class CopyPart { Copying, Retrying };
enum class CopyEnd { Completed, Stopped, Failed };

/// Does the job's parts one after the other, each told before by `begin`. Failed is a fatal failure of the
/// source or the target, which the ledger tells.
CopyEnd RunCopy(CopyJob& job, const std::function<void(CopyPart)>& begin);

} // namespace thntfs
