#pragma once

#include "shell/MessageTarget.h"
#include "views/FileListModel.h"
#include "views/RowView.h"

#include <QCoreApplication>
#include <QItemSelection>
#include <QPointer>
#include <QStackedWidget>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace thntfs {

class CTHNTFSTreeView;
class CDetailsView;
class CIconView;

/// The content of one folder. Each fill reads the catalogue anew; orders from the user's menu go to the main
/// frame.
class CTHNTFSListView : public QStackedWidget, public MessageTarget, private RowActions {
    Q_DECLARE_TR_FUNCTIONS(CTHNTFSListView)

public:
    static constexpr std::uint32_t kLargeIcons = 60000;
    static constexpr std::uint32_t kSmallIcons = 60001;
    static constexpr std::uint32_t kList = 60002;
    static constexpr std::uint32_t kDetails = 60003;

    explicit CTHNTFSListView(QWidget* parent = nullptr);

    /// The tree beside it, null for none; not owned.
    void SetTreeView(CTHNTFSTreeView* treeView);

    /// Takes all rows away.
    void Clear();

    /// Shows entries of many folders, each with its own; `title` names them all.
    void ShowHits(FileRows rows, const QString& title);
    [[nodiscard]] bool ShowsHits() const { return !hitsTitle_.isEmpty(); }
    [[nodiscard]] const QString& HitsTitle() const { return hitsTitle_; }

    /// The folder whose rows are here; nothing while there is none, and for hits.
    [[nodiscard]] std::optional<std::uint32_t> ShownFolder() const { return shownFolder_; }

    /// Narrows what is shown, of other folders from now on, too. Rows that stay keep being selected or
    /// current.
    void Narrow(RowFilter filter);
    [[nodiscard]] const RowFilter& Filter() const { return model_->Filter(); }
    [[nodiscard]] int CountOfAll() const { return model_->CountOfAll(); }

    /// Called when other rows have come, or the filter has changed.
    void SetOnChanged(std::function<void()> changed) { changed_ = std::move(changed); }

    /// Looks at what an empty list has to tell: nothing is loaded, or nothing fits the filter.
    void UpdateEmptyText();

    /// Whether sizes stand in KB, MB and GB.
    void SetSizesInUnits(bool inUnits) { model_->SetSizesInUnits(inUnits); }
    [[nodiscard]] bool SizesInUnits() const { return model_->SizesInUnits(); }

    [[nodiscard]] bool HasSelection() const;
    /// Puts the selected rows on the clipboard, a line each: names, or with the folders above them.
    void CopyNames() const;
    void CopyPaths() const;

    /// EntryIds of the rows shown, and the paths of the folders that they stand in: `FolderOf` has a place in
    /// `FolderPaths` for each row.
    struct ShownRows {
        std::vector<std::uint32_t> EntryIds;
        std::vector<std::uint32_t> FolderOf;
        std::vector<std::string> FolderPaths;
    };
    [[nodiscard]] ShownRows RowsShown() const;

    /// Where Shift+Tab moves the focus, null for where Tab does. The caller keeps the widget.
    void SetBackTabTarget(QWidget* target) { backTabTarget_ = target; }

    /// Whether the rows are those of a folder, just as its fill has left them.
    [[nodiscard]] bool IsAsFilled(std::uint32_t folderId) const { return filledFolder_ == folderId; }
    /// Selects nothing and goes to the first row, as after a fill.
    void GoToTop();

    [[nodiscard]] bool IsEmpty() const { return RowCount() == 0; }
    [[nodiscard]] int RowCount() const { return model_->Count(); }

    /// Sorts the rows by a column's cells and shows the arrow on its header. A later fill isn't sorted.
    void SortList(int column, bool ascending, SortKind kind);

    /// Takes the number of a view command, 60000 to 60003; any other means details.
    void SetViewMode(std::uint32_t commandId);

    /// Marks the row of an entry, if it is here, and brings it into view; 0xFFFFFFFF for none.
    void SetFoundEntry(std::uint32_t entryId);

    std::intptr_t OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t lParam) override;

private:
    void DoubleClicked(const QModelIndex& index) override;
    void RightClicked(const QModelIndex& index, const QPoint& at) override;
    bool KeyPressed(int key) override;
    void CopySelected() override { CopyNames(); }
    bool LeaveByTab(bool next) override;
    [[nodiscard]] QString EmptyText() const override { return emptyText_; }

    [[nodiscard]] QAbstractItemView* View() const;
    [[nodiscard]] std::vector<int> SelectedRows() const;
    [[nodiscard]] QItemSelection SelectionOf(const std::vector<int>& rows) const;
    void ShowFolder(std::uint32_t entryId);
    void ReadRows(std::uint32_t entryId);
    void SetRows(FileRows rows, const QString& hitsTitle = {});
    void TellChanged();
    [[nodiscard]] QString TextForNoRows() const;
    [[nodiscard]] QString PathOfRow(int row) const;
    void CopyRows(const std::function<QString(int row)>& text) const;
    void GoDown(std::uint32_t entryId);
    void HeaderClicked(int column);
    void OpenMenu(int row, const QPoint& at);
    void SaveSelected() const;

    FileListModel* model_;
    CDetailsView* details_;
    CIconView* icons_;
    CTHNTFSTreeView* treeView_ = nullptr;
    std::optional<std::uint32_t> filledFolder_; ///< until the rows are sorted or others come
    std::optional<std::uint32_t> shownFolder_;
    QString hitsTitle_; ///< empty where they are no hits
    QString emptyText_;
    std::function<void()> changed_;
    QPointer<QWidget> backTabTarget_;
    int sortColumn_ = 0;
    bool sortAscending_ = true;
};

} // namespace thntfs
