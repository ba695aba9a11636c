#include "catalogue/CatalogueTotals.h"
#include "catalogue/EntryWalk.h"
#include "cli/Commands.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "cli/ScanInfoSteps.h"
#include "cli/Session.h"
#include "engine/EngineState.h"
#include "platform/system/SizeText.h"
#include "platform/system/Text.h"

#include <nlohmann/json.hpp>

namespace thntfs {

namespace {

const char* Mark(const CatalogueItem& item) {
    if (IsLostFolder(item)) {
        return "  [folder lost]";
    }
    return item.IsLive() ? "" : "  [deleted]";
}

void PrintTree(Output& output, bool withFiles) {
    EntryWalk walk(WalkStart{}, WalkReach::Whole);
    while (walk.Next() && !output.Closed()) {
        const CatalogueItem& item = walk.Item();
        if (!item.IsFolder() && !withFiles) {
            continue;
        }
        std::string& line = output.Buffer();
        line.append(2 * walk.Depth(), ' ');
        AppendPrintable(line, NarrowText(item.Name));
        if (item.IsFolder()) {
            line += '/';
        } else {
            line += "  " + ByteText(item.Size);
        }
        line += Mark(item);
        line += '\n';
        output.Check();
    }
}

void PrintScanTotals(Output& output, const CatalogueTotals& totals) {
    output.Put("Files:   " + std::to_string(totals.Files) + ", of them " +
               std::to_string(totals.DeletedFiles) + " deleted\nFolders: " + std::to_string(totals.Folders) +
               ", of them " + std::to_string(totals.DeletedFolders) + " deleted, " +
               std::to_string(totals.LostFolders) + " of these known by number alone\nBytes:   " +
               std::to_string(totals.Bytes) + " (" + ByteText(totals.Bytes) + ")\n");
    if (const std::string leftOut = LeftOutText(Engine.Yield); !leftOut.empty()) {
        output.Put("Besides: " + leftOut + "; --deep lists them\n");
    }
}

void PrintJson(Output& output, const CatalogueTotals& totals, bool complete) {
    const nlohmann::ordered_json object = {{"files", totals.Files},
                                           {"folders", totals.Folders},
                                           {"bytes", totals.Bytes},
                                           {"deletedFiles", totals.DeletedFiles},
                                           {"deletedFolders", totals.DeletedFolders},
                                           {"lostFolders", totals.LostFolders},
                                           {"complete", complete},
                                           {"recordsNotRead", Engine.Losses.Records()},
                                           {"recordsLeftOut", Engine.Yield.LeftOut}};
    output.Put(object.dump() + "\n");
}

} // namespace

int RunScan(const Options& options) {
    Session session(options);
    if (const int code = session.OpenCatalogueOfMedium(); code != kExitDone) {
        return code;
    }
    const int code = SaveScanInfo(options, session.Complete() ? kExitDone : kExitDoneInPart);
    Output output;
    try {
        const CatalogueTotals totals = CountCatalogue();
        if (options.Json) {
            PrintJson(output, totals, session.Complete());
        } else {
            PrintTree(output, options.Files);
            PrintScanTotals(output, totals);
        }
    } catch (const CUserException&) {
        return output.Finish(kExitFailed);
    }
    return output.Finish(code);
}

} // namespace thntfs
