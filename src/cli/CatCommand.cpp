#include "cli/Commands.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "cli/Session.h"
#include "content/ContentOutcome.h"
#include "content/ExactFile.h"
#include "content/FurtherEntries.h"
#include "engine/EngineState.h"
#include "platform/files/File.h"
#include "platform/system/Text.h"

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
    for (LocatedEntry& entry : FindEntriesByAnyName(path)) {
        if (entry.Item.IsFolder()) {
            isFolder = true;
        } else {
            TakeBetter(best, std::move(entry.Item), count);
        }
    }
    return best;
}

// PATH:STREAM, where no file has this as its path.
Wanted FindByStream(const std::string& words, std::u16string& stream) {
    const std::size_t colon = words.rfind(':');
    if (colon == std::string::npos || words.find('/', colon) != std::string::npos) {
        return std::nullopt;
    }
    unsigned count = 0;
    bool isFolder = false;
    Wanted wanted = FindByPath(words.substr(0, colon), count, isFolder);
    stream = WideText(std::string_view(words).substr(colon + 1));
    ExactFile file;
    return wanted && file.Open(*wanted) && file.OpenStream(stream) != nullptr ? wanted : std::nullopt;
}

std::string WantedText(const Options& options) {
    return options.Record ? "record " + std::to_string(*options.Record) : options.Paths.front();
}

Wanted FindWanted(const Options& options, std::u16string& stream) {
    unsigned count = 0;
    bool isFolder = false;
    const std::string what = WantedText(options);
    Wanted wanted = options.Record ? FindByRecord(*options.Record, count)
                                   : FindByPath(options.Paths.front(), count, isFolder);
    if (!wanted && !options.Record && !options.AsStored) {
        wanted = FindByStream(what, stream);
    }
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

int TellOutcome(const ContentOutcome& outcome, const std::string& what, const Session& session) {
    switch (outcome.End) {
    case ContentEnd::Stopped:
        PrintMessage("Stopped after " + CountText(outcome.Written, "byte", "bytes"));
        return kExitDoneInPart;
    case ContentEnd::WriteFailed:
        return session.Host.ReaderGone() ? kExitDone : kExitFailed;
    case ContentEnd::MediumFailed:
        PrintMessage(what + ": the medium could not be read");
        return kExitFailed;
    case ContentEnd::Reached:
    case ContentEnd::RecordDamaged:
        break;
    }
    for (const std::string& reason : DamageReasons(outcome)) {
        PrintMessage(std::string(what).append(": ").append(reason));
    }
    if (!outcome.Kept()) {
        return kExitFailed;
    }
    return outcome.Whole() ? kExitDone : kExitDoneInPart;
}

int WriteWanted(const CatalogueItem& item, std::u16string_view stream, const Options& options,
                Session& session) {
    const std::string what = WantedText(options);
    Output output;
    session.Host.Bar.Begin("Reading", ProgressBar::Unit::Byte);
    const ContentOutcome outcome = options.AsStored ? TakeContent(item, output.Handle())
                                                    : TakeExactContent(item, output.Handle(), stream);
    session.Host.Bar.End();
    const int code = TellOutcome(outcome, what, session);
    if (const ErrorCode error = output.Handle().Sync(); error != kErrorNone && code != kExitFailed) {
        PrintMessage("Cannot write to standard output: " + SystemErrorText(error));
        return kExitFailed;
    }
    return code;
}

} // namespace

int RunCat(const Options& options) {
    Session session(options);
    if (const int code = session.OpenCatalogueOfMedium(); code != kExitDone) {
        return code;
    }
    try {
        std::u16string stream;
        const Wanted wanted = FindWanted(options, stream);
        return wanted ? WriteWanted(*wanted, stream, options, session) : int{kExitFailed};
    } catch (const CUserException&) {
        return session.Host.ReaderGone() ? kExitDone : kExitFailed;
    }
}

} // namespace thntfs
