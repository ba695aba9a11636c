#pragma once

class QWidget;

namespace thntfs {

/// Whether the user wants a tip at each start of the program; yes until he says otherwise.
bool TipsWantedAtStart();

/// Shows the tip whose turn it is, of the file of tips, which is made where it is missing. Returns when the
/// user has closed the dialog.
void ShowTipOfTheDay(QWidget* owner);

} // namespace thntfs
