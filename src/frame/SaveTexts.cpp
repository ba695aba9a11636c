#include "frame/SaveTexts.h"

#include "platform/system/SizeText.h"

#include <QStringList>
#include <cmath>

namespace thntfs {

namespace {

constexpr double kMillisecondsToJudge = 2000;
constexpr double kFileCost = 16384; // a file costs about as much as that many bytes of it
constexpr double kMinute = 60;
constexpr double kHour = 3600;

QString Counted(std::uint64_t count, const char* one, const char* many) {
    return QString::number(count) + QLatin1Char(' ') + QLatin1String(count == 1 ? one : many);
}

QString Size(std::uint64_t bytes) { return QString::fromStdString(ByteText(bytes)); }

double CostOf(const SaveWork& work) {
    return static_cast<double>(work.Bytes) + static_cast<double>(work.Files) * kFileCost;
}

QString RoughTime(double seconds) {
    const auto rounded = [seconds](double unit) {
        return static_cast<std::uint64_t>(std::llround(seconds / unit));
    };
    if (seconds < kMinute) {
        return QStringLiteral("less than a minute");
    }
    return seconds < 1.5 * kHour ? Counted(rounded(kMinute), "minute", "minutes")
                                 : Counted(rounded(kHour), "hour", "hours");
}

/// What went wrong, or was left, a phrase each.
QStringList Remainders(const SaveTotals& totals) {
    QStringList phrases;
    const auto add = [&phrases](std::uint64_t count, const char* text) {
        if (count != 0) {
            phrases.append(QString::number(count) + QLatin1String(text));
        }
    };
    add(totals.Damaged, " damaged");
    add(totals.Failed, " could not be saved");
    add(totals.Skipped, " skipped");
    add(totals.TypesLeftOut, " left out for their type");
    add(totals.StreamsLeft, " named streams left");
    return phrases;
}

} // namespace

void SaveProgress::Begin(const SaveWork& wanted) {
    wanted_ = wanted;
    since_.start();
}

QString SaveProgress::Text(const SaveWork& done) const {
    return QStringLiteral("%1 of %2, %3 of %4%5")
        .arg(done.Files)
        .arg(Counted(wanted_.Files, "file", "files"), Size(done.Bytes), Size(wanted_.Bytes), TimeLeft(done));
}

QString SaveProgress::TimeLeft(const SaveWork& done) const {
    const auto elapsed = static_cast<double>(since_.elapsed());
    if (elapsed < kMillisecondsToJudge || CostOf(done) <= 0) {
        return {};
    }
    constexpr double kSecond = 1000;
    const double left = elapsed / kSecond * (CostOf(wanted_) / CostOf(done) - 1);
    return QStringLiteral(", ") + RoughTime(left) + QStringLiteral(" left");
}

QString SaveSummary(const SaveTotals& totals) {
    QStringList phrases = Remainders(totals);
    phrases.prepend(QStringLiteral("Saved %1 (%2) in %3")
                        .arg(Counted(totals.Files, "file", "files"), Size(totals.Bytes),
                             Counted(totals.Folders, "folder", "folders")));
    return phrases.join(QStringLiteral("; "));
}

QString SaveEndText(const SaveTotals& totals) {
    QString text =
        totals.Stopped
            ? QStringLiteral("Saving data was stopped before its end.\n%1.").arg(SaveSummary(totals))
            : QStringLiteral("Saving data completed.");
    if (totals.Damaged + totals.Failed != 0) {
        text += QStringLiteral("\n\n%1 damaged, %2 could not be saved.\nThe process log names them.")
                    .arg(Counted(totals.Damaged, "file is", "files are"))
                    .arg(totals.Failed);
    }
    return text;
}

} // namespace thntfs
