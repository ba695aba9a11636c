#include "cli/Commands.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "cli/Session.h"
#include "mount/Mount.h"

namespace thntfs {

namespace {

int CheckMountPoint(const std::string& folder) {
    const std::string obstacle = MountObstacle(folder);
    return obstacle.empty() ? int{kExitDone} : Refuse(obstacle);
}

SaveOptions WhatToShow(const Options& options) {
    SaveOptions wanted;
    wanted.Reach = options.Deleted ? SaveReach::DeletedOnly : SaveReach::All;
    wanted.Conditions = options.Conditions;
    return wanted;
}

} // namespace

int RunMount(const Options& options) {
    Session session(options);
    const int opened = RunSteps([&] { return CheckMountPoint(options.Target); },
                                [&] { return session.OpenCatalogueOfMedium(); });
    if (opened != kExitDone) {
        return opened;
    }
    const MountWishes wishes{.Folder = options.Target,
                             .Source = session.MediumPath(),
                             .What = WhatToShow(options),
                             .Loaded = ProbeScanInfo(options.Medium).Kind == ScanInfoKind::Tree};
    const std::string problem = MountCatalogue(wishes, [&options] {
        PrintMessage("Mounted at " + options.Target + "; Ctrl+C or 'fusermount3 -u " + options.Target +
                     "' ends it.");
    });
    if (!problem.empty()) {
        return Refuse(problem);
    }
    return session.Complete() ? kExitDone : kExitDoneInPart;
}

} // namespace thntfs
