#pragma once

#include <deque>
#include <optional>

namespace thntfs {

/// How much longer a work takes, judged by its pace of late: on a failing disk the pace of the beginning says
/// nothing. Times are in seconds from any fixed moment, work is counted in any unit.
class RemainingTime {
public:
    /// A look at the work: where it is now and where it ends. Another end, or less done than before, is
    /// another work, which is judged anew.
    void Look(double now, double done, double total);

    /// Seconds that are left; none where that can't be told: before the third second, and where nothing has
    /// been done for some time. The number changes once a second at most.
    [[nodiscard]] std::optional<double> Left(double now) const;

    /// Units a second; none before the third second, and where nobody has looked for some time.
    [[nodiscard]] std::optional<double> Pace(double now) const;

private:
    struct Moment {
        double Time;
        double Done;
    };

    std::deque<Moment> looks_; ///< of late, a second apart
    double total_ = 0;
};

} // namespace thntfs
