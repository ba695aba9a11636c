#include "cli/Commands.h"
#include "cli/CopySession.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "disktools/ImageTarget.h"
#include "engine/EngineState.h"

namespace thntfs {

namespace {

void TellUnlessEmpty(const std::string& remark) {
    if (!remark.empty()) {
        PrintMessage(remark);
    }
}

int OpenImageTarget(ImageTarget& target, const Options& options) {
    const CopyVerdict verdict = target.Open(options.Resume || options.Retries != 0, options.Resume);
    if (verdict.Allowed()) {
        TellUnlessEmpty(target.OriginRemark());
        return kExitDone;
    }
    PrintMessage(CopyRefusalText(verdict, options.Medium));
    if (verdict.Why == CopyRefusal::ImageExists) {
        PrintMessage("--resume goes on with an image that was stopped.");
    }
    return kExitFailed;
}

} // namespace

int RunImage(const Options& options) {
    CopySession session(options, CopyWork::Imaging);
    if (const int code = session.OpenSourceDisk(); code != kExitDone) {
        return code;
    }
    ImageTarget target(options.Medium, options.Target);
    if (const int code = OpenImageTarget(target, options); code != kExitDone) {
        return code;
    }
    TellUnlessEmpty(MountedRemark(options.Medium));
    CopyJob job = target.TakeJob();
    job.Retries = options.Retries;
    if (target.IsOld() && !options.Resume) {
        job.Start = CopyStart::RetryOnly;
    }
    session.Copy(job);
    return session.Finish(job);
}

} // namespace thntfs
