#pragma once

class QWidget;

namespace thntfs {

/// Shows the picture with the program's name and version until it is clicked, or Escape is pressed.
void ShowAboutBox(QWidget* owner);

} // namespace thntfs
