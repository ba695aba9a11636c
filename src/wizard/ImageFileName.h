#pragma once

#include <QDate>
#include <QString>

namespace thntfs {

/// The name that is suggested for an image made on a day.
QString ImageFileName(const QDate& day);

} // namespace thntfs
