#include "cli/CandidateText.h"
#include "cli/Commands.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "cli/ScanInfoSteps.h"
#include "cli/Session.h"
#include "engine/EngineState.h"

namespace thntfs {

namespace {

std::string Indented(const std::string& text) {
    std::string out = "  ";
    for (const char c : text) {
        out += c;
        if (c == '\n') {
            out += "  ";
        }
    }
    return out;
}

// One at a time: a saved list may hold millions.
void PrintCandidates(Output& output, bool asJson) {
    unsigned number = 0;
    for (const PartitionCandidate* candidate = Engine.SourceDisk.Partitions.First(); candidate != nullptr;
         candidate = candidate->Next.get()) {
        ++number;
        if (asJson) {
            output.Put(number == 1 ? "[\n" : ",\n");
            output.Put(Indented(CandidateJson(number, *candidate).dump(2)));
        } else {
            output.Put(CandidateText(number, *candidate) + "\n");
        }
    }
    if (asJson) {
        output.Put(number == 0 ? "[]\n" : "\n]\n");
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
