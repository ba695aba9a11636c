#include "cli/ProgressBar.h"

#include "cli/Output.h"
#include "platform/system/SizeText.h"
#include "platform/system/Terminal.h"

#include <algorithm>
#include <cstdio>

namespace thntfs {

namespace {

constexpr double kSilentSeconds = 1.0;
constexpr double kDrawSeconds = 0.1;
constexpr unsigned kMaxBarCells = 40;

bool shown = false;

std::string BarText(double share, unsigned cells) {
    const auto filled = static_cast<unsigned>(share * cells);
    return "[" + std::string(filled, '#') + std::string(cells - filled, '.') + "]";
}

} // namespace

ProgressBar::ProgressBar()
    : onTerminal_(IsTerminal(StandardStream::Error)) {}

void ProgressBar::Begin(const std::string& label, Unit unit, std::uint32_t sectorBytes) {
    End();
    label_ = label;
    unit_ = unit;
    sectorBytes_ = sectorBytes;
    remaining_ = {};
    started_ = SecondsNow();
    drawn_ = started_;
}

void ProgressBar::Update(std::uint64_t done, std::uint64_t total) {
    if (!onTerminal_ || label_.empty()) {
        return;
    }
    const double now = SecondsNow();
    remaining_.Look(now, static_cast<double>(done), static_cast<double>(total));
    if (now - started_ >= kSilentSeconds && now - drawn_ >= kDrawSeconds) {
        Draw(done, total, now);
    }
}

void ProgressBar::End() {
    Wipe();
    label_.clear();
}

void ProgressBar::Wipe() {
    if (shown) {
        std::fputs("\r\x1b[K", stderr);
        std::fflush(stderr);
        shown = false;
    }
}

void ProgressBar::Draw(std::uint64_t done, std::uint64_t total, double now) {
    drawn_ = now;
    const double share =
        total == 0 ? 0 : std::min(1.0, static_cast<double>(done) / static_cast<double>(total));
    const double sinceStart = static_cast<double>(done) / (now - started_);
    std::string line = label_ + " ";
    const std::string tail = " " + std::to_string(static_cast<unsigned>(share * 100)) + " %  " +
                             RateText(remaining_.Pace(now).value_or(sinceStart)) + "  " + TimeText(now);
    const std::size_t width = TerminalColumns() - 1;
    const std::size_t taken = line.size() + tail.size() + 2;
    if (taken + 4 <= width) {
        line += BarText(share, static_cast<unsigned>(std::min<std::size_t>(kMaxBarCells, width - taken)));
    }
    line = (line + tail).substr(0, width);
    std::fprintf(stderr, "\r%s\x1b[K", line.c_str());
    std::fflush(stderr);
    shown = true;
}

std::string ProgressBar::TimeText(double now) const {
    const auto left = remaining_.Left(now);
    return DurationText(now - started_) + (left ? ", about " + RoughTimeText(*left) + " left" : "");
}

std::string ProgressBar::RateText(double perSecond) const {
    if (unit_ == Unit::Record) {
        return std::to_string(static_cast<std::uint64_t>(perSecond)) + " records/s";
    }
    return ByteText(static_cast<std::uint64_t>(perSecond * (unit_ == Unit::Sector ? sectorBytes_ : 1))) +
           "/s";
}

} // namespace thntfs
