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

struct ScanTotals {
    std::uint64_t Files = 0;
    std::uint64_t Folders = 0;
    std::uint64_t Bytes = 0;
    std::uint64_t DeletedFiles = 0;
    std::uint64_t DeletedFolders = 0;
    std::uint64_t LostFolders = 0; ///< of the deleted folders, those known by number alone
};

bool IsLost(const CatalogueItem& item) { return item.IsFolder() && item.RecordSector == 0 && !item.IsLive(); }

ScanTotals CountEntries() {
    ScanTotals totals;
    EntryWalk walk(WalkStart{}, WalkReach::Whole);
    while (walk.Next()) {
        const CatalogueItem& item = walk.Item();
        ++(item.IsFolder() ? totals.Folders : totals.Files);
        totals.Bytes += item.Size;
        if (!item.IsLive()) {
            ++(item.IsFolder() ? totals.DeletedFolders : totals.DeletedFiles);
        }
        totals.LostFolders += IsLost(item) ? 1U : 0U;
    }
    return totals;
}

const char* Mark(const CatalogueItem& item) {
    if (IsLost(item)) {
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

void PrintScanTotals(Output& output, const ScanTotals& totals) {
    output.Put("Files:   " + std::to_string(totals.Files) + ", of them " +
               std::to_string(totals.DeletedFiles) + " deleted\nFolders: " + std::to_string(totals.Folders) +
               ", of them " + std::to_string(totals.DeletedFolders) + " deleted, " +
               std::to_string(totals.LostFolders) + " of these known by number alone\nBytes:   " +
               std::to_string(totals.Bytes) + " (" + ByteText(totals.Bytes) + ")\n");
}

void PrintJson(Output& output, const ScanTotals& totals, bool complete) {
    const nlohmann::ordered_json object = {{"files", totals.Files},
                                           {"folders", totals.Folders},
                                           {"bytes", totals.Bytes},
                                           {"deletedFiles", totals.DeletedFiles},
                                           {"deletedFolders", totals.DeletedFolders},
                                           {"lostFolders", totals.LostFolders},
                                           {"complete", complete},
                                           {"recordsNotRead", Engine.Losses.Records()}};
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
        const ScanTotals totals = CountEntries();
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
