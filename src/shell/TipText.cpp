#include "shell/TipText.h"

namespace thntfs {

QString TipText(QString text) {
    constexpr qsizetype kLine = 80;
    for (qsizetype end = kLine; end < text.size(); end += kLine + 1) {
        text.insert(end, QLatin1Char('\n'));
    }
    return QStringLiteral("<p style='white-space:pre'>") + text.toHtmlEscaped() + QStringLiteral("</p>");
}

} // namespace thntfs
