#include "frame/ListJob.h"

#include "dialogs/FileDialogs.h"
#include "dialogs/SaveListChoice.h"
#include "engine/EngineState.h"
#include "engine/Host.h"
#include "frame/JobControl.h"
#include "frame/StatusPanes.h"
#include "frame/TargetQuestion.h"
#include "platform/files/ReplacementFile.h"
#include "platform/system/SizeText.h"
#include "shell/Boxes.h"
#include "shell/CoreTexts.h"
#include "shell/WindowMessages.h"
#include "views/THNTFSListView.h"
#include "views/THNTFSTreeView.h"

#include <QCoreApplication>
#include <QLocale>
#include <utility>

namespace thntfs {

namespace {

constexpr const char* kListRule = "-----------------------------------";

// Hits stand in no one folder.
QString FolderText(const CTHNTFSListView& list, const CTHNTFSTreeView& tree) {
    const auto folder = list.ShownFolder();
    const QString path = folder ? tree.PathOf(*folder) : QString();
    return folder && path.isEmpty() ? QStringLiteral("#") : path;
}

// The file takes its name once it is complete.
ErrorCode WriteFile(ListRun& run) {
    ReplacementFile file;
    const ErrorCode code = file.Create(run.Path);
    if (code != kErrorNone) {
        return code;
    }
    run.Outcome = WriteEntryList(run.Wish, file.Handle());
    return run.Outcome.Done() ? file.Commit() : run.Outcome.Code;
}

void ListThread(MessageTarget& frame, ListRun& run) {
    LogLine("Writing a list to " + run.Path, kListRule, kLogInProgress);
    const bool ranThrough = RunGuarded([&] { run.Outcome.Code = WriteFile(run); });
    if (ranThrough && run.Outcome.Done()) {
        LogLine("Completed writing " + run.Path, CountText(run.Outcome.Entries, "entry", "entries"),
                kLogDone);
        WM_JOB_FINISHED.Send(&frame, FinishedJob::List);
        return;
    }
    if (run.Outcome.Code != kErrorNone) {
        ShowBox(QCoreApplication::translate("ListJob", "The list can't be written to %1\n%2")
                    .arg(QString::fromStdString(run.Path), ShownCoreText(SystemErrorText(run.Outcome.Code))),
                QCoreApplication::translate("ListJob", "Error"), BoxIcon::Stop);
    }
    LogLine("Aborted writing " + run.Path,
            run.Outcome.Stopped ? "Stopped; no file was made" : "No file was made", kLogFailed);
    WM_JOB_FAILED.Send(&frame);
}

} // namespace

ListJob::ListJob(JobControl& job, MessageTarget& frame, StatusPanes& panes, QWidget& owner)
    : job_(job)
    , frame_(frame)
    , panes_(panes)
    , owner_(owner) {}

void ListJob::Begin(const CTHNTFSListView& list, const CTHNTFSTreeView& tree) {
    if (!job_.MayStartWork() || !Ask(list, FolderText(list, tree))) {
        return;
    }
    job_.SetRunning();
    panes_.BeginProgress(kBlankCaption);
    panes_.SetPhase(QT_TRANSLATE_NOOP("StatusPanes", "Writing"));
    job_.StartWorker([this] { ListThread(frame_, run_); });
}

bool ListJob::Ask(const CTHNTFSListView& list, const QString& folder) {
    CSaveListChoice dialog(&owner_, list.RowCount(), folder);
    if (dialog.exec() != QDialog::Accepted) {
        return false;
    }
    const SaveListWish wish = dialog.Wish();
    if (wish.BodyFile && !CatalogueFits()) {
        return false;
    }
    run_ = {};
    run_.Wish.BodyFile = wish.BodyFile;
    if (wish.Below) {
        run_.Wish.Below = list.ShownFolder();
    } else {
        CTHNTFSListView::ShownRows rows = list.RowsShown();
        run_.Wish.EntryIds = std::move(rows.EntryIds);
        run_.Wish.FolderOf = std::move(rows.FolderOf);
        run_.Wish.FolderPaths = std::move(rows.FolderPaths);
    }
    return AskPlace(folder);
}

bool ListJob::AskPlace(const QString& folder) {
    const QString name = folder.section(QLatin1Char('/'), -1);
    const QString suffix = QLatin1String(run_.Wish.BodyFile ? ".body" : ".csv");
    const QString filter = run_.Wish.BodyFile ? tr("Body file (*.body)") : tr("Table (*.csv)");
    const QString typed = ChooseFileToSave(
        &owner_, tr("Save list"),
        (name.isEmpty() || name == QLatin1String("#") ? tr("List of files") : name) + suffix, filter, suffix);
    const QString path = typed.endsWith(suffix) ? typed : typed + suffix;
    run_.Path = path.toStdString();
    return !typed.isEmpty() && MayWriteTo(path);
}

QString ListJob::EndText() const {
    return tr("%1 entries were written to %2")
        .arg(QLocale().toString(qulonglong{run_.Outcome.Entries}), QString::fromStdString(run_.Path));
}

} // namespace thntfs
