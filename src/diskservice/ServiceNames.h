#pragma once

#include <QString>

namespace thntfs {

inline const QString kServiceName = QStringLiteral("org.freedesktop.UDisks2");
inline const QString kServicePath = QStringLiteral("/org/freedesktop/UDisks2");

} // namespace thntfs
