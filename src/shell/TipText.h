#pragma once

#include <QString>

namespace thntfs {

/// A text of one line as a tool tip that shows it whole, in several lines where it is long. As it stands, a
/// tip would take some texts for markup.
QString TipText(QString text);

} // namespace thntfs
