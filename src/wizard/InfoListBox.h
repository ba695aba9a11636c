#pragma once

#include <QCoreApplication>
#include <QListWidget>
#include <QString>
#include <vector>

namespace thntfs {

/// A row of an info list. A text that begins with "HDR" makes a header of the row at the top.
struct InfoRow {
    QString Text;
    bool Bullet = false;
};
using InfoRows = std::vector<InfoRow>;

/// The rows of a text of PageTexts, one a line. "* " before a line gives it the bullet.
InfoRows RowsOf(const char* text);

inline constexpr int kInfoRowHeight = 18;
inline constexpr QSize kInfoBulletSize{16, 16};
inline constexpr QColor kInfoTextColour{0x14, 0x14, 0x14};

/// The box beside the choices of a page that explains them, or tells what has been chosen. Its colours are
/// its own, whatever those of the desktop.
class CInfoListBox : public QListWidget {
    Q_DECLARE_TR_FUNCTIONS(CInfoListBox)

public:
    explicit CInfoListBox(QWidget* parent, const QColor& textColour = kInfoTextColour,
                          const QSize& bulletSize = kInfoBulletSize);

    /// Replaces what is shown. Heights are in pixels; a row gets more where the font needs it.
    void ShowRows(const InfoRows& rows, int headerHeight = kInfoRowHeight, int rowHeight = kInfoRowHeight);

    [[nodiscard]] QSize sizeHint() const override;
};

} // namespace thntfs
