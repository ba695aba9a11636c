#include "catalogue/FindEntry.h"
#include "cli/Commands.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "cli/Session.h"
#include "content/SaveEntries.h"
#include "content/TargetRules.h"
#include "engine/EngineState.h"

#include <nlohmann/json.hpp>

namespace thntfs {

namespace {

class TerminalListener : public SaveListener {
public:
    void Renamed(const std::string& path, const std::string& targetName) override {
        PrintMessage(path + ": saved under the name " + targetName);
    }
    void Warned(const std::string& path, const std::string& text) override {
        PrintMessage(path + ": " + text);
    }
    void Failed(const std::string& path, const std::string& reason) override {
        PrintMessage(path + ": not saved: " + reason);
    }
};

int OpenSaveTarget(const Options& options, const std::string& medium, std::unique_ptr<TargetFolder>& target) {
    if (!CheckTarget(options.Target, {medium, {}, {}}).Allowed()) {
        return Refuse(options.Target +
                      " lies on the medium that is being read. Saving there would destroy what is "
                      "to be recovered; choose a folder on another disk.");
    }
    const ErrorCode code = TargetFolder::OpenTargetFolder(options.Target, true, target);
    if (code == kErrorDirectory) {
        return Refuse("Cannot save to " + options.Target +
                      ": it is a file or lies below one. Give a folder.");
    }
    if (code != kErrorNone) {
        return Refuse("Cannot save to " + options.Target + ": " + SystemErrorText(code));
    }
    return kExitDone;
}

// Gives how many of the paths name nothing.
std::size_t SaveWanted(const std::vector<std::string>& paths, EntrySaver& saver) {
    std::size_t missing = 0;
    for (const std::string& path : paths) {
        const std::vector<LocatedEntry> found = FindEntries(path);
        if (found.empty()) {
            PrintMessage("No entry has the path " + path);
            ++missing;
        }
        for (const LocatedEntry& entry : found) {
            saver.Save(entry);
        }
    }
    return missing;
}

void PrintSaveTotals(Output& output, const SaveTotals& totals, const Options& options, bool scannedAll) {
    if (options.Json) {
        const bool complete = scannedAll && !totals.Stopped;
        const nlohmann::ordered_json object = {{"files", totals.Files},   {"folders", totals.Folders},
                                               {"bytes", totals.Bytes},   {"damaged", totals.Damaged},
                                               {"failed", totals.Failed}, {"complete", complete},
                                               {"target", options.Target}};
        output.Put(object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n");
    } else {
        std::string line = "Saved " + CountText(totals.Files, "file", "files") + " (" +
                           CountText(totals.Bytes, "byte", "bytes") + ") in " +
                           CountText(totals.Folders, "folder", "folders") + " to ";
        AppendPrintable(line, options.Target);
        if (totals.Damaged != 0) {
            line += "; " + std::to_string(totals.Damaged) + " of them damaged";
        }
        if (totals.Failed != 0) {
            line += "; " + CountText(totals.Failed, "entry", "entries") + " could not be saved";
        }
        if (totals.Stopped) {
            line += "; stopped before the end";
        }
        output.Put(line + "\n");
    }
}

int ExitCodeOf(const SaveTotals& totals, std::size_t missing, std::size_t asked) {
    if (Engine.ScanRunFlag == 0) {
        return kExitDoneInPart;
    }
    const bool failed = totals.Failed != 0 || totals.Stopped;
    const bool nothingSaved = totals.Files == 0 && totals.Folders == 0;
    if (nothingSaved && (failed || (asked != 0 && missing == asked))) {
        return kExitFailed;
    }
    return failed || totals.Damaged != 0 || missing != 0 ? kExitDoneInPart : kExitDone;
}

} // namespace

int RunSave(const Options& options) {
    Session session(options);
    std::unique_ptr<TargetFolder> target;
    const int opened = RunSteps([&] { return session.OpenMedium(); }, [&] { return session.OpenVolume(); },
                                [&] { return OpenSaveTarget(options, session.MediumPath(), target); },
                                [&] { return session.ScanVolume(); });
    if (opened != kExitDone) {
        return opened;
    }
    TerminalListener listener;
    EntrySaver saver(std::move(target), listener, options.Deleted);
    const std::vector<std::string> paths =
        options.Paths.empty() ? std::vector<std::string>{""} : options.Paths;
    session.Host.Bar.Begin("Saving", ProgressBar::Unit::Byte);
    std::size_t missing = 0;
    try {
        missing = SaveWanted(paths, saver);
    } catch (const CUserException&) {
        missing = paths.size();
    }
    const SaveTotals& totals = saver.Finish();
    session.Host.Bar.End();
    Output output;
    PrintSaveTotals(output, totals, options, session.Complete());
    const int code = ExitCodeOf(totals, missing, options.Paths.size());
    return output.Finish(code == kExitDone && !session.Complete() ? int{kExitDoneInPart} : code);
}

} // namespace thntfs
