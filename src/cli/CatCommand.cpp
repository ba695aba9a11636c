#include "catalogue/FindEntry.h"
#include "cli/Commands.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "cli/Session.h"
#include "content/EntryContent.h"
#include "engine/EngineState.h"

#include <optional>

namespace thntfs {

namespace {

using Wanted = std::optional<CatalogueItem>;

// Of several entries with one path or one record number, the live one counts, else the first.
void TakeBetter(Wanted& best, CatalogueItem&& item, unsigned& count) {
    ++count;
    if (!best || (item.IsLive() && !best->IsLive())) {
        best = std::move(item);
    }
}

Wanted FindByRecord(std::uint32_t record, unsigned& count) {
    Wanted best;
    const std::uint64_t entries = CatalogueEntryCount();
    for (std::uint64_t id = 2; id < entries; ++id) {
        CatalogueItem item;
        if (LoadEntryInto(static_cast<std::uint32_t>(id), item) != 0 && item.RecordNumber == record &&
            !item.IsFolder()) {
            TakeBetter(best, std::move(item), count);
        }
    }
    return best;
}

Wanted FindByPath(const std::string& path, unsigned& count, bool& isFolder) {
    Wanted best;
    for (LocatedEntry& entry : FindEntries(path)) {
        if (entry.Item.IsFolder()) {
            isFolder = true;
        } else {
            TakeBetter(best, std::move(entry.Item), count);
        }
    }
    return best;
}

Wanted FindWanted(const Options& options) {
    unsigned count = 0;
    bool isFolder = false;
    const std::string what =
        options.Record ? "record " + std::to_string(*options.Record) : options.Paths.front();
    Wanted wanted = options.Record ? FindByRecord(*options.Record, count)
                                   : FindByPath(options.Paths.front(), count, isFolder);
    if (!wanted) {
        PrintMessage(isFolder ? what + " is a folder"
                              : "No file has the " + std::string(options.Record ? "" : "path ") + what);
    } else if (count > 1) {
        PrintMessage(std::to_string(count) + " files have the " + (options.Record ? "" : "path ") + what +
                     "; this is record " + std::to_string(wanted->RecordNumber) + ", " +
                     (wanted->IsLive() ? "live" : "deleted"));
    }
    return wanted;
}

int TellOutcome(int result, std::uint64_t failedReads) {
    if (Engine.ScanRunFlag == 0) {
        PrintMessage("Stopped after " + std::to_string(Engine.BytesWritten) + " bytes");
        return kExitDoneInPart;
    }
    if (result == 0) {
        PrintMessage("A file record of this file is damaged; what was read of it has been written");
        return kExitFailed;
    }
    if (Engine.BytesBehindEnd != 0) {
        PrintMessage(std::to_string(Engine.BytesBehindEnd) +
                     " bytes lie behind the end of the medium and are zeros");
    }
    if (failedReads != 0) {
        PrintMessage(std::to_string(failedReads) + " reads failed; what could not be read is zeros");
    }
    return Engine.BytesBehindEnd != 0 || failedReads != 0 ? kExitDoneInPart : kExitDone;
}

int WriteWanted(const CatalogueItem& item, Session& session) {
    Output output;
    Engine.BytesWritten = 0;
    Engine.BytesBehindEnd = 0;
    const std::uint64_t failedReads = Engine.FailedReads;
    session.Host.Bar.Begin("Reading", ProgressBar::Unit::Byte);
    const int result = ReadEntryContent(item, output.Handle());
    session.Host.Bar.End();
    return TellOutcome(result, Engine.FailedReads - failedReads);
}

} // namespace

int RunCat(const Options& options) {
    Session session(options);
    if (const int code = session.OpenCatalogueOfMedium(); code != kExitDone) {
        return code;
    }
    try {
        const Wanted wanted = FindWanted(options);
        return wanted ? WriteWanted(*wanted, session) : int{kExitFailed};
    } catch (const CUserException&) {
        return session.Host.ReaderGone() ? kExitDone : kExitFailed;
    }
}

} // namespace thntfs
