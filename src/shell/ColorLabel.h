#pragma once

#include <QColor>
#include <QFont>
#include <QLabel>
#include <QString>

namespace thntfs {

/// A label that takes colours and fonts of its own. Its text is shown as it is, never as markup.
class CColorLabel : public QLabel {
public:
    explicit CColorLabel(const QString& text = {}, QWidget* parent = nullptr);

    void SetTextColour(const QColor& colour);
    /// Fills the label; at first it has the colour of the window around it.
    void SetBackColour(const QColor& colour);
    void SetBold(bool bold);
    /// Replaces the whole font, boldness included.
    void SetFont(const QFont& font);
};

} // namespace thntfs
