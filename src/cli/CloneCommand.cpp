#include "cli/Commands.h"
#include "cli/CopySession.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "disktools/CloneTarget.h"
#include "engine/EngineState.h"
#include "partitions/DiskContents.h"
#include "platform/media/Medium.h"

#include <vector>

namespace thntfs {

namespace {

/// A target that is to be written over.
struct TargetInView {
    CloneTarget Disk;
    std::vector<std::string> Contents = {}; ///< what will be lost, a line each
};

int RefuseCopy(const CopyVerdict& verdict, const Options& options) {
    return verdict.Allowed() ? int{kExitDone} : Refuse(CopyRefusalText(verdict, options.Medium));
}

int LookAtTarget(TargetInView& target, const Options& options) {
    const int code = RefuseCopy(target.Disk.Look(), options);
    if (code == kExitDone) {
        target.Contents = DiskContents(options.Target, target.Disk.OpenContents());
    }
    return code;
}

int CheckSize(const TargetInView& target, const Options& options) {
    const int code = RefuseCopy(CheckTargetSize(options.Target, target.Disk.SizeBytes()), options);
    if (const std::string remark = target.Disk.SectorRemark(); code == kExitDone && !remark.empty()) {
        PrintMessage(remark);
    }
    return code;
}

int TellLoss(const TargetInView& target, const Options& options) {
    PrintMessage("Cloning to " + options.Target + " (" + ByteText(target.Disk.SizeBytes()) +
                 ") destroys all that is on it:");
    for (const std::string& line : target.Contents) {
        PrintMessage("  " + line);
    }
    if (!options.Yes) {
        PrintMessage("Nothing has been written. Give --yes to go on.");
        return kExitWrongWords;
    }
    return kExitDone;
}

} // namespace

int RunClone(const Options& options) {
    CopySession session(options, CopyWork::Cloning);
    TargetInView target{CloneTarget(options.Target)};
    const int code =
        RunSteps([&] { return RefuseCopy(CheckCopyPlaces(options.Medium, options.Target), options); },
                 [&] { return LookAtTarget(target, options); }, [&] { return session.OpenSourceDisk(); },
                 [&] { return CheckSize(target, options); }, [&] { return TellLoss(target, options); },
                 [&] { return RefuseCopy(target.Disk.Open(), options); });
    if (code != kExitDone) {
        return code;
    }
    CopyJob job = MakeCloneJob(options.Medium, options.Target);
    session.Copy(job);
    CloseClone(options.Target);
    return session.Finish(job);
}

} // namespace thntfs
