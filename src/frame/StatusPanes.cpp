#include "frame/StatusPanes.h"

#include "platform/system/SizeText.h"
#include "shell/DesktopHost.h"
#include "shell/DesktopState.h"
#include "shell/StatusPane.h"

#include <QStatusBar>

namespace thntfs {

namespace {

constexpr const char* kIdleText = "Ready";
constexpr const char* kNoTotalsText = "Total 0 KB in 0 Files in 0 Folders";
constexpr int kNoticeMilliseconds = 6000;

// Widths in blanks. The first pane stretches, and always has room for a job's text and bar.
struct PaneWidth {
    int Wanted;
    int Least;
};
constexpr std::array<PaneWidth, 3> kPaneWidths{{{58, 58}, {92, 78}, {117, 62}}};

QString TotalsText(std::uint64_t bytes, std::uint32_t files, std::uint32_t folders) {
    return QString::fromStdString(SizeText(bytes)) +
           QStringLiteral(" in %1 Files in %2 Folders").arg(files).arg(folders);
}

} // namespace

StatusPanes::StatusPanes(QStatusBar* bar) {
    bar->setAccessibleName(QStringLiteral("Status bar"));
    for (std::size_t i = 0; i < kPanes; ++i) {
        panes_[i] = new CStatusPane(kPaneWidths[i].Wanted, kPaneWidths[i].Least, bar);
        panes_[i]->setObjectName(QStringLiteral("StatusPane%1").arg(i));
        bar->addPermanentWidget(panes_[i], i == 0 ? 1 : 0);
    }
    panes_[0]->setMinimumWidth(panes_[0]->sizeHint().width());
    panes_[0]->setText(QLatin1String(kIdleText));
    ForgetTotals();
    noticeTimer_.setSingleShot(true);
    QObject::connect(&noticeTimer_, &QTimer::timeout, &noticeTimer_, [this] {
        notice_.clear();
        ShowPrompt({});
    });
}

void StatusPanes::ShowPrompt(const QString& prompt) {
    if (!progressBar_) {
        const QString idle = notice_.isEmpty() ? QLatin1String(kIdleText) : notice_;
        panes_[0]->setText(prompt.isEmpty() ? idle : prompt);
    }
}

void StatusPanes::ShowNotice(const QString& text) {
    notice_ = text;
    ShowPrompt({});
    noticeTimer_.start(kNoticeMilliseconds);
}

void StatusPanes::ShowTotals(Totals what) {
    if (what == Totals::All) {
        panes_[1]->setText(TotalsText(Desktop.TotalBytes, Desktop.TotalFiles, Desktop.TotalFolders));
    } else {
        panes_[2]->setText(QStringLiteral("Marked ") +
                           TotalsText(Desktop.MarkedBytes, Desktop.MarkedFiles, Desktop.MarkedFolders));
    }
}

void StatusPanes::ForgetTotals() { panes_[1]->setText(QLatin1String(kNoTotalsText)); }

void StatusPanes::ClearMarked() { panes_[2]->clear(); }

void StatusPanes::ShowWork(const QString& text) { panes_[2]->setText(text); }

void StatusPanes::BeginProgress(const char* caption) {
    constexpr int kWholePane = 100;
    constexpr int kMaximum = 100;
    progressBar_.reset();
    progressBar_ = std::make_unique<CProgressBar>(panes_[0], QLatin1String(caption), kWholePane, kMaximum);
    SetPhase("Scanning");
}

void StatusPanes::SetPhase(const char* phase) {
    if (progressBar_) {
        progressBar_->Label = QLatin1String(phase);
        TheDesktopHost().BeginProgress();
    }
}

void StatusPanes::ShowProgress() {
    if (!progressBar_) {
        return;
    }
    const int percent = ProgressPercent();
    if (percent == progressBar_->LastPercent && percent != 0) {
        return;
    }
    progressBar_->SetText(progressBar_->Label + QStringLiteral(" :%1%").arg(percent));
    progressBar_->LastPercent = percent;
    progressBar_->SetPos(percent);
}

} // namespace thntfs
