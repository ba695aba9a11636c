#include "shell/ProcessLogList.h"

#include "shell/Boxes.h"
#include "shell/WindowMessages.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QStringList>
#include <QUrl>
#include <algorithm>

namespace thntfs {

namespace {

constexpr int kNameWidth = 265;
constexpr int kDescriptionWidth = 299;
constexpr int kTimeWidth = 576;
constexpr int kTextsWidth = kNameWidth + kDescriptionWidth;
constexpr int kAllWidth = kTextsWidth + kTimeWidth;
constexpr int kIconSize = 16;

/// Width of the time column in a list of a width. The columns share more room than they need by their widths;
/// where there is less, the time gives way first, down to what its text needs.
int TimeColumnWidth(int available, int timeText) {
    return std::max(timeText, std::min(available * kTimeWidth / kAllWidth, available - kTextsWidth));
}

} // namespace

CProcessLogList::CProcessLogList(QWidget* parent)
    : QTreeView(parent) {
    setAccessibleName(tr("Process log"));
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setIconSize({kIconSize, kIconSize});
    setModel(&model_);
    SetUpHeader();
    connect(this, &QAbstractItemView::doubleClicked, this,
            [this](const QModelIndex& row) { OpenFolderOf(row); });
    // Connected behind the view's own handling of new rows, so it has counted them.
    connect(&model_, &QAbstractItemModel::rowsInserted, this, [this] { scrollToBottom(); });
}

void CProcessLogList::SetUpHeader() {
    header()->setSectionsMovable(false);
    header()->setStretchLastSection(true);
    header()->resizeSection(0, kNameWidth);
    header()->resizeSection(1, kDescriptionWidth);
    connect(header(), &QHeaderView::sectionResized, this, [this](int column) {
        if (column < 2 && !fitting_) {
            sizedByUser_ = true;
        }
    });
}

std::intptr_t CProcessLogList::OnMessage(std::uint32_t message, std::uintptr_t wParam,
                                         std::uintptr_t /*lParam*/) {
    if (message == WM_LOG_ADD) {
        model_.Add(WM_LOG_ADD.First(wParam));
    }
    return 0;
}

void CProcessLogList::resizeEvent(QResizeEvent* event) {
    QTreeView::resizeEvent(event);
    if (!sizedByUser_) {
        FitColumns();
    }
}

// The last column takes what the others leave.
void CProcessLogList::FitColumns() {
    const QScopedValueRollback<bool> fitting(fitting_, true);
    const int available = viewport()->width();
    const int timeText = fontMetrics().horizontalAdvance(QStringLiteral("Wed Mmm 00 0000 00:00:00 "));
    const int texts = std::max(0, available - TimeColumnWidth(available, timeText));
    const int name = texts * kNameWidth / kTextsWidth;
    header()->resizeSection(0, name);
    header()->resizeSection(1, texts - name);
}

void CProcessLogList::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) {
        CopySelection();
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        OpenFolderOf(currentIndex());
    } else {
        QTreeView::keyPressEvent(event);
    }
}

bool CProcessLogList::focusNextPrevChild(bool next) {
    if (!next || tabTarget_.isNull()) {
        return QTreeView::focusNextPrevChild(next);
    }
    tabTarget_->setFocus(Qt::TabFocusReason);
    return true;
}

void CProcessLogList::OpenFolderOf(const QModelIndex& row) const {
    const QString folder = row.data(LogModel::kOpensRole).toString();
    if (!folder.isEmpty() && !QDesktopServices::openUrl(QUrl::fromLocalFile(folder))) {
        ShowBox(tr("%1\ncan't be opened from here.").arg(folder), tr("Error"), BoxIcon::Stop);
    }
}

void CProcessLogList::CopySelection() const {
    QModelIndexList rows = selectionModel()->selectedRows();
    if (rows.isEmpty()) {
        return;
    }
    std::sort(rows.begin(), rows.end());
    QStringList lines;
    for (const QModelIndex& row : std::as_const(rows)) {
        lines.append(model_.RowText(row.row()));
    }
    QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}

} // namespace thntfs
