#pragma once

#include "views/EntryIndex.h"
#include "views/FolderNodes.h"

#include <QAbstractItemModel>
#include <QCoreApplication>
#include <QIcon>
#include <array>
#include <optional>
#include <vector>

namespace thntfs {

/// State of a folder's check mark.
enum class FolderMark : std::uint8_t { Unchecked = 1, Checked = 2, Partly = 3 };

/// The folders of the catalogue as a tree with one item at its top. Folders are named by their places in
/// FolderNodes. The children of a folder are sorted when somebody first looks at them.
class FolderTreeModel : public QAbstractItemModel {
    Q_DECLARE_TR_FUNCTIONS(FolderTreeModel)

public:
    static constexpr std::uint32_t kTop = 0;
    static constexpr int kOpenIconRole = Qt::UserRole;    ///< the icon of a selected folder
    static constexpr int kCurrentRole = Qt::UserRole + 1; ///< true for the current folder

    explicit FolderTreeModel(QObject* parent);

    /// Shows other folders, none of them checked, the top as the current one. Without nodes it is empty.
    void SetFolders(FolderNodes folders);

    [[nodiscard]] bool IsEmpty() const { return folders_.Nodes.empty(); }
    [[nodiscard]] const FolderNode& Node(std::uint32_t place) const { return folders_.Nodes[place]; }
    /// The folder with an EntryId; nothing where there is none.
    [[nodiscard]] std::optional<std::uint32_t> PlaceOfEntry(std::uint32_t entryId) const;

    /// The folders on the way to a folder, the outermost first and the folder itself last; neither the top
    /// nor the root is named.
    [[nodiscard]] std::vector<std::uint32_t> WayTo(std::uint32_t place) const;
    [[nodiscard]] std::u16string_view Name(std::uint32_t place) const { return folders_.Name(place); }
    /// What stands before a name in its path, for the names in a folder.
    [[nodiscard]] std::u16string PathBefore(std::uint32_t place) const;

    /// Path of a folder, as the terminal program tells it; "/" for the root.
    [[nodiscard]] QString PathOf(std::uint32_t place) const;

    [[nodiscard]] std::uint32_t PlaceOf(const QModelIndex& index) const;
    [[nodiscard]] QModelIndex IndexOf(std::uint32_t place) const;

    /// The current folder. It is bold, but for the time in which nobody knows where to go.
    [[nodiscard]] std::uint32_t Current() const { return current_; }
    void SetCurrent(std::uint32_t place, bool bold = true);

    /// Checks an unchecked folder and all below it, else unchecks them; the folders above follow.
    void ToggleMark(std::uint32_t place);
    [[nodiscard]] FolderMark MarkOf(std::uint32_t place) const { return marks_[place]; }
    [[nodiscard]] bool HasMarks() const;
    /// EntryIds of the checked folders, but for those that stand in a checked one.
    [[nodiscard]] std::vector<std::uint32_t> CheckedEntries() const;
    /// Sets the engine state's sums over the checked folders and the files right in them.
    void SumMarks() const;

    QModelIndex index(int row, int column, const QModelIndex& parent) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent) const override;
    int columnCount(const QModelIndex& parent) const override;
    bool hasChildren(const QModelIndex& parent) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    void ListChildren();
    void SortChildren(std::uint32_t place) const;
    [[nodiscard]] std::uint32_t ChildCount(std::uint32_t place) const;
    [[nodiscard]] bool AllChildrenAre(std::uint32_t place, FolderMark mark) const;
    [[nodiscard]] QVariant Font(std::uint32_t place) const;
    [[nodiscard]] QString SpokenText(std::uint32_t place) const;
    void TellChanged(std::uint32_t place);

    FolderNodes folders_;
    mutable EntryIndex index_;
    std::vector<FolderMark> marks_;
    std::vector<std::uint32_t> childStart_;       ///< of each folder in children_, and the end
    mutable std::vector<std::uint32_t> children_; ///< places, those of one parent together
    mutable std::vector<std::uint32_t> rows_;     ///< of each folder among its parent's children
    mutable std::vector<bool> sorted_;            ///< whether a folder's children are
    std::uint32_t current_ = kTop;
    bool bold_ = false;
    std::array<QIcon, 2> icons_; ///< deleted, live
    std::array<QIcon, 2> openIcons_;
};

} // namespace thntfs
