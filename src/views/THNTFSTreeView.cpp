#include "views/THNTFSTreeView.h"

#include "engine/EngineState.h"
#include "shell/DesktopState.h"
#include "shell/ShownName.h"
#include "shell/WindowMessages.h"
#include "views/ContextMenu.h"
#include "views/FolderDelegate.h"
#include "views/FolderTreeModel.h"
#include "views/THNTFSListView.h"
#include "views/ViewsBusy.h"

#include <QAccessible>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <utility>

namespace thntfs {

namespace {

constexpr int kTreeIconPixels = 16;

} // namespace

CTHNTFSTreeView::CTHNTFSTreeView(QWidget* parent)
    : QTreeView(parent)
    , model_(new FolderTreeModel(this))
    , delegate_(new FolderDelegate(this)) {
    setModel(model_);
    setItemDelegate(delegate_);
    SetUpLook();
}

void CTHNTFSTreeView::SetUpLook() {
    setAccessibleName(tr("Folders"));
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    setSelectionBehavior(SelectItems);
    setIconSize({kTreeIconPixels, kTreeIconPixels});
    setContextMenuPolicy(Qt::PreventContextMenu);
    header()->setStretchLastSection(false);
    FitColumn();
}

// As wide as the names. Measuring takes long, and many changes may come before anybody sees one: the header's
// own way measures at each.
void CTHNTFSTreeView::FitColumn() {
    fitTimer_.setSingleShot(true);
    connect(&fitTimer_, &QTimer::timeout, this, [this] { resizeColumnToContents(0); });
    const auto fit = [this] { fitTimer_.start(); };
    connect(model_, &QAbstractItemModel::modelReset, this, fit);
    connect(model_, &QAbstractItemModel::dataChanged, this, fit);
    connect(this, &QTreeView::expanded, this, fit);
    connect(this, &QTreeView::collapsed, this, fit);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, fit);
}

void CTHNTFSTreeView::FillTree() {
    FolderNodes folders = CollectFolders();
    WM_TREE_FILLED.Send(this, folders);
}

void CTHNTFSTreeView::Clear() {
    model_->SetFolders({});
    model_->SumMarks();
}

bool CTHNTFSTreeView::IsEmpty() const { return model_->IsEmpty(); }

bool CTHNTFSTreeView::HasMarks() const { return model_->HasMarks(); }

std::vector<std::uint32_t> CTHNTFSTreeView::CheckedEntries() const { return model_->CheckedEntries(); }

std::uint32_t CTHNTFSTreeView::CurrentEntry() const {
    return IsEmpty() ? 0 : model_->Node(model_->Current()).EntryId;
}

bool CTHNTFSTreeView::CurrentHasParent() const {
    return !IsEmpty() && model_->Current() != FolderTreeModel::kTop;
}

void CTHNTFSTreeView::GoToParent() {
    if (Desktop.WaitDialog != nullptr || !CurrentHasParent()) {
        return;
    }
    const std::uint32_t parent = model_->Node(model_->Current()).Parent;
    ShowInList(parent);
    model_->SetCurrent(parent);
    Select(parent);
}

std::vector<CTHNTFSTreeView::Step> CTHNTFSTreeView::WayTo(std::uint32_t entryId) const {
    std::vector<Step> steps;
    if (const auto place = model_->PlaceOfEntry(entryId)) {
        for (const std::uint32_t step : model_->WayTo(*place)) {
            steps.push_back({model_->Node(step).EntryId, ShownName(model_->Name(step))});
        }
    }
    return steps;
}

std::u16string CTHNTFSTreeView::PathBefore(std::uint32_t entryId) const {
    const auto place = model_->PlaceOfEntry(entryId);
    return place ? model_->PathBefore(*place) : std::u16string();
}

void CTHNTFSTreeView::GoToFolder(std::uint32_t entryId) {
    const auto place = model_->PlaceOfEntry(entryId);
    if (place && !ViewsBusy()) {
        ShowInList(*place);
        GoTo(*place);
    }
}

QString CTHNTFSTreeView::PathOf(std::uint32_t entryId) const {
    const auto place = model_->PlaceOfEntry(entryId);
    return place ? model_->PathOf(*place) : QString();
}

std::intptr_t CTHNTFSTreeView::OnMessage(std::uint32_t message, std::uintptr_t wParam,
                                         std::uintptr_t /*lParam*/) {
    switch (message) {
    case WM_TREE_FILLED:
        TakeFolders(WM_TREE_FILLED.First(wParam));
        break;
    case WM_TREE_SELECT_CHILD:
        SelectChild(WM_TREE_SELECT_CHILD.First(wParam));
        break;
    case WM_TREE_SELECT_FOLDER:
        SelectFolder(WM_TREE_SELECT_FOLDER.First(wParam));
        break;
    default:
        break;
    }
    return 0;
}

void CTHNTFSTreeView::TakeFolders(FolderNodes& folders) {
    model_->SetFolders(std::move(folders));
    model_->SumMarks();
    Select(FolderTreeModel::kTop);
    ExpandWithParents(model_->IndexOf(FolderTreeModel::kTop));
    WM_UPDATE_TOTALS.Send(MainWindow(), Totals::All, 0);
    ShowInList(FolderTreeModel::kTop);
    if (listView_ != nullptr) {
        listView_->SortList(0, true, SortKind::Text);
    }
    setFocus();
}

void CTHNTFSTreeView::SelectChild(std::uint32_t entryId) {
    if (IsEmpty()) {
        return;
    }
    const std::uint32_t parent = model_->Current();
    model_->SetCurrent(parent, false);
    Select(parent);
    const auto child = model_->PlaceOfEntry(entryId);
    if (!child || *child == FolderTreeModel::kTop || model_->Node(*child).Parent != parent) {
        return;
    }
    GoTo(*child);
}

void CTHNTFSTreeView::SelectFolder(std::uint32_t entryId) {
    if (const auto place = model_->PlaceOfEntry(entryId)) {
        GoTo(*place);
    }
}

void CTHNTFSTreeView::GoTo(std::uint32_t place) {
    model_->SetCurrent(place);
    Select(place);
    ExpandWithParents(model_->IndexOf(place));
}

void CTHNTFSTreeView::Select(std::uint32_t place) {
    setCurrentIndex(model_->IndexOf(place));
    scrollTo(currentIndex());
}

void CTHNTFSTreeView::ExpandWithParents(QModelIndex index) {
    for (; index.isValid(); index = index.parent()) {
        expand(index);
    }
    scrollTo(currentIndex());
}

void CTHNTFSTreeView::ShowInList(std::uint32_t place) {
    WM_LIST_SHOW_FOLDER.Send(listView_, model_->Node(place).EntryId);
}

void CTHNTFSTreeView::ChooseSelected() {
    const std::uint32_t place = model_->PlaceOf(currentIndex());
    GoTo(place);
    ShowInList(place);
}

void CTHNTFSTreeView::ToggleMark(std::uint32_t place) {
    model_->ToggleMark(place);
    viewport()->update();
    model_->SumMarks();
    WM_UPDATE_TOTALS.Send(MainWindow(), Totals::Marked, 1);
}

// A screen reader asks for no state that it isn't told about.
void CTHNTFSTreeView::TellMarkByKey() {
    if (!QAccessible::isActive()) {
        return;
    }
    const QAccessibleInterface* tree = QAccessible::queryAccessibleInterface(this);
    const QAccessibleInterface* folder = tree->focusChild();
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(this, changed);
    event.setChild(tree->indexOfChild(folder));
    QAccessible::updateAccessibility(&event);
}

// Pressing and dragging selects nothing, and a busy program takes no clicks at all.
bool CTHNTFSTreeView::viewportEvent(QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return ViewsBusy() || QTreeView::viewportEvent(event);
    case QEvent::MouseMove:
        return static_cast<QMouseEvent*>(event)->buttons() != Qt::NoButton || QTreeView::viewportEvent(event);
    default:
        return QTreeView::viewportEvent(event);
    }
}

void CTHNTFSTreeView::mousePressEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    const Part part = PartAt(event->position().toPoint(), index);
    if (part == Part::Branch || part == Part::Name) {
        QTreeView::mousePressEvent(event);
    }
    if (part == Part::Mark && event->button() == Qt::LeftButton) {
        ToggleMark(model_->PlaceOf(index));
    } else if (part == Part::Name && event->button() == Qt::LeftButton) {
        model_->SetCurrent(model_->PlaceOf(index));
        ShowInList(model_->Current());
    } else if (event->button() == Qt::RightButton) {
        OpenMenuOf(RowAt(event->position().toPoint()), event->globalPosition().toPoint());
    }
}

void CTHNTFSTreeView::mouseDoubleClickEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    if (PartAt(event->position().toPoint(), index) != Part::Name) {
        mousePressEvent(event);
    } else if (event->button() == Qt::LeftButton) {
        QTreeView::mouseDoubleClickEvent(event);
    }
}

void CTHNTFSTreeView::keyPressEvent(QKeyEvent* event) {
    if (ViewsBusy()) {
        return; // some keys would unfold folders
    }
    const int key = event->key();
    if (key == Qt::Key_Space && currentIndex().isValid()) {
        ToggleMark(model_->PlaceOf(currentIndex()));
        TellMarkByKey();
        return;
    }
    if (key != Qt::Key_Return && key != Qt::Key_Enter && key != Qt::Key_Menu) {
        QTreeView::keyPressEvent(event);
        return;
    }
    if (!currentIndex().isValid()) {
        return;
    }
    ChooseSelected();
    if (key == Qt::Key_Menu) {
        const QRect text = PartRect(QStyle::SE_ItemViewItemText, currentIndex());
        OpenMenu(viewport()->mapToGlobal(text.bottomRight()));
    }
}

bool CTHNTFSTreeView::focusNextPrevChild(bool next) {
    QWidget* target = next || backTabTarget_.isNull() ? listView_ : backTabTarget_.data();
    if (target == nullptr) {
        return QTreeView::focusNextPrevChild(next);
    }
    target->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

// Only the name shows what is selected.
void CTHNTFSTreeView::drawBranches(QPainter* painter, const QRect& rect, const QModelIndex& index) const {
    painter->fillRect(rect, palette().base());
    QTreeView::drawBranches(painter, rect, index);
}

void CTHNTFSTreeView::initViewItemOption(QStyleOptionViewItem* option) const {
    QTreeView::initViewItemOption(option);
    option->showDecorationSelected = false; // the text's rectangle is then no wider than the text
}

void CTHNTFSTreeView::OpenMenuOf(const QModelIndex& index, const QPoint& at) {
    if (!index.isValid()) {
        return;
    }
    model_->SetCurrent(model_->PlaceOf(index));
    Select(model_->Current());
    OpenMenu(at);
}

void CTHNTFSTreeView::OpenMenu(const QPoint& at) {
    const std::uint32_t entryId = CurrentEntry();
    OpenContextMenu(this, at, {}, entryId, [entryId] {
        Engine.MarkedEntries = {entryId};
        WM_SAVE_REQUEST.Send(MainWindow(), entryId);
    });
}

// The whole width of the view counts, beyond the longest name too.
QModelIndex CTHNTFSTreeView::RowAt(const QPoint& at) const {
    return indexAt({header()->sectionViewportPosition(0), at.y()});
}

QRect CTHNTFSTreeView::PartRect(QStyle::SubElement part, const QModelIndex& index) const {
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.rect = visualRect(index);
    return delegate_->PartRect(part, option, index);
}

CTHNTFSTreeView::Part CTHNTFSTreeView::PartAt(const QPoint& at, const QModelIndex& index) const {
    if (!index.isValid()) {
        return Part::None;
    }
    const int left = visualRect(index).left();
    if (at.x() < left) {
        const bool onButton = model_->hasChildren(index) && at.x() >= left - indentation();
        return onButton ? Part::Branch : Part::None;
    }
    if (PartRect(QStyle::SE_ItemViewItemCheckIndicator, index).contains(at)) {
        return Part::Mark;
    }
    const QRect name =
        PartRect(QStyle::SE_ItemViewItemDecoration, index) | PartRect(QStyle::SE_ItemViewItemText, index);
    return at.x() >= name.left() && at.x() <= name.right() ? Part::Name : Part::None;
}

} // namespace thntfs
