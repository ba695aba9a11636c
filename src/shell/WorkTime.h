#pragma once

#include "platform/system/RemainingTime.h"

#include <QString>
#include <optional>

namespace thntfs {

/// "1:05 passed, about 12 min left"; the first alone where it isn't known how many seconds are left.
QString TimeText(double passed, std::optional<double> left);

/// The time of a work that runs now.
class WorkTime {
public:
    /// The work begins.
    void Begin();

    /// How far it is, in any unit. Another end is another part of the work.
    void Look(double done, double total);

    /// As TimeText; empty in the first second.
    [[nodiscard]] QString Text() const;

private:
    double began_ = 0;
    RemainingTime remaining_;
};

} // namespace thntfs
