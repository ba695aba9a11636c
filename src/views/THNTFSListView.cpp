#include "views/THNTFSListView.h"

#include "catalogue/CatalogueReader.h"
#include "platform/system/Text.h"
#include "shell/DlgWait.h"
#include "shell/ShownName.h"
#include "shell/WindowMessages.h"
#include "views/ContextMenu.h"
#include "views/DetailsView.h"
#include "views/IconView.h"
#include "views/THNTFSTreeView.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QScrollBar>
#include <algorithm>
#include <map>

namespace thntfs {

namespace {

SortKind KindOf(int column, bool again) {
    switch (column) {
    case FileListModel::kSize:
    case FileListModel::kParentId:
    case FileListModel::kCondition:
        return again ? SortKind::DecimalNumber : SortKind::WholeNumber;
    case FileListModel::kAccessed:
    case FileListModel::kCreated:
        return SortKind::Date;
    default:
        return SortKind::Text;
    }
}

CIconView::Look LookOf(std::uint32_t commandId) {
    switch (commandId) {
    case CTHNTFSListView::kLargeIcons:
        return CIconView::Look::Large;
    case CTHNTFSListView::kSmallIcons:
        return CIconView::Look::Small;
    default:
        return CIconView::Look::List;
    }
}

} // namespace

CTHNTFSListView::CTHNTFSListView(QWidget* parent)
    : QStackedWidget(parent)
    , model_(new FileListModel(this))
    , details_(new CDetailsView(*this, model_, this))
    , icons_(new CIconView(*this, this)) {
    for (QAbstractItemView* view : std::initializer_list<QAbstractItemView*>{details_, icons_}) {
        view->setAccessibleName(tr("Content of the folder"));
        addWidget(view);
    }
    SetViewMode(kDetails);
    details_->header()->setSortIndicator(sortColumn_, Qt::AscendingOrder);
    connect(details_->header(), &QHeaderView::sectionClicked, this,
            [this](int column) { HeaderClicked(column); });
}

void CTHNTFSListView::SetTreeView(CTHNTFSTreeView* treeView) {
    treeView_ = treeView;
    model_->SetFolderText([treeView](std::uint32_t folderId) { return treeView->PathOf(folderId); });
    UpdateEmptyText();
}

QAbstractItemView* CTHNTFSListView::View() const { return static_cast<QAbstractItemView*>(currentWidget()); }

void CTHNTFSListView::Clear() {
    SetRows({});
    TellChanged();
}

void CTHNTFSListView::ShowHits(FileRows rows, const QString& title) {
    SetRows(std::move(rows), title);
    GoToTop();
    TellChanged();
}

void CTHNTFSListView::SetRows(FileRows rows, const QString& hitsTitle) {
    filledFolder_.reset();
    shownFolder_.reset();
    hitsTitle_ = hitsTitle;
    model_->SetRows(std::move(rows));
    details_->ShowFolders(ShowsHits());
}

void CTHNTFSListView::TellChanged() {
    UpdateEmptyText();
    if (changed_) {
        changed_();
    }
}

void CTHNTFSListView::Narrow(RowFilter filter) {
    QItemSelectionModel& selection = *details_->selectionModel();
    const QModelIndex current = selection.currentIndex();
    const std::size_t place = current.isValid() ? model_->PlaceAt(current.row()) : ~std::size_t{0};
    std::vector<std::uint32_t> selected;
    for (const int row : SelectedRows()) {
        selected.push_back(static_cast<std::uint32_t>(model_->PlaceAt(row)));
    }
    model_->SetFilter(std::move(filter));
    selection.select(SelectionOf(model_->RowsAt(selected)), QItemSelectionModel::Select);
    const int row = model_->RowAt(place);
    if (row >= 0) {
        selection.setCurrentIndex(model_->index(row, 0), QItemSelectionModel::NoUpdate);
        View()->scrollTo(model_->index(row, 0));
    }
    TellChanged();
}

// Of rising rows. A selection that would fall into very many pieces is given up: the view looks at each piece
// for every cell that it paints.
QItemSelection CTHNTFSListView::SelectionOf(const std::vector<int>& rows) const {
    constexpr qsizetype kMostPieces = 5000;
    QItemSelection pieces;
    for (std::size_t first = 0, next = 1; first < rows.size(); first = next++) {
        while (next < rows.size() && rows[next] == rows[next - 1] + 1) {
            ++next;
        }
        if (pieces.size() == kMostPieces) {
            return {};
        }
        pieces.append(
            {model_->index(rows[first], 0), model_->index(rows[next - 1], FileListModel::kColumns - 1)});
    }
    return pieces;
}

void CTHNTFSListView::UpdateEmptyText() {
    const QString text = TextForNoRows();
    if (text != emptyText_) {
        emptyText_ = text;
        details_->setAccessibleDescription(text);
        icons_->setAccessibleDescription(text);
        View()->viewport()->update();
    }
}

QString CTHNTFSListView::TextForNoRows() const {
    if (!IsEmpty() || ViewsBusy() || treeView_ == nullptr) {
        return {};
    }
    if (CountOfAll() > 0) {
        return tr("Nothing here fits the filter.");
    }
    return treeView_->IsEmpty() ? tr("Press Ctrl+W to choose a disk or an image, or drop an image file here.")
                                : QString();
}

void CTHNTFSListView::GoToTop() {
    details_->selectionModel()->clear();
    details_->verticalScrollBar()->setValue(0);
    icons_->verticalScrollBar()->setValue(0);
    icons_->horizontalScrollBar()->setValue(0);
}

void CTHNTFSListView::SortList(int column, bool ascending, SortKind kind) {
    filledFolder_.reset();
    sortColumn_ = column;
    sortAscending_ = ascending;
    model_->Sort(column, ascending, kind);
    details_->header()->setSortIndicator(column, ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
}

// The header has turned its arrow by itself before it tells; SortList puts it right.
void CTHNTFSListView::HeaderClicked(int column) {
    if (IsEmpty()) {
        details_->header()->setSortIndicator(sortColumn_,
                                             sortAscending_ ? Qt::AscendingOrder : Qt::DescendingOrder);
        return;
    }
    const bool again = column == sortColumn_;
    SortList(column, again ? !sortAscending_ : sortAscending_, KindOf(column, again));
}

void CTHNTFSListView::SetViewMode(std::uint32_t commandId) {
    const bool hadFocus = View()->hasFocus();
    const bool icons = commandId >= kLargeIcons && commandId < kDetails;
    if (icons) {
        icons_->SetLook(LookOf(commandId));
    }
    icons_->Follow(icons ? details_ : nullptr);
    setCurrentWidget(icons ? static_cast<QWidget*>(icons_) : details_);
    setFocusProxy(View());
    if (hadFocus) {
        View()->setFocus();
    }
}

void CTHNTFSListView::SetFoundEntry(std::uint32_t entryId) {
    model_->SetFoundEntry(entryId);
    if (model_->Hides(entryId)) {
        Narrow({}); // what was looked for is to be seen
    }
    const int row = model_->RowOf(entryId);
    if (row >= 0) {
        View()->scrollTo(model_->index(row, 0));
    }
    View()->viewport()->update();
}

std::intptr_t CTHNTFSListView::OnMessage(std::uint32_t message, std::uintptr_t wParam,
                                         std::uintptr_t /*lParam*/) {
    if (message == WM_LIST_SHOW_FOLDER) {
        ShowFolder(WM_LIST_SHOW_FOLDER.First(wParam));
    }
    return 0;
}

void CTHNTFSListView::ShowFolder(std::uint32_t entryId) {
    SetRows({});
    try {
        ReadRows(entryId);
    } catch (const CUserException&) {
        // The box has told why; the list stays empty.
    }
    TellChanged();
}

void CTHNTFSListView::ReadRows(std::uint32_t entryId) {
    const auto folder = LoadEntry(entryId);
    if (folder == nullptr) {
        return;
    }
    CDlgWait wait(this);
    SetRows(ListRows(folder->BlockOffset,
                     [&wait](std::size_t done, std::size_t total) { wait.Waiting(done, total); }));
    GoToTop();
    filledFolder_ = entryId;
    shownFolder_ = entryId;
}

void CTHNTFSListView::GoDown(std::uint32_t entryId) {
    const bool fromHits = ShowsHits();
    ShowFolder(entryId);
    if (fromHits) {
        WM_TREE_SELECT_FOLDER.Send(treeView_, entryId);
    } else {
        WM_TREE_SELECT_CHILD.Send(treeView_, entryId);
    }
}

void CTHNTFSListView::DoubleClicked(const QModelIndex& index) {
    if (index.isValid() && model_->Row(index.row()).Folder) {
        GoDown(model_->Row(index.row()).EntryId);
    }
}

void CTHNTFSListView::RightClicked(const QModelIndex& index, const QPoint& at) {
    if (index.isValid()) {
        OpenMenu(index.row(), at);
    }
}

bool CTHNTFSListView::KeyPressed(int key) {
    const bool enter = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (!enter && key != Qt::Key_Menu) {
        return false;
    }
    const std::vector<int> selected = SelectedRows();
    if (ViewsBusy() || selected.empty()) {
        return true;
    }
    const QModelIndex index = model_->index(selected.back(), 0);
    if (enter) {
        DoubleClicked(index);
    } else {
        View()->scrollTo(index);
        OpenMenu(index.row(), View()->viewport()->mapToGlobal(View()->visualRect(index).bottomLeft()));
    }
    return true;
}

bool CTHNTFSListView::LeaveByTab(bool next) {
    if (!next && !backTabTarget_.isNull()) {
        backTabTarget_->setFocus(Qt::BacktabFocusReason);
        return true;
    }
    if (treeView_ == nullptr) {
        return false;
    }
    treeView_->setFocus(Qt::TabFocusReason);
    return true;
}

std::vector<int> CTHNTFSListView::SelectedRows() const {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : details_->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.push_back(row);
        }
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

void CTHNTFSListView::OpenMenu(int row, const QPoint& at) {
    const FileRow& hit = model_->Row(row);
    const bool one = SelectedRows().size() <= 1;
    ContextMenuChoice choice;
    choice.Preview = one && !hit.Folder && !PreviewWindowOpen();
    choice.Search = one && hit.Folder;
    choice.Properties = one;
    OpenContextMenu(this, at, choice, hit.EntryId, [this] { SaveSelected(); },
                    {{tr("&Copy Names") + QStringLiteral("\tCtrl+C"), [this] { CopyNames(); }},
                     {tr("C&opy Paths") + QStringLiteral("\tCtrl+Shift+C"), [this] { CopyPaths(); }}});
}

bool CTHNTFSListView::HasSelection() const { return details_->selectionModel()->hasSelection(); }

void CTHNTFSListView::CopyNames() const {
    CopyRows([this](int row) { return ShownName(model_->Name(row)); });
}

void CTHNTFSListView::CopyPaths() const {
    CopyRows([this](int row) { return PathOfRow(row); });
}

QString CTHNTFSListView::PathOfRow(int row) const {
    const FileRow& entry = model_->Row(row);
    if (entry.EntryId == kRootEntryId) {
        return QStringLiteral("/");
    }
    std::u16string path = treeView_->PathBefore(shownFolder_.value_or(entry.FolderId));
    return ShownName(path += model_->Name(row));
}

void CTHNTFSListView::CopyRows(const std::function<QString(int row)>& text) const {
    QString lines;
    for (const int row : SelectedRows()) {
        (lines += text(row)) += QLatin1Char('\n');
    }
    if (!lines.isEmpty()) {
        QApplication::clipboard()->setText(lines.chopped(1));
    }
}

CTHNTFSListView::ShownRows CTHNTFSListView::RowsShown() const {
    ShownRows shown;
    std::map<std::uint32_t, std::uint32_t> placeOf;
    for (int row = 0; row < RowCount(); ++row) {
        const FileRow& entry = model_->Row(row);
        const std::uint32_t folder = shownFolder_.value_or(entry.FolderId);
        const auto [known, fresh] =
            placeOf.try_emplace(folder, static_cast<std::uint32_t>(shown.FolderPaths.size()));
        if (fresh) {
            shown.FolderPaths.push_back(NarrowText(treeView_->PathBefore(folder)));
        }
        shown.EntryIds.push_back(entry.EntryId);
        shown.FolderOf.push_back(known->second);
    }
    return shown;
}

void CTHNTFSListView::SaveSelected() const {
    Engine.MarkedEntries.clear();
    for (const int row : SelectedRows()) {
        Engine.MarkedEntries.push_back(model_->Row(row).EntryId);
    }
    WM_SAVE_REQUEST.Send(MainWindow(), 0);
}

} // namespace thntfs
