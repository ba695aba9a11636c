#pragma once

#include <QStyledItemDelegate>

namespace thntfs {

/// Draws a folder of the tree: check mark, icon, name. The current folder is red on white, whatever the
/// palette says.
class FolderDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// Where the parts of an item stand that is drawn by this option.
    [[nodiscard]] QRect PartRect(QStyle::SubElement part, const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

} // namespace thntfs
