#include "cli/SearchMedium.h"

#include "cli/CandidateText.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "engine/EngineState.h"
#include "partitions/PartitionSearch.h"
#include "partitions/VolumeList.h"
#include "platform/system/Interrupt.h"
#include "scaninfo/JobLog.h"

#include <algorithm>

namespace thntfs {

int SearchMedium(const Options& options, TerminalHost& host) {
    const DiskRecord& disk = Engine.SourceDisk;
    const std::uint64_t first = options.RangeFirst.value_or(0);
    const std::uint64_t end = std::min(options.RangeEnd.value_or(disk.TotalSectors), disk.TotalSectors);
    if (first >= end) {
        PrintMessage("The range holds no sector: the medium has sectors 0 to " +
                     std::to_string(disk.TotalSectors - 1) + ".");
        return kExitWrongWords;
    }
    SetUnlessInterrupted(Engine.ScanRunFlag);
    host.Bar.Begin("Searching", ProgressBar::Unit::Sector, disk.BytesPerSector);
    host.SearchFrom(first);
    LogSearchStarted(first, end);
    const std::uint32_t complete = SearchVolumes(*options.Search, first, end);
    Engine.ScanRunFlag = 0;
    host.Bar.End();
    LogSearchEnded(complete != 0);
    if (const std::string limits = SearchLimitText(); !limits.empty()) {
        PrintMessage(limits);
    }
    LogLosses();
    if (Engine.Losses.Any()) {
        PrintMessage(LossText(Engine.Losses) + ". Volumes whose traces lie there are missing.");
    }
    if (complete == 0) {
        PrintMessage("Search stopped: " + std::to_string(disk.Partitions.size()) +
                     " volumes were found so far.");
        return kExitDoneInPart;
    }
    if (host.HadFatal()) {
        return kExitDoneInPart;
    }
    if (disk.Partitions.empty()) {
        TellUnusableVolumes();
        return Refuse(*options.Search == SearchMethod::Quick
                          ? "The quick search found no NTFS volume; try --search thorough."
                          : "The search found no NTFS volume.");
    }
    return kExitDone;
}

} // namespace thntfs
