#pragma once

#include <QString>

namespace thntfs {

/// A text as the title of a window: the toolkit takes out the first sign for a changed document, but twice
/// in a row it stands for itself.
inline QString LiteralTitle(QString text) {
    return text.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}

} // namespace thntfs
