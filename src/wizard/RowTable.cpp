#include "wizard/RowTable.h"

#include "shell/TipText.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <algorithm>
#include <array>

namespace thntfs {

namespace {

constexpr int kNarrowestName = 100;
constexpr int kWidestColumn = 27; // in letters
constexpr QSize kIconSize{16, 16};
constexpr int kRowMargin = 4;

} // namespace

CRowTable::CRowTable(QWidget* parent, const QStringList& titles)
    : QTableWidget(0, static_cast<int>(titles.size()), parent) {
    setHorizontalHeaderLabels(titles);
    setEditTriggers(NoEditTriggers);
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setTabKeyNavigation(false);
    setIconSize(kIconSize);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(std::max(fontMetrics().height(), kIconSize.height()) +
                                            kRowMargin);
    QHeaderView* header = horizontalHeader();
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setStretchLastSection(true);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setHighlightSections(false);
}

void CRowTable::AddRow(const QStringList& texts, const QIcon& icon, bool canBeChosen) {
    const int row = rowCount();
    insertRow(row);
    for (int column = 0; column < texts.size(); ++column) {
        auto* cell = new QTableWidgetItem(texts[column]);
        if (fontMetrics().horizontalAdvance(texts[column]) > WidestColumn() - 2 * kIconSize.width()) {
            cell->setToolTip(TipText(texts[column]));
        }
        cell->setFlags(canBeChosen ? cell->flags() : Qt::NoItemFlags);
        setItem(row, column, cell);
        setRowHeight(row, std::max(rowHeight(row), TextHeight(texts[column]) + kRowMargin));
    }
    item(row, 0)->setIcon(icon);
}

int CRowTable::WidestColumn() const { return kWidestColumn * fontMetrics().averageCharWidth(); }

// In the widest column, beside an icon, what is longer goes on in a further line.
int CRowTable::TextHeight(const QString& text) const {
    const QRect room(0, 0, WidestColumn() - 2 * kIconSize.width(), 0);
    return fontMetrics().boundingRect(room, Qt::TextWordWrap, text).height();
}

int CRowTable::sizeHintForColumn(int column) const {
    const int least = column == 0 ? kNarrowestName : 0;
    return std::clamp(QTableWidget::sizeHintForColumn(column), least, WidestColumn());
}

// With the focus the base class makes the first row the current one without selecting it. A key would step
// over it, or stay on it and select nothing.
void CRowTable::keyPressEvent(QKeyEvent* event) {
    constexpr std::array kKeys{Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Home};
    if (SelectedRow() < 0 && std::find(kKeys.begin(), kKeys.end(), event->key()) != kKeys.end()) {
        selectRow(FirstChoosableRow());
    } else {
        QTableWidget::keyPressEvent(event);
    }
}

int CRowTable::FirstChoosableRow() const {
    int row = 0;
    while (row + 1 < rowCount() && (item(row, 0)->flags() & Qt::ItemIsEnabled) == 0) {
        ++row;
    }
    return row;
}

int CRowTable::SelectedRow() const {
    const auto rows = selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.last().row();
}

} // namespace thntfs
