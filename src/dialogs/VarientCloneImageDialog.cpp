#include "dialogs/VarientCloneImageDialog.h"

#include "dialogs/CopyAnimation.h"
#include "dialogs/CopyWorkers.h"
#include "dialogs/HelpViewer.h"
#include "engine/EngineState.h"
#include "platform/system/SizeText.h"
#include "shell/Boxes.h"
#include "shell/DesktopState.h"
#include "shell/Icons.h"
#include "shell/PauseGate.h"
#include "shell/WorkTime.h"

#include <QApplication>
#include <QCoreApplication>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWindow>
#include <limits>
#include <system_error>

namespace thntfs {

namespace {

constexpr int kHeadingPixels = 11;

QLabel* PlainLabel(const QString& text, const char* name, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setObjectName(QLatin1String(name));
    return label;
}

QLabel* HeadingLabel(QWidget* parent) {
    QFont font(QStringLiteral("Verdana"));
    font.setPixelSize(kHeadingPixels);
    font.setWeight(QFont::Bold);
    QLabel* label = PlainLabel({}, "Heading", parent);
    label->setFont(font);
    return label;
}

QLabel* HelpLink(QWidget* parent) {
    auto* link =
        new QLabel(QStringLiteral("<a href=\"contact.htm\">%1</a>")
                       .arg(QCoreApplication::translate("VarientCloneImageDialog", "Asking for help")),
                   parent);
    link->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    QObject::connect(link, &QLabel::linkActivated, link, [](const QString& page) { ShowHelp(page); });
    return link;
}

QString RateText(double sectorsPerSecond) {
    const double bytes = sectorsPerSecond * Engine.SourceDisk.BytesPerSector;
    return QString::fromStdString(ByteText(static_cast<std::uint64_t>(bytes)));
}

QString Grouped(std::uint64_t number) { return QLocale(QLocale::English).toString(qulonglong{number}); }

/// WM_COPY_PROGRESS has words for the others.
bool IsBeyondWords(std::uint64_t sectors) { return sectors > std::numeric_limits<std::uint32_t>::max(); }

} // namespace

CVarientCloneImageDialog::CVarientCloneImageDialog()
    : animation_(new CCopyAnimation(this))
    , heading_(HeadingLabel(this))
    , percentText_(PlainLabel(QStringLiteral("0 %"), "Percent", this))
    , sectorLine_(PlainLabel(QStringLiteral(" "), "SectorLine", this))
    , bar_(new QProgressBar(this))
    , rate_(PlainLabel(QStringLiteral(" "), "Rate", this))
    , account_(PlainLabel(QStringLiteral(" "), "Account", this))
    , stop_(new QPushButton(this)) {
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowIcon(LoadIcon("task-image"));
    bar_->setAccessibleName(tr("Progress of the copy"));
    bar_->setRange(0, 100);
    bar_->setValue(0);
    bar_->setTextVisible(false);
    LayOut();
    connect(stop_, &QPushButton::clicked, this, [this] { AskToStop(); });
}

// Where the dialog is taken away before the end, the worker still wants its messages handled.
CVarientCloneImageDialog::~CVarientCloneImageDialog() {
    while (copyThread_ != nullptr && !over_) {
        Engine.ScanRunFlag = 0;
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    copyThread_.reset();
    if (Desktop.CopyDialog == this) {
        Desktop.CopyDialog = nullptr;
    }
}

void CVarientCloneImageDialog::LayOut() {
    auto* progress = new QHBoxLayout;
    progress->addWidget(new QLabel(tr("Progress Completed..."), this));
    progress->addWidget(percentText_);
    progress->addStretch();
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(HelpLink(this));
    bottom->addStretch();
    bottom->addWidget(stop_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(heading_);
    layout->addWidget(animation_);
    layout->addLayout(progress);
    layout->addWidget(bar_);
    for (QLabel* line : {sectorLine_, rate_, account_}) {
        layout->addWidget(line);
    }
    layout->addLayout(bottom);
}

std::intptr_t CVarientCloneImageDialog::OnMessage(std::uint32_t message, std::uintptr_t wParam,
                                                  std::uintptr_t lParam) {
    switch (message) {
    case WM_START_CLONE:
        Start(CopyWork::Clone, WM_START_CLONE.First(wParam));
        break;
    case WM_START_IMAGE:
        Start(CopyWork::Image, WM_START_IMAGE.First(wParam));
        break;
    case WM_COPY_PROGRESS:
        if (!IsBeyondWords(Engine.SourceDisk.TotalSectors)) {
            ShowProgress(WM_COPY_PROGRESS.Second(lParam), WM_COPY_PROGRESS.First(wParam));
        }
        break;
    case WM_COPY_FIGURES:
        ShowFigures(WM_COPY_FIGURES.First(wParam));
        break;
    case WM_COPY_FINISHED:
        finished_ = WM_COPY_FINISHED.Second(lParam);
        if (!asking_) {
            End(*finished_);
        }
        break;
    default:
        break;
    }
    return 0;
}

void CVarientCloneImageDialog::Start(CopyWork work, CopyJob& job) {
    imagingMode_ = work;
    SetTexts();
    if (copyThread_ == nullptr) {
        job_ = std::make_unique<CopyJob>(std::move(job));
        host_ = std::make_unique<CopyHost>(*this, *job_);
        show();
        StartThread();
    }
}

void CVarientCloneImageDialog::SetTexts() {
    setWindowTitle(tr("Tarnholt Volume Salvage (NTFS) Disk %1").arg(WorkText()));
    stop_->setText(tr("&Stop %1").arg(WorkText()));
    heading_->setText(tr("Disk %1...").arg(WorkText()));
    animation_->SetTargetIcon(IsImaging() ? "task-image" : "disk");
    animation_->SetMoving(true);
    adjustSize();
    if (const auto* frame = dynamic_cast<QWidget*>(MainWindow())) {
        move(frame->geometry().center() - rect().center());
        winId(); // makes its window, which the window manager is to keep above the frame's
        windowHandle()->setTransientParent(frame->windowHandle());
    }
}

void CVarientCloneImageDialog::StartThread() {
    const auto work = IsImaging() ? ImageThreadProc : CloneThreadProc;
    try {
        copyThread_ = std::make_unique<JobThread>([this, work] { work(*job_, *host_, *this); });
    } catch (const std::system_error& failure) {
        ShowBox(QString::fromLocal8Bit(failure.what()), tr("Error"), BoxIcon::Stop);
        ResetEngineState();
        End(CopyEvent::Aborted);
    }
}

QString CVarientCloneImageDialog::WorkText() const { return IsImaging() ? tr("Imaging") : tr("Cloning"); }

void CVarientCloneImageDialog::ShowProgress(std::uint64_t done, std::uint64_t total) {
    ShowPercent(static_cast<std::uint32_t>(PercentOf(done, total)));
    if (static_cast<std::int64_t>(done) != lastPosition_) {
        lastPosition_ = static_cast<std::int64_t>(done);
        sectorLine_->setText(tr("%1 sector %2 of %3").arg(WorkText()).arg(done).arg(total));
    }
}

void CVarientCloneImageDialog::ShowPercent(std::uint32_t percent) {
    if (percent != lastPercent_) {
        lastPercent_ = percent;
        bar_->setValue(static_cast<int>(percent));
        percentText_->setText(QStringLiteral("%1 %").arg(percent));
    }
}

void CVarientCloneImageDialog::ShowFigures(const CopyFigures& figures) {
    if (figures.Part == CopyPart::Retrying) {
        ShowPercent(static_cast<std::uint32_t>(PercentOf(figures.Done, figures.PartTotal)));
        sectorLine_->setText(
            tr("Reading bad sectors again: %1 of %2").arg(Grouped(figures.Done), Grouped(figures.PartTotal)));
    } else if (IsBeyondWords(figures.Sums.Total) && figures.Position != 0) {
        ShowProgress(figures.Position, figures.Sums.Total);
    }
    ShowRate(figures);
    account_->setText(tr("Bad sectors: %1    Not yet tried: %2")
                          .arg(Grouped(figures.Sums.Bad), Grouped(figures.Sums.Unread)));
}

void CVarientCloneImageDialog::ShowRate(const CopyFigures& figures) {
    remaining_.Look(figures.Seconds, static_cast<double>(figures.Done),
                    static_cast<double>(figures.PartTotal));
    const QString time = TimeText(figures.Seconds, remaining_.Left(figures.Seconds));
    const auto pace = remaining_.Pace(figures.Seconds);
    rate_->setText(pace ? tr("%1/s, %2").arg(RateText(*pace), time) : time);
}

// The worker may have told its end, or be about to: that is shown once the question is answered.
void CVarientCloneImageDialog::AskToStop() {
    if (copyThread_ == nullptr || asking_ || over_) {
        return;
    }
    asking_ = true;
    animation_->SetMoving(false);
    {
        const WorkerPause pause;
        WM_COPY_EVENT.Post(MainWindow(), imagingMode_, CopyEvent::Paused);
        if (AskYesNo(tr("Do you want to stop process?"), tr("Volume Salvage (NTFS)"))) {
            Engine.ScanRunFlag = 0;
        } else {
            WM_COPY_EVENT.Post(MainWindow(), imagingMode_, CopyEvent::Resumed);
            animation_->SetMoving(true);
        }
    }
    asking_ = false;
    if (finished_) {
        End(*finished_);
    }
}

// The worker waits in its send, or before the gate, so the destructor joins it.
void CVarientCloneImageDialog::End(CopyEvent event) {
    const bool completed = event == CopyEvent::Completed;
    Engine.ScanRunFlag = 0;
    animation_->SetMoving(false);
    stop_->setEnabled(false);
    over_ = true;
    ShowBox(tr("Disk %1 %2").arg(WorkText(), completed ? tr("Completed") : tr("Aborted")), tr("Information"),
            completed ? BoxIcon::Information : BoxIcon::Stop);
    WM_COPY_EVENT.Send(MainWindow(), imagingMode_, event);
    if (Engine.ScanRunFlag == 0) {
        hide();
        deleteLater();
    }
}

} // namespace thntfs
