#pragma once

#include "shell/ProgressBar.h"
#include "shell/WindowMessages.h"

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

/// The three panes of the status bar: a prompt, a notice or a job's progress; the totals of the tree; those
/// of what is marked in it.
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
    /// How much of a job's work is done, in the third pane.
    void ShowWork(const QString& text);
    void EndProgress() { progressBar_.reset(); }

private:
    static constexpr std::size_t kPanes = 3;

    std::array<QLabel*, kPanes> panes_{};
    QString notice_;
    QTimer noticeTimer_;
    std::unique_ptr<CProgressBar> progressBar_; ///< null when none
};

} // namespace thntfs
