#include "frame/SaveTexts.h"

#include "platform/system/SizeText.h"

#include <QCoreApplication>
#include <QStringList>

namespace thntfs {

namespace {

constexpr double kFileCost = 16384; // a file costs about as much as that many bytes of it

QString Counted(std::uint64_t count, const QString& one, const QString& many) {
    return (count == 1 ? one : many).arg(count);
}

QString FilesText(std::uint64_t count) {
    return Counted(count, QCoreApplication::translate("SaveTexts", "%1 file"),
                   QCoreApplication::translate("SaveTexts", "%1 files"));
}

QString Size(std::uint64_t bytes) { return QString::fromStdString(ByteText(bytes)); }

double CostOf(const SaveWork& work) {
    return static_cast<double>(work.Bytes) + static_cast<double>(work.Files) * kFileCost;
}

/// What went wrong, or was left, a phrase each.
QStringList Remainders(const SaveTotals& totals) {
    QStringList phrases;
    const auto add = [&phrases](std::uint64_t count, const QString& text) {
        if (count != 0) {
            phrases.append(text.arg(count));
        }
    };
    add(totals.Damaged, QCoreApplication::translate("SaveTexts", "%1 damaged"));
    add(totals.Failed, QCoreApplication::translate("SaveTexts", "%1 could not be saved"));
    add(totals.Skipped, QCoreApplication::translate("SaveTexts", "%1 skipped"));
    add(totals.TypesLeftOut, QCoreApplication::translate("SaveTexts", "%1 left out for their type"));
    add(totals.StreamsLeft, QCoreApplication::translate("SaveTexts", "%1 named streams left"));
    return phrases;
}

} // namespace

WorkDone SaveProgress::Of(const SaveWork& done) const {
    return {CostOf(done), CostOf(wanted_),
            tr("%1 of %2, %3 of %4")
                .arg(done.Files)
                .arg(FilesText(wanted_.Files), Size(done.Bytes), Size(wanted_.Bytes))};
}

QString SaveSummary(const SaveTotals& totals) {
    QStringList phrases = Remainders(totals);
    phrases.prepend(QCoreApplication::translate("SaveTexts", "Saved %1 (%2) in %3")
                        .arg(FilesText(totals.Files), Size(totals.Bytes),
                             Counted(totals.Folders, QCoreApplication::translate("SaveTexts", "%1 folder"),
                                     QCoreApplication::translate("SaveTexts", "%1 folders"))));
    return phrases.join(QStringLiteral("; "));
}

QString SaveEndText(const SaveTotals& totals) {
    QString text =
        totals.Stopped
            ? QCoreApplication::translate("SaveTexts", "Saving data was stopped before its end.\n%1.")
                  .arg(SaveSummary(totals))
            : QCoreApplication::translate("SaveTexts", "Saving data completed.");
    if (totals.Damaged + totals.Failed != 0) {
        text += QCoreApplication::translate(
                    "SaveTexts", "\n\n%1 damaged, %2 could not be saved.\nThe process log names them.")
                    .arg(Counted(totals.Damaged, QCoreApplication::translate("SaveTexts", "%1 file is"),
                                 QCoreApplication::translate("SaveTexts", "%1 files are")))
                    .arg(totals.Failed);
    }
    return text;
}

} // namespace thntfs
