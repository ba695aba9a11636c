#pragma once

#include "shell/ProgressBar.h"
#include "shell/WindowMessages.h"
#include "shell/WorkTime.h"

#include <QCoreApplication>
#include <QString>
#include <QTimer>
#include <array>
#include <memory>

class QLabel;
class QStatusBar;

namespace thntfs {

/// A job's caption where no phase has been told yet.
inline constexpr const char* kBlankCaption = "        ";

/// How far a job's work is, in any unit, and what the third pane says of it.
struct WorkDone {
    double Done = 0;
    double Total = 0;
    QString Text;
};

/// The three panes of the status bar: a prompt, a notice or a job's progress; the totals of the tree; those
/// of what is marked in it, or a job's time.
class StatusPanes {
    Q_DECLARE_TR_FUNCTIONS(StatusPanes)

public:
    /// The panes are made within the bar and belong to it.
    explicit StatusPanes(QStatusBar* bar);

    /// A command's prompt, empty for none. A job's progress isn't disturbed.
    void ShowPrompt(const QString& prompt);
    /// Shows for some seconds where else nothing would be told.
    void ShowNotice(const QString& text);

    void ShowTotals(Totals what);
    void ForgetTotals();
    void ClearMarked();

    // A job's progress, over the first pane.
    void BeginProgress(const char* caption);
    /// The phase that is named from the next look at the progress on; nothing without one.
    void SetPhase(const char* phase);
    /// Shows ProgressDone of ProgressTotal; nothing without a job's progress.
    void ShowProgress();
    /// How much of a job's work is done: the third pane tells that behind the job's time, which from then on
    /// goes on by itself.
    void ShowWork(const WorkDone& work);
    void EndProgress();

private:
    void ShowTime();

    static constexpr std::size_t kPanes = 3;

    std::array<QLabel*, kPanes> panes_{};
    QString notice_;
    QTimer noticeTimer_;
    std::unique_ptr<CProgressBar> progressBar_; ///< null when none
    WorkTime time_;                             ///< of the job whose progress stands
    QTimer timeTimer_;
    QString workText_;
};

} // namespace thntfs
