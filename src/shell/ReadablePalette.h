#pragma once

class QPalette;

namespace thntfs {

/// A palette whose links and greyed texts are seen on its grounds, which those of many a dark desktop are
/// not. All else stays as it is.
QPalette ReadablePalette(QPalette palette);

} // namespace thntfs
