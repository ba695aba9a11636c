#pragma once

#include "platform/system/RemainingTime.h"

#include <cstdint>
#include <string>

namespace thntfs {

/// The bar on standard error: label, bar, percent, rate, time passed and time left. It shows itself only on a
/// terminal, and only once the work has taken a second; it is drawn anew at most ten times a second.
class ProgressBar {
public:
    /// What is counted, for the rate.
    enum class Unit { Record, Byte, Sector };

    ProgressBar();

    /// Starts a new piece of work.
    void Begin(const std::string& label, Unit unit, std::uint32_t sectorBytes = 0);
    void Update(std::uint64_t done, std::uint64_t total);
    void End();

    /// Takes a bar that is shown off the terminal's line, so that a message can stand there.
    static void Wipe();

private:
    void Draw(std::uint64_t done, std::uint64_t total, double now);
    [[nodiscard]] std::string TimeText(double now) const;
    [[nodiscard]] std::string RateText(double perSecond) const;

    bool onTerminal_;
    std::string label_;
    Unit unit_ = Unit::Record;
    std::uint32_t sectorBytes_ = 0;
    RemainingTime remaining_;
    double started_ = 0;
    double drawn_ = 0;
};

} // namespace thntfs
