#include "wizard/CopyNotBuilt.h"

#include "shell/Boxes.h"

namespace thntfs {

namespace {

// As a shell takes it for one word.
QString Quoted(const std::string& word) {
    QString inner = QString::fromStdString(word);
    inner.replace(QLatin1Char('\''), QLatin1String("'\\''"));
    return QLatin1Char('\'') + inner + QLatin1Char('\'');
}

} // namespace

void TellCopyNotBuilt(const char* work, const std::vector<std::string>& words) {
    QString line = QStringLiteral("./run ") + QString::fromStdString(words.front());
    for (std::size_t i = 1; i < words.size(); ++i) {
        line += QLatin1Char(' ') + Quoted(words[i]);
    }
    ShowBox(
        QString::fromLatin1(work) +
            QStringLiteral(" is not built into the desktop program yet; the terminal program does it:\n\n") +
            line,
        QStringLiteral("Information"), BoxIcon::Information);
}

} // namespace thntfs
