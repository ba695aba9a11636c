#include "wizard/CopyNotBuilt.h"

#include "shell/Boxes.h"

namespace thntfs {

namespace {

// As a shell takes it for one word.
QString Quoted(const QString& word) {
    QString inner = word;
    inner.replace(QLatin1Char('\''), QLatin1String("'\\''"));
    return QLatin1Char('\'') + inner + QLatin1Char('\'');
}

} // namespace

void TellCopyNotBuilt(const QString& work, const QStringList& words) {
    QString line = QStringLiteral("./run %1").arg(words.first());
    for (qsizetype i = 1; i < words.size(); ++i) {
        line += QLatin1Char(' ') + Quoted(words[i]);
    }
    ShowBox(
        work +
            QStringLiteral(" is not built into the desktop program yet; the terminal program does it:\n\n") +
            line,
        QStringLiteral("Information"), BoxIcon::Information);
}

} // namespace thntfs
