#include "shell/WorkTime.h"

#include "platform/system/SizeText.h"
#include "platform/system/Terminal.h"

#include <QCoreApplication>

namespace thntfs {

QString TimeText(double passed, std::optional<double> left) {
    const QString time = QString::fromStdString(DurationText(passed));
    return left ? QCoreApplication::translate("WorkTime", "%1 passed, about %2 left")
                      .arg(time, QString::fromStdString(RoughTimeText(*left)))
                : QCoreApplication::translate("WorkTime", "%1 passed").arg(time);
}

void WorkTime::Begin() {
    began_ = SecondsNow();
    remaining_ = {};
}

void WorkTime::Look(double done, double total) { remaining_.Look(SecondsNow(), done, total); }

QString WorkTime::Text() const {
    constexpr double kSilentSeconds = 1;
    const double now = SecondsNow();
    return now - began_ < kSilentSeconds ? QString() : TimeText(now - began_, remaining_.Left(now));
}

} // namespace thntfs
