#pragma once

#include <QStringList>
#include <QTableWidget>

namespace thntfs {

/// A list with columns and grid lines, of which whole rows are selected, one at a time.
class CRowTable : public QTableWidget {
public:
    CRowTable(QWidget* parent, const QStringList& titles);

    void AddRow(const QStringList& texts, const QIcon& icon = {}, bool canBeChosen = true);

    /// Position of the selected row, -1 for none.
    [[nodiscard]] int SelectedRow() const;

protected:
    [[nodiscard]] int sizeHintForColumn(int column) const override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    [[nodiscard]] int WidestColumn() const;
    [[nodiscard]] int TextHeight(const QString& text) const;
    [[nodiscard]] int FirstChoosableRow() const;
};

} // namespace thntfs
