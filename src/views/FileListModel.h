#pragma once

#include "views/EntryIndex.h"
#include "views/FolderListing.h"
#include "views/RowFilter.h"

#include <QAbstractTableModel>
#include <QCoreApplication>
#include <QIcon>
#include <array>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace thntfs {

/// How a column's cells are compared.
enum class SortKind { Text, WholeNumber, DecimalNumber, Date };

inline constexpr std::uint32_t kNoFoundEntry = 0xFFFFFFFF;

/// The content of one folder, a row an entry. A filter narrows what is shown of it; counts and rows are those
/// that are shown, but where it says "all".
class FileListModel : public QAbstractTableModel {
    Q_DECLARE_TR_FUNCTIONS(FileListModel)

public:
    enum Column {
        kName,
        kSize,
        kType,
        kAccessed,
        kCreated,
        kFileId,
        kParentId,
        kCondition,
        kFolder, ///< of a hit: the folder that it stands in
        kColumns,
    };
    static constexpr int kFoundRole = Qt::UserRole; ///< true in the row that Find has picked out

    /// Text of the folder with an EntryId.
    using FolderText = std::function<QString(std::uint32_t folderId)>;

    explicit FileListModel(QObject* parent);

    void SetFolderText(FolderText text) { folderText_ = std::move(text); }

    /// Shows other rows, in the order given.
    void SetRows(FileRows rows);

    /// Shows what a filter lets through, of other rows from now on, too.
    void SetFilter(RowFilter filter);
    [[nodiscard]] const RowFilter& Filter() const { return filter_; }

    /// Sizes in KB, MB and GB instead of bytes.
    void SetSizesInUnits(bool inUnits);
    [[nodiscard]] bool SizesInUnits() const { return sizesInUnits_; }

    [[nodiscard]] int Count() const { return static_cast<int>(places_.size()); }
    [[nodiscard]] int CountOfAll() const { return static_cast<int>(rows_.Rows.size()); }
    [[nodiscard]] const FileRow& Row(int row) const { return rows_.Rows[PlaceAt(row)]; }
    [[nodiscard]] std::u16string_view Name(int row) const { return rows_.Name(PlaceAt(row)); }
    /// The row of an entry, -1 where it isn't here or isn't shown.
    [[nodiscard]] int RowOf(std::uint32_t entryId) const;
    /// Whether an entry is here and the filter keeps it from being shown.
    [[nodiscard]] bool Hides(std::uint32_t entryId) const;

    // A row under whatever filter: its place among all rows.
    [[nodiscard]] std::size_t PlaceAt(int row) const { return places_[static_cast<std::size_t>(row)]; }
    /// -1 where it isn't shown.
    [[nodiscard]] int RowAt(std::size_t place) const;
    /// Of rising places, those that are shown.
    [[nodiscard]] std::vector<int> RowsAt(const std::vector<std::uint32_t>& places) const;

    /// Sorts all rows; those whose cells are equal keep their order. Selected rows stay selected.
    void Sort(int column, bool ascending, SortKind kind);

    void SetFoundEntry(std::uint32_t entryId) { foundEntry_ = entryId; }

    int rowCount(const QModelIndex& parent) const override;
    int columnCount(const QModelIndex& parent) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    [[nodiscard]] QString CellText(std::size_t place, int column) const;
    [[nodiscard]] QString ShownSizeText(const FileRow& row) const;
    [[nodiscard]] QVariant SpokenText(const QModelIndex& index) const;
    [[nodiscard]] std::vector<std::uint32_t> PlacesByText(int column, bool ascending) const;
    [[nodiscard]] std::vector<std::uint32_t> PlacesByNumber(int column, bool ascending) const;
    [[nodiscard]] std::optional<std::uint32_t> PlaceOf(std::uint32_t entryId) const;
    void Reorder(const std::vector<std::uint32_t>& places);
    void MoveShown(const std::vector<std::uint32_t>& newPlaces);

    FileRows rows_;
    RowFilter filter_;
    std::vector<std::uint32_t> places_; ///< of the rows that are shown, rising
    bool sizesInUnits_ = false;
    mutable EntryIndex index_;
    FolderText folderText_;
    std::uint32_t foundEntry_ = kNoFoundEntry;
    std::array<QIcon, 4> icons_; ///< live folder, live file, deleted folder, deleted file
};

} // namespace thntfs
