#pragma once

#include "shell/MessageTarget.h"
#include "views/FolderNodes.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>
#include <QTreeView>
#include <string>
#include <vector>

namespace thntfs {

class CTHNTFSListView;
class FolderDelegate;
class FolderTreeModel;

/// The folders of the catalogue. Its current folder is an idea of its own, which the selection alone doesn't
/// move. Orders from the user's menu go to the main frame.
class CTHNTFSTreeView : public QTreeView, public MessageTarget {
    Q_DECLARE_TR_FUNCTIONS(CTHNTFSTreeView)

public:
    explicit CTHNTFSTreeView(QWidget* parent = nullptr);

    /// The list beside it, null for none; not owned.
    void SetListView(CTHNTFSListView* listView) { listView_ = listView; }

    /// Where Shift+Tab moves the focus, null for the list. The caller keeps the widget, which may go away.
    void SetBackTabTarget(QWidget* target) { backTabTarget_ = target; }

    /// Fills the tree from the catalogue that is open, and shows the top in the list. May be called on the
    /// worker's thread, where the walk then runs, whatever ScanRunFlag says. A catalogue that can't be read
    /// has shown its box and gives what was found till then.
    void FillTree();

    /// Takes all folders away.
    void Clear();

    [[nodiscard]] bool IsEmpty() const;

    [[nodiscard]] bool HasMarks() const;
    /// EntryIds of the folders whose whole content is marked, without those within another one.
    [[nodiscard]] std::vector<std::uint32_t> CheckedEntries() const;

    /// EntryId of the current folder, 0 while there is none.
    [[nodiscard]] std::uint32_t CurrentEntry() const;

    /// False while the tree is empty.
    [[nodiscard]] bool CurrentHasParent() const;

    /// Makes the parent of the current folder current and shows it in the list. Without one, or during a
    /// list's fill, nothing happens.
    void GoToParent();

    /// A folder on the way to another one.
    struct Step {
        std::uint32_t EntryId;
        QString Name;
    };
    /// The folders on the way to a folder and itself, the outermost first, without the top and the root;
    /// empty where it isn't here.
    [[nodiscard]] std::vector<Step> WayTo(std::uint32_t entryId) const;

    /// Makes a folder current and shows it in the list. During a job or a list's fill nothing happens.
    void GoToFolder(std::uint32_t entryId);

    /// What stands before a name in its path, for the names in a folder: "/" in the root, nothing in the top.
    [[nodiscard]] std::u16string PathBefore(std::uint32_t entryId) const;

    /// The names of a folder and of those above it, with slashes between; empty where it isn't here.
    [[nodiscard]] QString PathOf(std::uint32_t entryId) const;

    std::intptr_t OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t lParam) override;

protected:
    bool viewportEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void drawBranches(QPainter* painter, const QRect& rect, const QModelIndex& index) const override;
    void initViewItemOption(QStyleOptionViewItem* option) const override;

private:
    enum class Part { None, Branch, Mark, Name };

    void SetUpLook();
    void FitColumn();
    void TakeFolders(FolderNodes& folders);
    void SelectChild(std::uint32_t entryId);
    void SelectFolder(std::uint32_t entryId);
    void GoTo(std::uint32_t place);
    void Select(std::uint32_t place);
    void ExpandWithParents(QModelIndex index);
    void ShowInList(std::uint32_t place);
    void ChooseSelected();
    void ToggleMark(std::uint32_t place);
    void TellMarkByKey();
    void OpenMenuOf(const QModelIndex& index, const QPoint& at);
    void OpenMenu(const QPoint& at);
    [[nodiscard]] QModelIndex RowAt(const QPoint& at) const;
    [[nodiscard]] QRect PartRect(QStyle::SubElement part, const QModelIndex& index) const;
    [[nodiscard]] Part PartAt(const QPoint& at, const QModelIndex& index) const;

    FolderTreeModel* model_;
    FolderDelegate* delegate_;
    QTimer fitTimer_; ///< the column waits for its width
    CTHNTFSListView* listView_ = nullptr;
    QPointer<QWidget> backTabTarget_;
};

} // namespace thntfs
