#include "cli/CandidateText.h"
#include "cli/Commands.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "cli/ScanInfoSteps.h"
#include "cli/Session.h"
#include "engine/EngineState.h"

namespace thntfs {

namespace {

void PrintCandidates(Output& output, bool asJson) {
    auto array = nlohmann::ordered_json::array();
    unsigned number = 0;
    for (const PartitionCandidate* candidate = Engine.SourceDisk.Partitions.First(); candidate != nullptr;
         candidate = candidate->Next.get()) {
        ++number;
        if (asJson) {
            array.push_back(CandidateJson(number, *candidate));
        } else {
            output.Put(CandidateText(number, *candidate) + "\n");
        }
    }
    if (asJson) {
        output.Put(array.dump(2) + "\n");
    }
}

} // namespace

int RunPartitions(const Options& options) {
    Session session(options);
    int code = session.OpenMedium();
    if (!Engine.SourceDisk.Partitions.Empty()) {
        code = SaveScanInfo(options, code);
    }
    Output output;
    if (code == kExitDone || code == kExitDoneInPart || options.Json) {
        PrintCandidates(output, options.Json);
    }
    return output.Finish(code);
}

} // namespace thntfs
