#include "cli/Commands.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "cli/SameDisk.h"
#include "cli/Session.h"
#include "content/FurtherEntries.h"
#include "content/SaveEntries.h"
#include "content/SaveReport.h"
#include "content/ZipFolder.h"
#include "engine/EngineState.h"
#include "platform/system/Terminal.h"

#include <nlohmann/json.hpp>

namespace thntfs {

namespace {

class TerminalListener : public SaveListener {
public:
    explicit TerminalListener(SaveReport& report)
        : report_(report) {}

    void Renamed(const std::string& path, const std::string& targetName) override {
        PrintMessage(path + ": saved under the name " + targetName);
    }
    void Warned(const std::string& path, const std::string& text) override {
        PrintMessage(path + ": " + text);
    }
    void Failed(const std::string& path, const std::string& reason) override {
        PrintMessage(path + ": not saved: " + reason);
    }
    void Concluded(const SavedFile& file) override { report_.Add(file); }

private:
    SaveReport& report_;
};

int OpenSaveTarget(const Options& options, const std::string& medium, std::unique_ptr<TargetFolder>& target) {
    if (const TargetVerdict verdict = CheckPlace(options, options.Target, medium); !verdict.Allowed()) {
        return Refuse(options.Target +
                      " lies on the medium that is being read. Saving there would destroy what is "
                      "to be recovered; choose a folder on another disk." +
                      SameDiskHint(options, verdict));
    }
    const ErrorCode code = options.Zip ? OpenZipFolder(options.Target, target)
                                       : TargetFolder::OpenTargetFolder(options.Target, true, target);
    if (code == kErrorFileExists) {
        return Refuse("Cannot save to " + options.Target +
                      ": there is something under this name already, which stays as it is.");
    }
    if (code == kErrorDirectory && !options.Zip) {
        return Refuse("Cannot save to " + options.Target +
                      ": it is a file or lies below one. Give a folder.");
    }
    if (code != kErrorNone) {
        return Refuse("Cannot save to " + options.Target + ": " + SystemErrorText(code));
    }
    return kExitDone;
}

int TellReportFailure(const std::string& path, const std::string& reason) {
    return Refuse("Cannot write the report to " + path + ": " + reason);
}

int OpenReport(const Options& options, const std::string& medium, SaveReport& report) {
    if (!options.Report) {
        return kExitDone;
    }
    const std::string& path = *options.Report;
    if (const TargetVerdict verdict = CheckPlace(options, path, medium); !verdict.Allowed()) {
        return TellReportFailure(path,
                                 "it lies on the medium that is being read; choose a place on another disk." +
                                     SameDiskHint(options, verdict));
    }
    const ErrorCode code = report.Create(path);
    if (code == kErrorFileExists) {
        return TellReportFailure(path, "there is something under this name already, which stays as it is.");
    }
    return code == kErrorNone ? int{kExitDone} : TellReportFailure(path, SystemErrorText(code));
}

int CloseReport(const Options& options, SaveReport& report, int code) {
    const ErrorCode error = options.Report ? report.Finish() : kErrorNone;
    if (error == kErrorNone) {
        return code;
    }
    TellReportFailure(*options.Report, SystemErrorText(error));
    return code == kExitDone ? int{kExitFailed} : code;
}

struct FoundEntries {
    std::vector<LocatedEntry> Entries;
    std::size_t PathsMissing = 0; ///< how many of the paths name nothing
};

FoundEntries FindAllWanted(const std::vector<std::string>& paths) {
    FoundEntries wanted;
    for (const std::string& path : paths) {
        std::vector<LocatedEntry> found = FindEntriesByAnyName(path);
        if (found.empty()) {
            PrintMessage("No entry has the path " + path);
            ++wanted.PathsMissing;
        }
        std::move(found.begin(), found.end(), std::back_inserter(wanted.Entries));
    }
    return wanted;
}

SaveOptions WhatToSave(const Options& options) {
    SaveOptions wanted;
    wanted.Reach = options.Deleted    ? SaveReach::DeletedOnly
                   : options.Existing ? SaveReach::ExistingOnly
                                      : SaveReach::All;
    if (options.ByCriteria) {
        wanted.Names.emplace(options.Criteria);
    }
    wanted.Excluded = options.Excluded;
    wanted.Conditions = options.Conditions;
    wanted.AsStored = options.AsStored;
    wanted.Streams = options.Streams;
    wanted.Report = options.Report.has_value();
    return wanted;
}

void ShowWholeSave(TerminalHost& host, EntrySaver& saver, std::uint64_t bytes) {
    host.ShowWork = [&host, &saver, bytes] { host.Bar.Update(saver.Done().Bytes, bytes); };
}

std::size_t SaveWanted(const Options& options, EntrySaver& saver, TerminalHost& host) try {
    const std::vector<std::string> paths =
        options.Paths.empty() ? std::vector<std::string>{""} : options.Paths;
    const FoundEntries wanted = FindAllWanted(paths);
    if (IsTerminal(StandardStream::Error)) { // counting takes a walk through the catalogue
        ShowWholeSave(host, saver, CountSaveWork(wanted.Entries, WhatToSave(options)).Bytes);
    }
    saver.Save(wanted.Entries);
    return wanted.PathsMissing;
} catch (const CUserException&) {
    return options.Paths.empty() ? 1 : options.Paths.size();
}

std::string TotalsJson(const SaveTotals& totals, const Options& options, bool scannedAll) {
    const nlohmann::ordered_json object = {{"files", totals.Files},
                                           {"folders", totals.Folders},
                                           {"bytes", totals.Bytes},
                                           {"damaged", totals.Damaged},
                                           {"failed", totals.Failed},
                                           {"complete", scannedAll && !totals.Stopped},
                                           {"target", options.Target},
                                           {"links", totals.Links},
                                           {"streams", totals.Streams},
                                           {"streamsLeft", totals.StreamsLeft},
                                           {"leftOut", totals.LeftOut + totals.TypesLeftOut},
                                           {"typesLeftOut", totals.TypesLeftOut}};
    return object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

std::string TotalsText(const SaveTotals& totals, const Options& options) {
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
    if (totals.Links != 0) {
        line += "; " + CountText(totals.Links, "further name", "further names") + " of them made";
    }
    if (totals.Streams != 0) {
        line += "; " + CountText(totals.Streams, "named stream", "named streams") + " beside them";
    }
    if (totals.StreamsLeft != 0) {
        line += "; " + CountText(totals.StreamsLeft, "named stream", "named streams") +
                " left, which --streams saves";
    }
    if (totals.LeftOut != 0) {
        line += "; " + CountText(totals.LeftOut, "file", "files") + " in other conditions left out";
    }
    if (totals.TypesLeftOut != 0) {
        line += "; " + CountText(totals.TypesLeftOut, "file", "files") + " of excluded types left out";
    }
    if (totals.Stopped) {
        line += "; stopped before the end";
    }
    return line + "\n";
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
    SaveReport report;
    const int opened = RunSteps([&] { return session.OpenMedium(); }, [&] { return session.OpenVolume(); },
                                [&] { return OpenSaveTarget(options, session.MediumPath(), target); },
                                [&] { return OpenReport(options, session.MediumPath(), report); },
                                [&] { return session.ScanVolume(); });
    if (opened != kExitDone) {
        return opened;
    }
    TerminalListener listener(report);
    EntrySaver saver(std::move(target), listener, WhatToSave(options));
    session.Host.Bar.Begin("Saving", ProgressBar::Unit::Byte);
    const std::size_t missing = SaveWanted(options, saver, session.Host);
    const SaveTotals& totals = saver.Finish();
    session.Host.ShowWork = nullptr;
    session.Host.Bar.End();
    if (options.ByCriteria && missing == 0 && totals.Files + totals.Folders + totals.Failed == 0) {
        PrintMessage("Nothing there is what you asked for.");
    }
    Output output;
    output.Put(options.Json ? TotalsJson(totals, options, session.Complete()) : TotalsText(totals, options));
    const int code = CloseReport(options, report, ExitCodeOf(totals, missing, options.Paths.size()));
    return output.Finish(code == kExitDone && !session.Complete() ? int{kExitDoneInPart} : code);
}

} // namespace thntfs
