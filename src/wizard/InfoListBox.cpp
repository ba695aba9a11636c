#include "wizard/InfoListBox.h"

#include "shell/Icons.h"

#include <QCoreApplication>
#include <QPainter>
#include <QStyle>
#include <QStyledItemDelegate>

namespace thntfs {

namespace {

constexpr QColor kBackground{0xF0, 0xF0, 0xF0};
constexpr int kBulletRole = Qt::UserRole;
constexpr int kBulletLeft = 5;
constexpr int kTextBehindBullet = 10;
constexpr int kHeaderLength = 3; // of "HDR"
constexpr int kWidestRow = 34;   // in letters of middling width
constexpr int kRowsShown = 19;

bool IsHeader(const QString& text) { return text.startsWith(QLatin1String("HDR")); }

void DrawRaisedEdge(QPainter& painter, const QRect& edge) {
    painter.setPen(Qt::white);
    painter.drawLine(edge.topLeft(), edge.topRight());
    painter.drawLine(edge.topLeft(), edge.bottomLeft());
    painter.setPen(Qt::black);
    painter.drawLine(edge.bottomLeft(), edge.bottomRight());
    painter.drawLine(edge.topRight(), edge.bottomRight());
}

class RowPainter : public QStyledItemDelegate {
public:
    RowPainter(QObject* parent, const QSize& bulletSize)
        : QStyledItemDelegate(parent)
        , bulletSize_(bulletSize)
        , bullet_(LoadIcon("bullet")) {}

    // Scrolled away from the top a header is no header any more.
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const QString text = index.data().toString();
        painter->save();
        painter->setFont(option.font);
        if (IsHeader(text) && option.rect.top() == 0) {
            PaintHeader(*painter, option, text.mid(kHeaderLength));
        } else {
            PaintRow(*painter, option, index, text);
        }
        painter->restore();
    }

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override {
        const QFontMetrics metrics(option.font);
        const int height = index.data(Qt::SizeHintRole).toSize().height();
        return {TextLeft() + metrics.horizontalAdvance(index.data().toString()) + kTextBehindBullet,
                std::max(height, metrics.height() + 1)};
    }

private:
    [[nodiscard]] int TextLeft() const { return bulletSize_.width() + kTextBehindBullet; }

    void PaintHeader(QPainter& painter, const QStyleOptionViewItem& option, const QString& text) const {
        painter.fillRect(option.rect, option.palette.highlight());
        DrawRaisedEdge(painter, option.rect);
        painter.setPen(Qt::white);
        painter.drawText(option.rect.adjusted(bulletSize_.width() + 1, 0, 0, 0), Qt::AlignVCenter, text);
    }

    void PaintRow(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                  const QString& text) const {
        if (index.data(kBulletRole).toBool()) {
            const int top = option.rect.top() + (option.rect.height() - bulletSize_.height()) / 2;
            bullet_.paint(&painter, QRect({kBulletLeft, top}, bulletSize_));
        }
        painter.setPen(option.palette.color(QPalette::Text));
        painter.drawText(option.rect.adjusted(TextLeft(), 0, 0, 0), Qt::AlignVCenter, text);
    }

    QSize bulletSize_;
    QIcon bullet_;
};

QFont RowFont(QFont font) {
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 10 / 11);
    return font;
}

QPalette RowPalette(QPalette palette, const QColor& textColour) {
    palette.setColor(QPalette::Base, kBackground);
    palette.setColor(QPalette::Text, textColour);
    return palette;
}

} // namespace

InfoRows RowsOf(const char* text) {
    InfoRows rows;
    const QStringList lines = QCoreApplication::translate("PageTexts", text).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        const bool bullet = line.startsWith(QLatin1String("* "));
        rows.push_back({bullet ? line.mid(2) : line, bullet});
    }
    return rows;
}

CInfoListBox::CInfoListBox(QWidget* parent, const QColor& textColour, const QSize& bulletSize)
    : QListWidget(parent) {
    setAccessibleName(tr("Explanation"));
    setFont(RowFont(font()));
    setPalette(RowPalette(palette(), textColour));
    setItemDelegate(new RowPainter(this, bulletSize));
    setSelectionMode(NoSelection);
    setVerticalScrollMode(ScrollPerItem);
    setMinimumWidth(kWidestRow * fontMetrics().horizontalAdvance(QLatin1Char('n')) +
                    style()->pixelMetric(QStyle::PM_ScrollBarExtent));
}

void CInfoListBox::ShowRows(const InfoRows& rows, int headerHeight, int rowHeight) {
    clear();
    for (const InfoRow& row : rows) {
        auto* item = new QListWidgetItem(row.Text, this);
        item->setData(kBulletRole, row.Bullet);
        item->setData(Qt::AccessibleTextRole, IsHeader(row.Text) ? row.Text.mid(kHeaderLength) : row.Text);
        item->setSizeHint({0, row.Bullet || !IsHeader(row.Text) ? rowHeight : headerHeight});
    }
}

QSize CInfoListBox::sizeHint() const {
    const int rowHeight = std::max(kInfoRowHeight, fontMetrics().height() + 1);
    return {minimumWidth(), kRowsShown * rowHeight + 2 * frameWidth()};
}

} // namespace thntfs
