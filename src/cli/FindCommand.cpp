#include "catalogue/EntryWalk.h"
#include "catalogue/FindCriteria.h"
#include "cli/Commands.h"
#include "cli/EntryText.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "cli/Session.h"
#include "engine/EngineState.h"

namespace thntfs {

namespace {

std::uint64_t PrintMatches(const Options& options, Output& output) {
    FindMatcher matcher(options.Criteria);
    EntryWalk walk({}, WalkReach::Whole);
    std::uint64_t matches = 0;
    while (walk.Next() && !output.Closed()) {
        if (walk.Item().EntryId == kRootEntryId || !matcher.Matches(walk.Item())) {
            continue;
        }
        ++matches;
        if (options.Json) {
            AppendEntryJson(output.Buffer(), walk.Item(), walk.Path());
        } else {
            AppendEntryLine(output.Buffer(), walk.Item(), walk.Path());
        }
        output.Check();
    }
    return matches;
}

} // namespace

int RunFind(const Options& options) {
    Session session(options);
    if (const int code = session.OpenCatalogueOfMedium(); code != kExitDone) {
        return code;
    }
    Output output;
    try {
        if (PrintMatches(options, output) == 0) {
            PrintMessage("Nothing on the volume matches " + options.Criteria.Pattern);
        }
    } catch (const CUserException&) { // its box has told why
        return output.Finish(kExitFailed);
    }
    return output.Finish(session.Complete() ? kExitDone : kExitDoneInPart);
}

} // namespace thntfs
