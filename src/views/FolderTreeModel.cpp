#include "views/FolderTreeModel.h"

#include "catalogue/CatalogueReader.h"
#include "shell/DesktopState.h"
#include "shell/Icons.h"
#include "shell/ShownName.h"
#include "views/TextOrder.h"

#include <QFont>
#include <algorithm>
#include <numeric>
#include <utility>

namespace thntfs {

namespace {

Qt::CheckState CheckStateOf(FolderMark mark) {
    switch (mark) {
    case FolderMark::Checked:
        return Qt::Checked;
    case FolderMark::Partly:
        return Qt::PartiallyChecked;
    default:
        return Qt::Unchecked;
    }
}

} // namespace

FolderTreeModel::FolderTreeModel(QObject* parent)
    : QAbstractItemModel(parent)
    , icons_{LoadIcon("folder-deleted"), LoadIcon("folder-live")}
    , openIcons_{LoadIcon("folder-deleted-open"), LoadIcon("folder-live-open")} {}

void FolderTreeModel::SetFolders(FolderNodes folders) {
    beginResetModel();
    folders_ = std::move(folders);
    index_.Forget();
    marks_.assign(folders_.Nodes.size(), FolderMark::Unchecked);
    ListChildren();
    current_ = kTop;
    bold_ = true;
    endResetModel();
}

void FolderTreeModel::ListChildren() {
    const std::size_t count = folders_.Nodes.size();
    childStart_.assign(count + 1, 0);
    for (std::size_t place = 1; place < count; ++place) {
        ++childStart_[folders_.Nodes[place].Parent + 1];
    }
    std::partial_sum(childStart_.begin(), childStart_.end(), childStart_.begin());

    children_.assign(count, 0);
    rows_.assign(count, 0);
    sorted_.assign(count, false);
    std::vector<std::uint32_t> next = childStart_;
    for (std::uint32_t place = 1; place < count; ++place) {
        children_[next[folders_.Nodes[place].Parent]++] = place;
    }
}

void FolderTreeModel::SortChildren(std::uint32_t place) const {
    if (sorted_[place]) {
        return;
    }
    sorted_[place] = true;
    const auto first = children_.begin() + childStart_[place];
    const std::vector<std::uint32_t> unsorted(first, first + ChildCount(place));
    const TextOrder order;
    std::vector<TextOrder::Key> keys;
    keys.reserve(unsorted.size());
    for (const std::uint32_t child : unsorted) {
        keys.push_back(order.KeyOf(ShownName(folders_.Name(child))));
    }
    auto to = first;
    for (const std::uint32_t from : SortedPlaces(keys, true)) {
        rows_[unsorted[from]] = static_cast<std::uint32_t>(to - first);
        *to++ = unsorted[from];
    }
}

std::uint32_t FolderTreeModel::ChildCount(std::uint32_t place) const {
    return childStart_[place + 1] - childStart_[place];
}

std::optional<std::uint32_t> FolderTreeModel::PlaceOfEntry(std::uint32_t entryId) const {
    return index_.PlaceOf(entryId, folders_.Nodes.size(),
                          [this](std::uint32_t place) { return folders_.Nodes[place].EntryId; });
}

std::vector<std::uint32_t> FolderTreeModel::WayTo(std::uint32_t place) const {
    std::vector<std::uint32_t> way;
    for (; place != kTop && Node(place).EntryId != kRootEntryId; place = Node(place).Parent) {
        way.push_back(place);
    }
    std::reverse(way.begin(), way.end());
    return way;
}

// What has lost its folder stands beside the root, not in it.
std::u16string FolderTreeModel::PathBefore(std::uint32_t place) const {
    if (place == kTop) {
        return {};
    }
    const std::vector<std::uint32_t> way = WayTo(place);
    const bool lost = !way.empty() && Node(way.front()).Parent == kTop;
    std::u16string path(lost ? u"" : u"/");
    for (const std::uint32_t step : way) {
        (path += folders_.Name(step)) += u'/';
    }
    return path;
}

QString FolderTreeModel::PathOf(std::uint32_t place) const {
    const QString path = ShownName(PathBefore(place));
    return path.size() > 1 ? path.chopped(1) : path;
}

std::uint32_t FolderTreeModel::PlaceOf(const QModelIndex& index) const {
    return static_cast<std::uint32_t>(index.internalId());
}

QModelIndex FolderTreeModel::IndexOf(std::uint32_t place) const {
    if (place != kTop) {
        SortChildren(folders_.Nodes[place].Parent);
    }
    return createIndex(static_cast<int>(rows_[place]), 0, place);
}

void FolderTreeModel::SetCurrent(std::uint32_t place, bool bold) {
    if (place == current_ && bold == bold_) {
        return;
    }
    const std::uint32_t old = std::exchange(current_, place);
    bold_ = bold;
    TellChanged(old);
    TellChanged(place);
}

void FolderTreeModel::TellChanged(std::uint32_t place) {
    const QModelIndex index = IndexOf(place);
    Q_EMIT dataChanged(index, index);
}

void FolderTreeModel::ToggleMark(std::uint32_t place) {
    const FolderMark mark =
        marks_[place] == FolderMark::Unchecked ? FolderMark::Checked : FolderMark::Unchecked;
    std::fill(marks_.begin() + place, marks_.begin() + folders_.Nodes[place].End, mark);
    for (std::uint32_t above = place; above != kTop;) {
        above = folders_.Nodes[above].Parent;
        marks_[above] = AllChildrenAre(above, mark) ? mark : FolderMark::Partly;
    }
    TellChanged(place);
}

bool FolderTreeModel::AllChildrenAre(std::uint32_t place, FolderMark mark) const {
    const auto first = children_.begin() + childStart_[place];
    return std::all_of(first, first + ChildCount(place),
                       [&](std::uint32_t child) { return marks_[child] == mark; });
}

// The marks above follow those below.
bool FolderTreeModel::HasMarks() const { return !IsEmpty() && marks_[kTop] != FolderMark::Unchecked; }

std::vector<std::uint32_t> FolderTreeModel::CheckedEntries() const {
    std::vector<std::uint32_t> entries;
    for (std::uint32_t place = 0; place < folders_.Nodes.size();) {
        const bool checked = marks_[place] == FolderMark::Checked;
        if (checked) {
            entries.push_back(folders_.Nodes[place].EntryId);
        }
        place = checked ? folders_.Nodes[place].End : place + 1;
    }
    return entries;
}

// The top is no folder of the volume: the totals leave it out too.
void FolderTreeModel::SumMarks() const {
    Desktop.MarkedFiles = 0;
    Desktop.MarkedFolders = 0;
    Desktop.MarkedBytes = 0;
    for (std::uint32_t place = 0; place < folders_.Nodes.size(); ++place) {
        if (marks_[place] == FolderMark::Checked) {
            Desktop.MarkedFolders += place == kTop ? 0 : 1;
            Desktop.MarkedFiles += folders_.Nodes[place].DirectFiles;
            Desktop.MarkedBytes += folders_.Nodes[place].DirectBytes;
        }
    }
}

QModelIndex FolderTreeModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent)) {
        return {};
    }
    if (!parent.isValid()) {
        return createIndex(row, column, kTop);
    }
    const std::uint32_t place = PlaceOf(parent);
    SortChildren(place);
    return createIndex(row, column, children_[childStart_[place] + static_cast<std::uint32_t>(row)]);
}

QModelIndex FolderTreeModel::parent(const QModelIndex& child) const {
    const std::uint32_t place = PlaceOf(child);
    return !child.isValid() || place == kTop ? QModelIndex() : IndexOf(folders_.Nodes[place].Parent);
}

int FolderTreeModel::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid()) {
        return IsEmpty() ? 0 : 1;
    }
    return static_cast<int>(ChildCount(PlaceOf(parent)));
}

int FolderTreeModel::columnCount(const QModelIndex& /*parent*/) const { return 1; }

bool FolderTreeModel::hasChildren(const QModelIndex& parent) const { return rowCount(parent) > 0; }

Qt::ItemFlags FolderTreeModel::flags(const QModelIndex& index) const {
    return QAbstractItemModel::flags(index) | Qt::ItemIsUserCheckable;
}

QVariant FolderTreeModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    const std::uint32_t place = PlaceOf(index);
    const std::size_t live = folders_.Nodes[place].Live ? 1 : 0;
    switch (role) {
    case Qt::DisplayRole:
        return ShownName(folders_.Name(place));
    case Qt::DecorationRole:
        return icons_.at(live);
    case Qt::CheckStateRole:
        return CheckStateOf(marks_[place]);
    case Qt::AccessibleTextRole:
        return SpokenText(place);
    case Qt::FontRole:
        return Font(place);
    case kOpenIconRole:
        return openIcons_.at(live);
    case kCurrentRole:
        return place == current_;
    default:
        return {};
    }
}

// With what icon and mark tell, but for a full mark, which the view tells as a state.
QString FolderTreeModel::SpokenText(std::uint32_t place) const {
    const QString name = ShownName(folders_.Name(place));
    const QString state = folders_.Nodes[place].Live ? name : tr("%1, deleted").arg(name);
    return marks_[place] == FolderMark::Partly ? tr("%1, partly marked").arg(state) : state;
}

QVariant FolderTreeModel::Font(std::uint32_t place) const {
    if (place != current_ || !bold_) {
        return {};
    }
    QFont font;
    font.setBold(true);
    return font;
}

} // namespace thntfs
