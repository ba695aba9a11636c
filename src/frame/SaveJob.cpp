#include "frame/SaveJob.h"

#include "content/TargetName.h"
#include "content/ZipFolder.h"
#include "dialogs/RenameFile.h"
#include "dialogs/SaveChoice.h"
#include "dialogs/SaveData.h"
#include "engine/EngineState.h"
#include "frame/JobControl.h"
#include "frame/SaveNotes.h"
#include "frame/StatusPanes.h"
#include "frame/TargetQuestion.h"
#include "shell/Boxes.h"
#include "shell/CoreTexts.h"

#include <QCoreApplication>
#include <QDate>
#include <utility>

namespace thntfs {

namespace {

SaveOptions OptionsOf(const SaveWishes& wishes) {
    SaveOptions options;
    options.Reach = wishes.Reach;
    options.AsStored = wishes.AsStored;
    options.Streams = wishes.Streams && !wishes.AsStored;
    if (wishes.UsesPrefix) {
        options.Prefix = wishes.Prefix.toStdString();
    }
    for (const QString& type : wishes.Types) {
        if (wishes.IgnoresTypes) {
            options.Excluded.Add(type.toStdString());
        }
    }
    return options;
}

// Under a name of its own, as nothing is written over.
ErrorCode OpenArchive(SaveRun& run) {
    const std::string name =
        QDate::currentDate().toString(QStringLiteral("'Saved data 'yyyy-MM-dd'.zip'")).toStdString();
    ErrorCode code = kErrorFileExists;
    for (unsigned number = 1; code == kErrorFileExists; ++number) {
        run.Place = run.Folder + "/" + (number == 1 ? name : NumberedName(name, number));
        code = OpenZipFolder(run.Place, run.Target);
    }
    return code;
}

QString SuggestedName(const SaveNameRequest& request) {
    return QString::fromStdString(request.Why == NameTrouble::Exists ? NumberedName(request.Name, 2)
                                                                     : FitName(request.Name));
}

QString ReasonFor(NameTrouble why) {
    return why == NameTrouble::Exists
               ? QCoreApplication::translate("SaveJob", "this one exists in the folder already")
               : QCoreApplication::translate("SaveJob", "the folder can't take this one");
}

} // namespace

SaveJob::SaveJob(JobControl& job, MessageTarget& frame, StatusPanes& panes, QWidget& owner)
    : job_(job)
    , frame_(frame)
    , panes_(panes)
    , owner_(owner) {}

void SaveJob::Begin() {
    SaveWishes wishes = LoadSaveWishes();
    if (!job_.MayStartWork() || !CatalogueFits() || !Ask(wishes)) {
        return;
    }
    run_.EntryIds = Engine.MarkedEntries;
    run_.Options = OptionsOf(wishes);
    run_.Progress = {};
    run_.Totals = {};
    job_.SetRunning();
    panes_.BeginProgress(kBlankCaption);
    panes_.SetPhase(QT_TRANSLATE_NOOP("StatusPanes", "Saving"));
    job_.StartWorker([this] { SaveThread(frame_, run_); });
}

// Each dialog's choice is kept once it is made.
bool SaveJob::Ask(SaveWishes& wishes) {
    if (CSaveChoice(&owner_, wishes).exec() != QDialog::Accepted) {
        return false;
    }
    KeepSaveWishes(wishes);
    CSaveData where(&owner_, wishes, [this](const QString& folder, bool compressed) {
        return OpenTarget(folder, compressed);
    });
    if (where.exec() != QDialog::Accepted) {
        return false;
    }
    KeepSaveWishes(wishes);
    return true;
}

bool SaveJob::OpenTarget(const QString& folder, bool compressed) {
    if (!MayWriteTo(folder)) {
        return false;
    }
    run_.Folder = folder.toStdString();
    run_.Place = run_.Folder;
    ErrorCode code = TargetFolder::OpenTargetFolder(run_.Folder, true, run_.Target);
    if (code == kErrorNone && compressed) {
        code = OpenArchive(run_);
    }
    if (code != kErrorNone) {
        const QString why = code == kErrorDirectory ? tr("It is a file, or lies below one.")
                                                    : ShownCoreText(SystemErrorText(code));
        ShowBox(tr("Data can't be saved to %1\n%2").arg(folder, why), tr("Error"), BoxIcon::Stop);
    }
    return code == kErrorNone;
}

void SaveJob::ShowProgress() {
    ShowRows();
    if (run_.Saver != nullptr) {
        panes_.ShowWork(run_.Progress.Of(run_.Saver->Done()));
    }
}

// Each by itself would cost the worker a wait.
void SaveJob::ShowRows() {
    for (const ProcessLogEntry& row : std::exchange(run_.Rows, {})) {
        WM_LOG_EVENT.Send(&frame_, row);
    }
}

// Whoever tells the program to end is asked nothing.
void SaveJob::AskName(SaveNameRequest& request) {
    ShowRows();
    if (BoxesAreRefused()) {
        return;
    }
    CRenameFile dialog(&owner_, QString::fromStdString(request.Name), ReasonFor(request.Why),
                       SuggestedName(request));
    dialog.exec();
    using Answer = CRenameFile::Answer;
    const Answer chosen = dialog.Chosen();
    request.ForAll = chosen == Answer::RenameAll || chosen == Answer::SkipAll;
    if (chosen == Answer::Rename || chosen == Answer::RenameAll) {
        request.Answer = {NameAnswer::Kind::Rename, dialog.NewName().toStdString()};
    }
}

} // namespace thntfs
