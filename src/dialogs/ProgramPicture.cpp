#include "dialogs/ProgramPicture.h"

#include "shell/Icons.h"

#include <QCoreApplication>
#include <QPainter>

namespace thntfs {

namespace {

constexpr QRect kNameArea(20, 50, 230, 110);
constexpr QRect kVersionArea(20, 165, 230, 40);
constexpr int kNamePixels = 22;
constexpr int kVersionPixels = 13;

} // namespace

void PaintProgramPicture(QPainter& painter) {
    LoadIcon("splash").paint(&painter, QRect(QPoint(), kProgramPictureSize));
    painter.setPen(Qt::white);
    QFont font = painter.font();
    font.setPixelSize(kNamePixels);
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(kNameArea, Qt::AlignLeft | Qt::AlignBottom | Qt::TextWordWrap,
                     QCoreApplication::translate("ProgramPicture", "Tarnholt Volume Salvage (NTFS)"));
    font.setPixelSize(kVersionPixels);
    font.setBold(false);
    painter.setFont(font);
    painter.drawText(kVersionArea, Qt::AlignLeft | Qt::AlignTop,
                     QCoreApplication::translate("ProgramPicture", "Version 2.0.1"));
}

} // namespace thntfs
