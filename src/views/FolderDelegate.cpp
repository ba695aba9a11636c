#include "views/FolderDelegate.h"

#include "views/FolderTreeModel.h"

#include <QApplication>
#include <QPainter>

namespace thntfs {

namespace {

const QColor kCurrentText(252, 12, 12);
constexpr int kDarkGround = 128; // lightness

QStyle* StyleOf(const QStyleOptionViewItem& option) {
    return option.widget == nullptr ? QApplication::style() : option.widget->style();
}

} // namespace

QRect FolderDelegate::PartRect(QStyle::SubElement part, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const {
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    return StyleOf(item)->subElementRect(part, &item, item.widget);
}

void FolderDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
    if (!index.data(FolderTreeModel::kCurrentRole).toBool()) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const QRect text = StyleOf(item)->subElementRect(QStyle::SE_ItemViewItemText, &item, item.widget);
    const bool focused = item.state.testFlag(QStyle::State_HasFocus);
    item.state &= ~(QStyle::State_Selected | QStyle::State_HasFocus);
    StyleOf(item)->drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);

    // Mark and icon keep the palette's colours.
    painter->save();
    painter->setClipRect(text, Qt::IntersectClip);
    painter->fillRect(text, Qt::white);
    item.palette.setColor(QPalette::Text, kCurrentText);
    StyleOf(item)->drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);
    if (focused) { // the style's own sign of it would tint the ground
        painter->setPen(item.palette.color(QPalette::Highlight));
        painter->drawRect(text.adjusted(0, 0, -1, -1));
    }
    painter->restore();
}

// Any folder can become bold, and the column is not measured again then.
QSize FolderDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QStyleOptionViewItem bold = option;
    bold.font.setBold(true);
    bold.fontMetrics = QFontMetrics(bold.font);
    return QStyledItemDelegate::sizeHint(bold, index);
}

void FolderDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    if (option->state.testFlag(QStyle::State_Selected)) {
        option->icon = index.data(FolderTreeModel::kOpenIconRole).value<QIcon>();
    }
    // The style draws the mark's box darker than the window, which nobody sees on a dark ground.
    if (option->palette.color(QPalette::Base).lightness() < kDarkGround) {
        option->palette.setColor(QPalette::Window, option->palette.color(QPalette::Text));
    }
}

} // namespace thntfs
