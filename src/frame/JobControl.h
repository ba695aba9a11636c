#pragma once

#include "engine/Host.h"
#include "shell/JobThread.h"
#include "shell/WindowMessages.h"

#include <QCoreApplication>
#include <QString>
#include <functional>
#include <memory>

namespace thntfs {

class StatusPanes;

/// What all jobs on the open medium have in common, from a job's choice to the end of its handling: the
/// flags, the worker, the user's stop. One job runs at a time.
class JobControl {
    Q_DECLARE_TR_FUNCTIONS(JobControl)

public:
    /// The worker reports to the frame. Both are the caller's and live longer.
    JobControl(MessageTarget& frame, StatusPanes& panes);

    /// From the choice of a job to the end of its handling.
    [[nodiscard]] bool JobBusy() const;

    /// Whether anything may begin that needs the medium or the catalogue. A box says where a stopped worker
    /// still has them.
    [[nodiscard]] bool MayStartWork() const;

    /// The wizard has chosen a job; the entry, which its lines go on with, names it.
    void Choose(const ProcessLogEntry& wizardEntry);
    /// From here on a job runs, though its worker has yet to start.
    void SetRunning();

    /// The worker starts; where the system has no thread for it, a box says so and the job has ended.
    void StartWorker(std::function<void()> work);

    /// Asks whether the job is to stop, while its worker stands still.
    void Stop();

    /// The worker is through: takes the bar away and tells so in a box, unless there is nothing to tell.
    /// ReturnToIdle is still to come.
    void TellFinished(const QString& text);
    /// The worker could not begin or go on.
    void EndFailed();
    void ReturnToIdle();

    /// The line for the log on what has become of a work.
    ProcessLogEntry EntryOf(CopyWork work, CopyEvent event);

    /// To be called before what the worker reports to goes away.
    void WaitForWorker() { workerThread_.reset(); }

private:
    MessageTarget& frame_;
    StatusPanes& panes_;
    ProcessLogEntry currentEntry_; ///< of the wizard run that has started the job
    bool jobBusy_ = false;
    std::unique_ptr<JobThread> workerThread_;
};

/// What the box at the end of a job tells; empty where there is none, or where the job has a text of its own.
QString FinishedText(FinishedJob kind);

/// Runs a part of a worker's work. False where it has thrown, of which the user has been told.
bool RunGuarded(const std::function<void()>& work);

} // namespace thntfs
