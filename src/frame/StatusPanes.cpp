#include "frame/StatusPanes.h"

#include "platform/system/SizeText.h"
#include "shell/DesktopHost.h"
#include "shell/DesktopState.h"
#include "shell/StatusPane.h"

#include <QCoreApplication>
#include <QStatusBar>

namespace thntfs {

namespace {

constexpr const char* kIdleText = QT_TRANSLATE_NOOP("StatusPanes", "Ready");
constexpr const char* kNoTotalsText = QT_TRANSLATE_NOOP("StatusPanes", "Total 0 KB in 0 Files in 0 Folders");
constexpr int kNoticeMilliseconds = 6000;
constexpr int kTimeMilliseconds = 1000;

// Widths in blanks. The first pane stretches, and always has room for a job's text and bar.
struct PaneWidth {
    int Wanted;
    int Least;
};
constexpr std::array<PaneWidth, 3> kPaneWidths{{{58, 58}, {92, 78}, {117, 62}}};

QString TotalsText(std::uint64_t bytes, std::uint32_t files, std::uint32_t folders) {
    return QCoreApplication::translate("StatusPanes", "%1 in %2 Files in %3 Folders")
        .arg(QString::fromStdString(SizeText(bytes)))
        .arg(files)
        .arg(folders);
}

} // namespace

StatusPanes::StatusPanes(QStatusBar* bar) {
    bar->setAccessibleName(tr("Status bar"));
    for (std::size_t i = 0; i < kPanes; ++i) {
        panes_[i] = new CStatusPane(kPaneWidths[i].Wanted, kPaneWidths[i].Least, bar);
        panes_[i]->setObjectName(QStringLiteral("StatusPane%1").arg(i));
        bar->addPermanentWidget(panes_[i], i == 0 ? 1 : 0);
    }
    panes_[0]->setMinimumWidth(panes_[0]->sizeHint().width());
    panes_[0]->setText(QCoreApplication::translate("StatusPanes", kIdleText));
    ForgetTotals();
    noticeTimer_.setSingleShot(true);
    QObject::connect(&noticeTimer_, &QTimer::timeout, &noticeTimer_, [this] {
        notice_.clear();
        ShowPrompt({});
    });
    QObject::connect(&timeTimer_, &QTimer::timeout, &timeTimer_, [this] { ShowTime(); });
}

void StatusPanes::ShowPrompt(const QString& prompt) {
    if (!progressBar_) {
        const QString idle =
            notice_.isEmpty() ? QCoreApplication::translate("StatusPanes", kIdleText) : notice_;
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
        panes_[2]->setText(
            tr("Marked %1").arg(TotalsText(Desktop.MarkedBytes, Desktop.MarkedFiles, Desktop.MarkedFolders)));
    }
}

void StatusPanes::ForgetTotals() {
    panes_[1]->setText(QCoreApplication::translate("StatusPanes", kNoTotalsText));
}

void StatusPanes::ClearMarked() { panes_[2]->clear(); }

void StatusPanes::ShowWork(const WorkDone& work) {
    time_.Look(work.Done, work.Total);
    workText_ = work.Text;
    if (!timeTimer_.isActive()) {
        timeTimer_.start(kTimeMilliseconds);
    }
    if (time_.Text().isEmpty()) { // a short work is over before the timer comes
        ShowTime();
    }
}

void StatusPanes::ShowTime() {
    const QString time = time_.Text();
    panes_[2]->setText(time.isEmpty() ? workText_ : tr("%1, %2").arg(time, workText_));
}

void StatusPanes::EndProgress() {
    progressBar_.reset();
    if (timeTimer_.isActive()) {
        timeTimer_.stop();
        ClearMarked(); // what was told last may be less than all
    }
}

void StatusPanes::BeginProgress(const char* caption) {
    constexpr int kWholePane = 100;
    constexpr int kMaximum = 100;
    EndProgress();
    time_.Begin();
    progressBar_ = std::make_unique<CProgressBar>(
        panes_[0], QCoreApplication::translate("StatusPanes", caption), kWholePane, kMaximum);
    SetPhase(QT_TRANSLATE_NOOP("StatusPanes", "Scanning"));
}

void StatusPanes::SetPhase(const char* phase) {
    if (progressBar_) {
        progressBar_->Label = QCoreApplication::translate("StatusPanes", phase);
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
