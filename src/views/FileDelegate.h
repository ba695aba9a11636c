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

    /// The size of every entry from now on, whatever its text; without one it is what the text needs.
    void SetCell(const QSize& cell) { cell_ = cell; }

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    Look look_;
    QSize cell_;
};

} // namespace thntfs
