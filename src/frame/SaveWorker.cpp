#include "frame/SaveWorker.h"

#include "catalogue/FindEntry.h"
#include "engine/Host.h"
#include "frame/JobControl.h"
#include "frame/SaveNotes.h"
#include "shell/DesktopHost.h"
#include "shell/WindowMessages.h"

#include <utility>

namespace thntfs {

namespace {

constexpr const char* kSaveRule = "-----------------------------------";

void SaveAll(SaveRun& run, SaveListener& listener) {
    const std::vector<LocatedEntry> entries = LocateEntries(run.EntryIds);
    run.Progress.Begin(CountSaveWork(entries, run.Options));
    EntrySaver saver(std::move(run.Target), listener, run.Options);
    run.Saver = &saver;
    const bool ranThrough = RunGuarded([&] { saver.Save(entries); });
    run.Saver = nullptr;
    run.Totals = saver.Finish();
    run.Totals.Stopped = run.Totals.Stopped || !ranThrough;
}

void LogEnd(const SaveRun& run) {
    ProcessLogEntry entry;
    entry.Name = (run.Totals.Stopped ? "Aborted saving to " : "Completed saving to ") + run.Place;
    entry.Description = SaveSummary(run.Totals).toStdString() + ". Double-click to open the folder";
    entry.Status = run.Totals.Stopped ? kLogFailed : kLogDone;
    entry.Opens = run.Folder;
    Host().LogEvent(entry);
}

} // namespace

void SaveThread(MessageTarget& frame, SaveRun& run) {
    TheDesktopHost().SetManyWorks(true);
    LogLine("Saving data to " + run.Place, kSaveRule, kLogInProgress);
    SaveNotes notes(frame, run.Rows);
    const bool done = RunGuarded([&] { SaveAll(run, notes); });
    TheDesktopHost().SetManyWorks(false);
    WM_JOB_PROGRESS.Send(&frame); // the log's last line comes behind all rows
    if (done) {
        LogEnd(run);
        WM_JOB_FINISHED.Send(&frame, FinishedJob::Save);
    } else {
        LogLine("Aborted saving to " + run.Place, "The scan's result can't be read", kLogFailed);
        WM_JOB_FAILED.Send(&frame);
    }
}

} // namespace thntfs
