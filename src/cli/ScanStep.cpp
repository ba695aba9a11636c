#include "cli/ScanStep.h"

#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "engine/EngineState.h"
#include "scaninfo/JobLog.h"
#include "scans/BasicScan.h"
#include "scans/TurboScan.h"

namespace thntfs {

void BeginWantedScan(const Options& options, unsigned volumeNumber) {
    if (options.Turbo) {
        Engine.VolumeParams.TurboScanRun = 1;
        LogTurboScanStarted(volumeNumber);
    } else {
        LogBasicScanStarted();
    }
}

bool RunWantedScan(const Options& options, TerminalHost& host, unsigned volumeNumber) {
    const ScanReach reach{.Exact = !options.AsStored, .Deep = options.Deep};
    bool complete = false;
    if (options.Turbo) {
        host.Bar.Begin("Turbo scanning", ProgressBar::Unit::Sector, Engine.SourceDisk.BytesPerSector);
        complete = TurboScan(reach) != 0;
        LogTurboScanEnded(volumeNumber, complete);
    } else {
        host.Bar.Begin("Scanning", ProgressBar::Unit::Record);
        complete = BasicScan(reach) != 0;
        LogBasicScanEnded(complete);
    }
    LogLosses();
    LogYield();
    return complete;
}

// Not one record where the table should be means that its runs are wrong or that it can't be read at all.
int TellScanLosses(const Options& options, const TerminalHost& host) {
    const ScanLosses& losses = Engine.Losses;
    if (losses.Any()) {
        PrintMessage(LossText(losses) + (losses.NoTable ? "." : ". Files may be missing."));
    }
    if (losses.Any() && !options.Turbo) {
        PrintMessage("--turbo looks for records in the whole volume, wherever they stand.");
    } else if (Engine.Yield.Little()) {
        PrintMessage(LittleFoundText(Engine.Yield) + ". --turbo may find more: it reads the whole volume.");
    }
    return losses.NoTable && !host.HadFatal() ? kExitFailed : kExitDone;
}

} // namespace thntfs
