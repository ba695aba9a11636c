#include "catalogue/Conditions.h"
#include "catalogue/EntryWalk.h"
#include "cli/Commands.h"
#include "cli/EntryText.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "cli/Session.h"
#include "content/EntryLists.h"
#include "content/FurtherEntries.h"
#include "engine/EngineState.h"

namespace thntfs {

namespace {

class Lister {
public:
    Lister(const Options& options, Output& output)
        : options_(options)
        , output_(output) {}

    void ListAll() { ListBelow(WalkStart{}, options_.Recursive ? WalkReach::Whole : WalkReach::Part); }

    void List(const LocatedEntry& entry) {
        if (entry.Item.IsFolder()) {
            ListBelow(StartAt(entry), WalkReach::Part);
        } else {
            Print(entry.Item, entry.Path);
        }
    }

private:
    // The top holds " Root", which has no path of its own: what is in it counts as top-level too.
    void ListBelow(const WalkStart& start, WalkReach reach) {
        EntryWalk walk(start, reach);
        while (walk.Next() && !output_.Closed()) {
            if (walk.Item().EntryId == kRootEntryId) {
                continue;
            }
            Print(walk.Item(), walk.Path());
            if (!options_.Recursive) {
                walk.SkipFolder();
            }
        }
    }

    void Print(const CatalogueItem& item, const std::string& path) {
        if ((options_.Deleted && item.IsLive()) || !ConditionWanted(options_.Conditions, item)) {
            return;
        }
        Append(output_.Buffer(), item, path);
        output_.Check();
    }

    void Append(std::string& out, const CatalogueItem& item, const std::string& path) {
        if (options_.Json) {
            AppendEntryJson(out, item, path);
        } else if (options_.Csv) {
            AppendEntryCsv(out, item, path);
        } else if (options_.BodyFile) {
            bodyFile_.Append(out, item, path);
        } else {
            AppendEntryLine(out, item, path);
        }
    }

    const Options& options_;
    Output& output_;
    BodyFileLines bodyFile_;
};

int ListWanted(const Options& options, Output& output) {
    Lister lister(options, output);
    if (options.Paths.empty()) {
        lister.ListAll();
        return kExitDone;
    }
    const std::vector<LocatedEntry> found = FindEntriesByAnyName(options.Paths.front());
    if (found.empty()) {
        PrintMessage("No entry has the path " + options.Paths.front());
        return kExitFailed;
    }
    for (const LocatedEntry& entry : found) {
        lister.List(entry);
    }
    return kExitDone;
}

} // namespace

int RunList(const Options& options) {
    Session session(options);
    if (const int code = session.OpenCatalogueOfMedium(); code != kExitDone) {
        return code;
    }
    Output output;
    output.Put(options.Csv ? kEntryCsvHeader : std::string_view());
    int code = kExitFailed;
    try {
        code = ListWanted(options, output);
    } catch (const CUserException&) {
        // The box has told why.
    }
    return output.Finish(code == kExitDone && !session.Complete() ? kExitDoneInPart : code);
}

} // namespace thntfs
