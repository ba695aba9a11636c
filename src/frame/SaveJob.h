#pragma once

#include "frame/SaveWorker.h"

#include <QCoreApplication>
#include <QString>

class QWidget;

namespace thntfs {

class JobControl;
class StatusPanes;
struct SaveNameRequest;
struct SaveWishes;

/// The saving of what MarkedEntries name: its dialogs and its job.
class SaveJob {
    Q_DECLARE_TR_FUNCTIONS(SaveJob)

public:
    /// The dialogs stand over the owner; the worker reports to the frame. All are the caller's and live
    /// longer.
    SaveJob(JobControl& job, MessageTarget& frame, StatusPanes& panes, QWidget& owner);

    /// Asks what to save and where to, and starts the job.
    void Begin();

    /// Shows how far it is. To be called while the worker waits.
    void ShowProgress();

    /// Asks for another name.
    void AskName(SaveNameRequest& request);

    /// What the box at the end tells.
    [[nodiscard]] QString EndText() const { return SaveEndText(run_.Totals); }

private:
    void ShowRows();
    bool Ask(SaveWishes& wishes);
    bool OpenTarget(const QString& folder, bool compressed);

    JobControl& job_;
    MessageTarget& frame_;
    StatusPanes& panes_;
    QWidget& owner_;
    SaveRun run_;
};

} // namespace thntfs
