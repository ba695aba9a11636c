#include "wizard/RowTable.h"

#include <QHeaderView>
#include <algorithm>

namespace thntfs {

namespace {

constexpr int kColumnWidth = 100;
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
    header->setMinimumSectionSize(kColumnWidth);
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setStretchLastSection(true);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setHighlightSections(false);
}

void CRowTable::AddRow(const QStringList& texts, const QIcon& icon) {
    const int row = rowCount();
    insertRow(row);
    for (int column = 0; column < texts.size(); ++column) {
        setItem(row, column, new QTableWidgetItem(texts[column]));
    }
    item(row, 0)->setIcon(icon);
}

int CRowTable::SelectedRow() const {
    const auto rows = selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.last().row();
}

} // namespace thntfs
