#include "views/FileListModel.h"

#include "shell/CoreTexts.h"
#include "shell/Icons.h"
#include "shell/ShownName.h"
#include "shell/TipText.h"
#include "views/TextOrder.h"

#include <QLocale>
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

/// A size in the largest unit that it fills, with the user's own marks in the number.
QString SizeInUnits(std::uint64_t bytes) {
    constexpr std::array<const char*, 5> kUnits{"", "KB", "MB", "GB", "TB"};
    std::size_t unit = 0;
    auto number = static_cast<double>(bytes);
    for (; number >= 1024 && unit + 1 < kUnits.size(); ++unit) {
        number /= 1024;
    }
    const QString text = QLocale().toString(number, 'f', unit == 0 ? 0 : 1);
    return unit == 0 ? QCoreApplication::translate("FileListModel", "%1 bytes").arg(text)
                     : text + QLatin1Char(' ') + QLatin1String(kUnits[unit]);
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
    places_ = FittingPlaces(rows_, filter_);
    index_.Forget();
    endResetModel();
}

void FileListModel::SetFilter(RowFilter filter) {
    beginResetModel();
    filter_ = std::move(filter);
    places_ = FittingPlaces(rows_, filter_);
    endResetModel();
}

void FileListModel::SetSizesInUnits(bool inUnits) {
    sizesInUnits_ = inUnits;
    if (Count() > 0) {
        Q_EMIT dataChanged(index(0, kSize), index(Count() - 1, kSize), {Qt::DisplayRole});
    }
    Q_EMIT headerDataChanged(Qt::Horizontal, kSize, kSize);
}

std::optional<std::uint32_t> FileListModel::PlaceOf(std::uint32_t entryId) const {
    return index_.PlaceOf(entryId, rows_.Rows.size(),
                          [this](std::uint32_t place) { return rows_.Rows[place].EntryId; });
}

int FileListModel::RowAt(std::size_t place) const {
    const auto found = std::lower_bound(places_.begin(), places_.end(), place);
    return found != places_.end() && *found == place ? static_cast<int>(found - places_.begin()) : -1;
}

std::vector<int> FileListModel::RowsAt(const std::vector<std::uint32_t>& places) const {
    std::vector<int> rows;
    auto place = places.begin();
    for (int row = 0; row < Count() && place != places.end(); ++row) {
        while (place != places.end() && *place < PlaceAt(row)) {
            ++place;
        }
        if (place != places.end() && *place == PlaceAt(row)) {
            rows.push_back(row);
        }
    }
    return rows;
}

int FileListModel::RowOf(std::uint32_t entryId) const {
    const auto place = PlaceOf(entryId);
    return place ? RowAt(*place) : -1;
}

bool FileListModel::Hides(std::uint32_t entryId) const {
    const auto place = PlaceOf(entryId);
    return place && RowAt(*place) < 0;
}

void FileListModel::Sort(int column, bool ascending, SortKind kind) {
    Reorder(kind == SortKind::Text ? PlacesByText(column, ascending) : PlacesByNumber(column, ascending));
}

std::vector<std::uint32_t> FileListModel::PlacesByText(int column, bool ascending) const {
    const TextOrder order;
    std::vector<TextOrder::Key> keys;
    keys.reserve(rows_.Rows.size());
    for (std::size_t place = 0; place < rows_.Rows.size(); ++place) {
        keys.push_back(order.KeyOf(CellText(place, column)));
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
    const QModelIndexList before = persistentIndexList();
    std::vector<FileRow> rows;
    std::vector<std::uint32_t> newPlaces(places.size());
    rows.reserve(places.size());
    for (const std::uint32_t place : places) {
        newPlaces[place] = static_cast<std::uint32_t>(rows.size());
        rows.push_back(rows_.Rows[place]);
    }
    std::vector<std::size_t> placesBefore;
    for (const QModelIndex& index : before) {
        placesBefore.push_back(newPlaces[PlaceAt(index.row())]);
    }
    rows_.Rows = std::move(rows);
    index_.Forget();
    MoveShown(newPlaces);

    QModelIndexList after;
    after.reserve(before.size());
    for (qsizetype i = 0; i < before.size(); ++i) {
        after.push_back(createIndex(RowAt(placesBefore[static_cast<std::size_t>(i)]), before[i].column()));
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, VerticalSortHint);
}

// What is shown stays shown, at its new places.
void FileListModel::MoveShown(const std::vector<std::uint32_t>& newPlaces) {
    std::vector<bool> shown(newPlaces.size());
    for (const std::uint32_t place : places_) {
        shown[newPlaces[place]] = true;
    }
    places_.clear();
    for (std::uint32_t place = 0; place < shown.size(); ++place) {
        if (shown[place]) {
            places_.push_back(place);
        }
    }
}

int FileListModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : Count(); }

int FileListModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : kColumns; }

QVariant FileListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return CellText(PlaceAt(index.row()), index.column());
    case Qt::DecorationRole:
        return index.column() == kName ? icons_.at(IconOf(Row(index.row()))) : QVariant();
    case Qt::ToolTipRole:
        return index.column() == kName ? TipText(CellText(PlaceAt(index.row()), kName)) : QVariant();
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

QString FileListModel::CellText(std::size_t place, int column) const {
    const FileRow& entry = rows_.Rows[place];
    switch (column) {
    case kName:
        return ShownName(rows_.Name(place));
    case kSize:
        return ShownSizeText(entry);
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

QString FileListModel::ShownSizeText(const FileRow& row) const {
    if (!sizesInUnits_) {
        return QString::number(ShownSize(row));
    }
    return row.Folder ? QString() : SizeInUnits(row.Size);
}

// What the icon tells. Other cells are read as they stand.
QVariant FileListModel::SpokenText(const QModelIndex& index) const {
    if (index.column() != kName || Row(index.row()).Live) {
        return {};
    }
    return tr("%1, deleted").arg(CellText(PlaceAt(index.row()), kName));
}

QVariant FileListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= kColumns) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole: // for where it is cut
        if (section == kSize && sizesInUnits_) {
            return tr("Size");
        }
        return QCoreApplication::translate("FileListModel",
                                           kLooks.at(static_cast<std::size_t>(section)).Title);
    case Qt::TextAlignmentRole:
        return AlignmentOf(section);
    default:
        return {};
    }
}

} // namespace thntfs
