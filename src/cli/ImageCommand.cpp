#include "cli/Commands.h"
#include "cli/CopySession.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "disktools/CopyDisk.h"
#include "disktools/ImageTarget.h"
#include "engine/EngineState.h"
#include "platform/media/DiskIdentity.h"

namespace thntfs {

namespace {

int OpenImageTarget(ImageTarget& target, const Options& options) {
    const CopyVerdict verdict = target.Open(options.Resume || options.Retries != 0, options.Resume);
    if (verdict.Allowed()) {
        if (!target.OtherSource().empty()) {
            PrintMessage(options.Target + " was begun from " + target.OtherSource() +
                         "; what was copied of that stands on " + options.Medium + " too, so it goes on.");
        }
        return kExitDone;
    }
    PrintMessage(CopyRefusalText(verdict, options.Medium));
    if (verdict.Why == CopyRefusal::ImageExists) {
        PrintMessage("--resume goes on with an image that was stopped.");
    }
    return kExitFailed;
}

void TakeImageOf(CopySession& session, ImageTarget& target, const Options& options) {
    const std::uint64_t total = Engine.SourceDisk.TotalSectors;
    session.Begin();
    session.BeginPart("Imaging");
    if (!target.IsOld()) {
        CopyDisk(ImageTarget::Handle(), total, kCopyTransferSectors, &target.Ledger());
    } else if (options.Resume) {
        ResumeCopy(ImageTarget::Handle(), total, kCopyTransferSectors, target.Ledger());
    }
    if (options.Retries != 0 && Engine.ScanRunFlag != 0 && !session.Host.HadFatal()) {
        session.BeginPart("Reading bad places again");
        RetryBadSectors(ImageTarget::Handle(), options.Retries, target.Ledger());
    }
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
    if (IsMounted(options.Medium)) {
        PrintMessage(options.Medium +
                     " is mounted: what is written to it meanwhile may stand in the image in part.");
    }
    TakeImageOf(session, target, options);
    return session.Finish(target.Ledger(), target.MapPath());
}

} // namespace thntfs
