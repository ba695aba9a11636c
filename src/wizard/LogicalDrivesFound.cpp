#include "wizard/LogicalDrivesFound.h"

#include "engine/EngineState.h"
#include "scaninfo/JobLog.h"
#include "shell/Boxes.h"
#include "shell/ColorLabel.h"
#include "shell/DesktopHost.h"
#include "shell/PauseGate.h"
#include "shell/WindowMessages.h"
#include "wizard/RowTable.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusTipEvent>
#include <QVBoxLayout>

namespace thntfs {

namespace {

constexpr int kFoundWidth = 64; // in letters
constexpr int kTimeMilliseconds = 1000;

void SetFrameStatus(const QString& text) {
    if (auto* frame = dynamic_cast<QWidget*>(MainWindow())) {
        QStatusTipEvent tip(text);
        QApplication::sendEvent(frame, &tip);
    }
}

void RunSearch(const SearchRequest& request, MessageTarget* dialog) {
    std::uint32_t ranOut = 0;
    try {
        ranOut = SearchVolumes(request.ScanMethod, request.FirstSector, request.EndSector);
    } catch (const CUserException&) {
        // The user has seen the box. The search counts as stopped.
    } catch (const std::exception& failure) {
        Host().ErrorBox(failure.what());
    }
    WM_SEARCH_FINISHED.Send(dialog, ranOut != 0);
    Engine.ScanRunFlag = 0;
}

} // namespace

CLogicalDrivesFound::CLogicalDrivesFound(QWidget* owner, const SearchRequest& request)
    : QDialog(owner)
    , request_(request)
    , partitions_(new CRowTable(this, {tr("Name"), tr("Starting Location")}))
    , percent_(new QLabel(QStringLiteral("0%"), this))
    , position_(new QLabel(this))
    , time_(new QLabel(this))
    , bar_(new QProgressBar(this))
    , abort_(new QPushButton(tr("&Abort Process"), this)) {
    setWindowTitle(tr("%1 Scan").arg(MethodText()));
    partitions_->setAccessibleName(tr("Logical drives found"));
    bar_->setAccessibleName(tr("Progress of the search"));
    bar_->setRange(0, 100);
    bar_->setValue(0);
    bar_->setTextVisible(false);
    position_->hide();
    LayOut();
    connect(&timeTimer_, &QTimer::timeout, this, [this] { time_->setText(workTime_.Text()); });
    connect(abort_, &QPushButton::clicked, this, [this] { AskToAbort(); });
}

CLogicalDrivesFound::~CLogicalDrivesFound() = default;

void CLogicalDrivesFound::LayOut() {
    auto* heading = new CColorLabel(tr("Locating Partitions..."), this);
    heading->SetBold(true);
    auto* progress = new QHBoxLayout;
    progress->addWidget(new QLabel(tr("Process Completed..."), this));
    progress->addWidget(percent_);
    progress->addWidget(position_);
    progress->addStretch();
    progress->addWidget(time_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addWidget(partitions_);
    layout->addLayout(progress);
    layout->addWidget(bar_);
    layout->addWidget(abort_, 0, Qt::AlignRight);
    resize(kFoundWidth * fontMetrics().averageCharWidth(), sizeHint().height());
}

void CLogicalDrivesFound::Run() {
    SetFrameStatus(tr("%1 scan in progress").arg(MethodText()));
    StartSearch();
    exec();
    // Where the whole program was told to end meanwhile, the worker still wants its messages handled.
    while (!over_) {
        Engine.ScanRunFlag = 0;
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    searchThread_.reset();
}

std::intptr_t CLogicalDrivesFound::OnMessage(std::uint32_t message, std::uintptr_t wParam,
                                             std::uintptr_t lParam) {
    switch (message) {
    case WM_SEARCH_POSITION:
        ShowPosition(WM_SEARCH_POSITION.First(wParam), WM_SEARCH_POSITION.Second(lParam));
        break;
    case WM_PARTITION_FOUND:
        AddPartition(WM_PARTITION_FOUND.First(wParam));
        break;
    case WM_SEARCH_FINISHED:
        ranOut_ = WM_SEARCH_FINISHED.First(wParam);
        if (!asking_) {
            EndSearch();
        }
        break;
    default:
        break;
    }
    return 0;
}

void CLogicalDrivesFound::StartSearch() {
    Engine.ScanRunFlag = 1;
    workTime_.Begin();
    timeTimer_.start(kTimeMilliseconds);
    TheDesktopHost().SetSearchDialog(this);
    searchThread_ = std::make_unique<JobThread>([this] { RunSearch(request_, this); });
}

void CLogicalDrivesFound::ShowPosition(std::uint32_t position, std::uint32_t total) {
    if (total == 0) {
        return;
    }
    const int percent = PercentOf(position, total);
    if (percent != lastPercent_) {
        lastPercent_ = percent;
        bar_->setValue(percent);
        percent_->setText(QStringLiteral("%1 %").arg(percent));
    }
    const SearchPlace& place = TheDesktopHost().SearchedTo();
    workTime_.Look(static_cast<double>(place.Sector), static_cast<double>(place.EndSector));
    position_->setText(tr("Scanning sector %1 of %2").arg(position).arg(total));
}

void CLogicalDrivesFound::AddPartition(std::uint32_t startSector) {
    ++foundCount_;
    partitions_->AddRow({tr("NTFS logical drive #%1").arg(foundCount_), QString::number(startSector)});
    partitions_->scrollToBottom();
}

// The search may end while the question stands: its end is shown once that is answered.
void CLogicalDrivesFound::AskToAbort() {
    asking_ = true;
    {
        const WorkerPause pause;
        if (AskYesNo(tr("Do you want to abort scanning?"), tr("Confirm"))) {
            Engine.ScanRunFlag = 0;
        }
    }
    asking_ = false;
    if (ranOut_) {
        EndSearch();
    }
}

// The worker waits in its send, or before the gate, so it is joined later.
void CLogicalDrivesFound::EndSearch() {
    Engine.ScanRunFlag = 0;
    timeTimer_.stop();
    if (*ranOut_) {
        ShowPosition(1, 1);
    }
    ShowBox(EndText(), tr("Information"), *ranOut_ ? BoxIcon::Information : BoxIcon::Stop);
    over_ = true;
    TheDesktopHost().SetSearchDialog(nullptr);
    LogSearchEnded(*ranOut_);
    LogLosses();
    SetFrameStatus(tr("Ready"));
    done(Rejected);
}

QString CLogicalDrivesFound::EndText() const {
    if (!*ranOut_) {
        return tr("%1 scan of drives aborted.").arg(MethodText());
    }
    const bool advise = !IsThorough() && Engine.SourceDisk.Partitions.empty();
    return tr("%1 scan of drives completed.").arg(MethodText()) +
           (advise ? tr("\nNo logical drive(s) found.\nPlease use thorough scan.") : QString());
}

QString CLogicalDrivesFound::MethodText() const { return IsThorough() ? tr("Thorough") : tr("Quick"); }

} // namespace thntfs
