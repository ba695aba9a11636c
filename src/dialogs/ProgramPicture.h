#pragma once

#include <QSize>

class QPainter;

namespace thntfs {

/// The program's picture with its name and version, as the splash and the about box show it.
inline constexpr QSize kProgramPictureSize{480, 280};

/// Paints it at the origin.
void PaintProgramPicture(QPainter& painter);

} // namespace thntfs
