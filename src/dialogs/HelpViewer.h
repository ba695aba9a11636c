#pragma once

#include <QString>

namespace thntfs {

/// Opens the help window on a topic, such as "scans.htm"; one that doesn't exist, or an empty one, gives the
/// contents page. There is one window: where it is open already, it turns to the topic. It can be used while
/// a modal dialog is open if it was called from within that dialog, and outlives the dialog. Returns at once.
void ShowHelp(const QString& topic);

} // namespace thntfs
