#pragma once

#include <QStyledItemDelegate>

namespace thntfs {

/// Draws an entry of the list. The entry that Find has picked out stands apart in every view; rows with
/// stripes have backgrounds of their own and the lines of a grid, and on these text that is dark whatever
/// the palette says.
class FileDelegate : public QStyledItemDelegate {
public:
    enum class Look { Plain, Striped };

    FileDelegate(Look look, QObject* parent)
        : QStyledItemDelegate(parent)
        , look_(look) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    Look look_;
};

} // namespace thntfs
