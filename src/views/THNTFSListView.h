#pragma once

#include "shell/MessageTarget.h"
#include "views/FileListModel.h"
#include "views/RowView.h"

#include <QCoreApplication>
#include <QStackedWidget>
#include <optional>
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

    /// Shows entries of many folders, each with its own.
    void ShowHits(FileRows rows);
    [[nodiscard]] bool ShowsHits() const { return showsHits_; }

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
    bool LeaveByTab() override;

    [[nodiscard]] QAbstractItemView* View() const;
    [[nodiscard]] std::vector<int> SelectedRows() const;
    void ShowFolder(std::uint32_t entryId);
    void ReadRows(std::uint32_t entryId);
    void SetRows(FileRows rows, bool hits);
    void GoDown(std::uint32_t entryId);
    void HeaderClicked(int column);
    void OpenMenu(int row, const QPoint& at);
    void SaveSelected() const;

    FileListModel* model_;
    CDetailsView* details_;
    CIconView* icons_;
    CTHNTFSTreeView* treeView_ = nullptr;
    std::optional<std::uint32_t> filledFolder_; ///< until the rows are sorted or others come
    bool showsHits_ = false;
    int sortColumn_ = 0;
    bool sortAscending_ = true;
};

} // namespace thntfs
