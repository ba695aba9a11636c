#include "views/FileListModel.h"

#include "shell/CoreTexts.h"
#include "shell/Icons.h"
#include "shell/ShownName.h"
#include "shell/TipText.h"
#include "views/TextOrder.h"

#include <algorithm>
#include <utility>

namespace thntfs {

namespace {

struct ColumnLook {
    const char* Title;
    Qt::AlignmentFlag Align;
};

constexpr std::array<ColumnLook, FileListModel::kColumns> kLooks{{
    {QT_TRANSLATE_NOOP("FileListModel", "File Name"), Qt::AlignLeft},
    {QT_TRANSLATE_NOOP("FileListModel", "Size in Bytes"), Qt::AlignRight},
    {QT_TRANSLATE_NOOP("FileListModel", "Type"), Qt::AlignLeft},
    {QT_TRANSLATE_NOOP("FileListModel", "Date Accessed"), Qt::AlignRight},
    {QT_TRANSLATE_NOOP("FileListModel", "Date Created"), Qt::AlignRight},
    {QT_TRANSLATE_NOOP("FileListModel", "File ID"), Qt::AlignRight},
    {QT_TRANSLATE_NOOP("FileListModel", "Parent ID"), Qt::AlignRight},
    {QT_TRANSLATE_NOOP("FileListModel", "Condition"), Qt::AlignLeft},
    {QT_TRANSLATE_NOOP("FileListModel", "In Folder"), Qt::AlignLeft},
}};

int AlignmentOf(int column) {
    return static_cast<int>(kLooks.at(static_cast<std::size_t>(column)).Align) |
           static_cast<int>(Qt::AlignVCenter);
}

/// A DOS date as day, month and year.
QString DateText(std::uint16_t date) {
    if (date == 0) {
        return {};
    }
    return QString::asprintf("%02d-%02d-%d", date & 0x1F, date >> 5 & 0xF, 1980 + (date >> 9));
}

std::uint64_t ShownSize(const FileRow& row) { return row.Folder ? 0 : row.Size; }

std::uint64_t CellNumber(const FileRow& row, int column) {
    switch (column) {
    case FileListModel::kSize:
        return ShownSize(row);
    case FileListModel::kAccessed:
        return row.AccessedDate;
    case FileListModel::kCreated:
        return row.CreatedDate;
    case FileListModel::kFileId:
        return row.RecordNumber;
    case FileListModel::kParentId:
        return row.ParentNumber;
    case FileListModel::kCondition:
        return ConditionRank(row.State, row.Live);
    default:
        return 0;
    }
}

std::size_t IconOf(const FileRow& row) { return (row.Live ? 0U : 2U) + (row.Folder ? 0U : 1U); }

} // namespace

FileListModel::FileListModel(QObject* parent)
    : QAbstractTableModel(parent)
    , icons_{LoadIcon("folder-live"), LoadIcon("file-live"), LoadIcon("folder-deleted"),
             LoadIcon("file-deleted")} {}

void FileListModel::SetRows(FileRows rows) {
    beginResetModel();
    rows_ = std::move(rows);
    index_.Forget();
    endResetModel();
}

int FileListModel::RowOf(std::uint32_t entryId) const {
    const auto place = index_.PlaceOf(entryId, rows_.Rows.size(),
                                      [this](std::uint32_t row) { return rows_.Rows[row].EntryId; });
    return place ? static_cast<int>(*place) : -1;
}

void FileListModel::Sort(int column, bool ascending, SortKind kind) {
    Reorder(kind == SortKind::Text ? PlacesByText(column, ascending) : PlacesByNumber(column, ascending));
}

std::vector<std::uint32_t> FileListModel::PlacesByText(int column, bool ascending) const {
    const TextOrder order;
    std::vector<TextOrder::Key> keys;
    keys.reserve(rows_.Rows.size());
    for (std::size_t row = 0; row < rows_.Rows.size(); ++row) {
        keys.push_back(order.KeyOf(CellText(row, column)));
    }
    return SortedPlaces(keys, ascending);
}

// Dates and numbers compare alike: a DOS date rises with the days.
std::vector<std::uint32_t> FileListModel::PlacesByNumber(int column, bool ascending) const {
    std::vector<std::uint64_t> keys;
    keys.reserve(rows_.Rows.size());
    for (const FileRow& row : rows_.Rows) {
        keys.push_back(CellNumber(row, column));
    }
    return SortedPlaces(keys, ascending);
}

void FileListModel::Reorder(const std::vector<std::uint32_t>& places) {
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    std::vector<FileRow> rows;
    std::vector<int> newRows(places.size());
    rows.reserve(places.size());
    for (const std::uint32_t place : places) {
        newRows[place] = static_cast<int>(rows.size());
        rows.push_back(rows_.Rows[place]);
    }
    rows_.Rows = std::move(rows);
    index_.Forget();

    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& index : before) {
        after.push_back(createIndex(newRows[static_cast<std::size_t>(index.row())], index.column()));
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, VerticalSortHint);
}

int FileListModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : Count(); }

int FileListModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : kColumns; }

QVariant FileListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return CellText(static_cast<std::size_t>(index.row()), index.column());
    case Qt::DecorationRole:
        return index.column() == kName ? icons_.at(IconOf(Row(index.row()))) : QVariant();
    case Qt::ToolTipRole:
        return index.column() == kName ? TipText(CellText(static_cast<std::size_t>(index.row()), kName))
                                       : QVariant();
    case Qt::AccessibleTextRole:
        return SpokenText(index);
    case Qt::TextAlignmentRole:
        return AlignmentOf(index.column());
    case kFoundRole:
        return Row(index.row()).EntryId == foundEntry_;
    default:
        return {};
    }
}

QString FileListModel::CellText(std::size_t row, int column) const {
    const FileRow& entry = rows_.Rows[row];
    switch (column) {
    case kName:
        return ShownName(rows_.Name(row));
    case kType:
        return entry.Folder ? tr("Folder") : tr("File");
    case kAccessed:
        return DateText(entry.AccessedDate);
    case kCreated:
        return DateText(entry.CreatedDate);
    case kCondition:
        return ShownCoreText(ConditionText(entry.State, entry.Live));
    case kFolder:
        return folderText_ ? folderText_(entry.FolderId) : QString();
    default:
        return QString::number(CellNumber(entry, column));
    }
}

// What the icon tells. Other cells are read as they stand.
QVariant FileListModel::SpokenText(const QModelIndex& index) const {
    if (index.column() != kName || Row(index.row()).Live) {
        return {};
    }
    return tr("%1, deleted").arg(CellText(static_cast<std::size_t>(index.row()), kName));
}

QVariant FileListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= kColumns) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole: // for where it is cut
        return QCoreApplication::translate("FileListModel",
                                           kLooks.at(static_cast<std::size_t>(section)).Title);
    case Qt::TextAlignmentRole:
        return AlignmentOf(section);
    default:
        return {};
    }
}

} // namespace thntfs
