#pragma once

#include <string>

class QWidget;

namespace thntfs::test {

/// What somebody without a mouse, without sight or with a small screen would miss in a window that stands on
/// the screen: controls that have no name or can't be reached, a Tab order that jumps, keys that two lines
/// share, texts that are cut, a window that is too large. A line each; empty where all is well.
std::string WindowFaults(const QWidget& window);

} // namespace thntfs::test
