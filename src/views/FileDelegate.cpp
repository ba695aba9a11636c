#include "views/FileDelegate.h"

#include "views/FileListModel.h"

#include <QPainter>

namespace thntfs {

namespace {

const QColor kEvenRow(232, 232, 244);
const QColor kOddRow(255, 255, 255);
const QColor kRowText(0, 0, 0);
const QColor kFoundRow(251, 248, 191);
const QColor kFoundText(255, 0, 0);
const QColor kGridLine(208, 208, 216);
constexpr int kFoundTextHeight = 13;

QFont FoundFont(const QFont& usual) {
    QFont font = usual;
    font.setFamilies({QStringLiteral("Verdana"), QStringLiteral("DejaVu Sans"), usual.family()});
    font.setPixelSize(kFoundTextHeight);
    font.setWeight(QFont::Black);
    return font;
}

void SetColours(QStyleOptionViewItem& option, const QColor& background, const QColor& text) {
    option.backgroundBrush = background;
    option.palette.setColor(QPalette::Text, text);
}

} // namespace

QSize FileDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    return cell_.isValid() ? cell_ : QStyledItemDelegate::sizeHint(option, index);
}

void FileDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    QStyledItemDelegate::paint(painter, option, index);
    if (look_ == Look::Striped) {
        painter->setPen(kGridLine);
        painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
        painter->drawLine(option.rect.topRight(), option.rect.bottomRight());
    }
}

void FileDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    if (option->decorationPosition == QStyleOptionViewItem::Top) { // the name stands under the icon
        option->displayAlignment = Qt::AlignHCenter | Qt::AlignTop;
    }
    if (index.data(FileListModel::kFoundRole).toBool()) {
        SetColours(*option, kFoundRow, kFoundText);
        option->font = FoundFont(option->font);
        option->fontMetrics = QFontMetrics(option->font);
    } else if (look_ == Look::Striped) {
        SetColours(*option, index.row() % 2 == 0 ? kEvenRow : kOddRow, kRowText);
    }
}

} // namespace thntfs
