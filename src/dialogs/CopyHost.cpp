#include "dialogs/CopyHost.h"

#include "engine/EngineState.h"
#include "platform/system/Terminal.h"
#include "shell/WindowMessages.h"

namespace thntfs {

namespace {

constexpr double kReportSeconds = 0.1;

} // namespace

CopyHost::CopyHost(MessageTarget& dialog, const CopyJob& job)
    : before_(Host())
    , dialog_(dialog)
    , job_(job)
    , began_(SecondsNow()) {
    SetHost(this);
}

CopyHost::~CopyHost() { SetHost(&before_); }

void CopyHost::BeginPart(CopyPart part) {
    part_ = part;
    Engine.ProgressDone = 0;
    Engine.ProgressTotal = 0;
}

void CopyHost::TellLast() { Report(); }

template <typename Wait>
void CopyHost::WaitFor(Wait wait) {
    const double start = SecondsNow();
    wait();
    waited_ += SecondsNow() - start;
}

void CopyHost::CopyPosition(std::uint64_t sectorsDone, std::uint64_t totalSectors) {
    WaitFor([this] { DesktopHost::PassGate(); });
    position_ = sectorsDone;
    const int percent = PercentOf(sectorsDone, totalSectors);
    if (percent == percent_ && sectorsDone != totalSectors && !IsDue()) {
        return;
    }
    percent_ = percent;
    WaitFor([&] { DesktopHost::CopyPosition(sectorsDone, totalSectors); });
    Report();
}

// Passed at each read of a single sector: a bad stretch takes long.
void CopyHost::PassGate() {
    WaitFor([this] { DesktopHost::PassGate(); });
    if (IsDue()) {
        Report();
    }
}

void CopyHost::JobProgress() {
    if (IsDue()) {
        Report();
    }
}

bool CopyHost::IsDue() const { return SecondsNow() - reported_ >= kReportSeconds; }

void CopyHost::Report() {
    CopyFigures figures;
    figures.Part = part_;
    figures.Position = position_;
    figures.Done = Engine.ProgressDone;
    figures.PartTotal = Engine.ProgressTotal;
    figures.Seconds = SecondsNow() - began_ - waited_;
    figures.Sums = SumsOf(job_.Ledger.Map());
    WaitFor([&] { WM_COPY_FIGURES.Send(&dialog_, figures); });
    reported_ = SecondsNow();
}

} // namespace thntfs
