#pragma once

#include "views/EntryIndex.h"
#include "views/FolderListing.h"

#include <QAbstractTableModel>
#include <QCoreApplication>
#include <QIcon>
#include <array>
#include <functional>
#include <utility>
#include <vector>

namespace thntfs {

/// How a column's cells are compared.
enum class SortKind { Text, WholeNumber, DecimalNumber, Date };

inline constexpr std::uint32_t kNoFoundEntry = 0xFFFFFFFF;

/// The content of one folder, a row an entry.
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

    [[nodiscard]] int Count() const { return static_cast<int>(rows_.Rows.size()); }
    [[nodiscard]] const FileRow& Row(int row) const { return rows_.Rows[static_cast<std::size_t>(row)]; }
    /// The row of an entry, -1 where it isn't here.
    [[nodiscard]] int RowOf(std::uint32_t entryId) const;

    /// Sorts the rows; those whose cells are equal keep their order. Selected rows stay selected.
    void Sort(int column, bool ascending, SortKind kind);

    void SetFoundEntry(std::uint32_t entryId) { foundEntry_ = entryId; }

    int rowCount(const QModelIndex& parent) const override;
    int columnCount(const QModelIndex& parent) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    [[nodiscard]] QString CellText(std::size_t row, int column) const;
    [[nodiscard]] QVariant SpokenText(const QModelIndex& index) const;
    [[nodiscard]] std::vector<std::uint32_t> PlacesByText(int column, bool ascending) const;
    [[nodiscard]] std::vector<std::uint32_t> PlacesByNumber(int column, bool ascending) const;
    void Reorder(const std::vector<std::uint32_t>& places);

    FileRows rows_;
    mutable EntryIndex index_;
    FolderText folderText_;
    std::uint32_t foundEntry_ = kNoFoundEntry;
    std::array<QIcon, 4> icons_; ///< live folder, live file, deleted folder, deleted file
};

} // namespace thntfs
