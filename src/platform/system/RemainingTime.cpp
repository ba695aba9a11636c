#include "platform/system/RemainingTime.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr double kLookSeconds = 1;
constexpr double kFirstJudgement = 3;
constexpr double kJudgedSeconds = 30; // the pace of so long counts

} // namespace

void RemainingTime::Look(double now, double done, double total) {
    if (total != total_ || (!looks_.empty() && done < looks_.back().Done)) {
        looks_.clear();
        total_ = total;
    }
    if (!looks_.empty() && now - looks_.back().Time < kLookSeconds) {
        return;
    }
    looks_.push_back({now, done});
    while (now - looks_.front().Time > kJudgedSeconds) {
        looks_.pop_front();
    }
}

std::optional<double> RemainingTime::Pace(double now) const {
    if (looks_.empty() || now - looks_.back().Time > kJudgedSeconds) {
        return std::nullopt;
    }
    const double seconds = looks_.back().Time - looks_.front().Time;
    const double done = looks_.back().Done - looks_.front().Done;
    return seconds < kFirstJudgement ? std::nullopt : std::optional(done / seconds);
}

std::optional<double> RemainingTime::Left(double now) const {
    const std::optional<double> pace = Pace(now);
    return pace && *pace > 0 ? std::optional(std::max(0.0, total_ - looks_.back().Done) / *pace)
                             : std::nullopt;
}

} // namespace thntfs
