#include "shell/ColorLabel.h"

#include <QPalette>

namespace thntfs {

CColorLabel::CColorLabel(const QString& text, QWidget* parent)
    : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setText(text);
    setAutoFillBackground(true);
}

void CColorLabel::SetTextColour(const QColor& colour) {
    QPalette colours = palette();
    colours.setColor(foregroundRole(), colour);
    setPalette(colours);
}

void CColorLabel::SetBackColour(const QColor& colour) {
    QPalette colours = palette();
    colours.setColor(backgroundRole(), colour);
    setPalette(colours);
}

void CColorLabel::SetBold(bool bold) {
    QFont changed = font();
    changed.setBold(bold);
    setFont(changed);
}

void CColorLabel::SetFont(const QFont& font) { setFont(font); }

} // namespace thntfs
