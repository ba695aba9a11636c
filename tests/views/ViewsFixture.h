#pragma once

#include "catalogue/CatalogueFixture.h"
#include "shell/WindowMessages.h"
#include "support/desktop/BoxAnswers.h"
#include "views/ContextMenu.h"
#include "views/THNTFSListView.h"
#include "views/THNTFSTreeView.h"

#include <QApplication>
#include <QListView>
#include <QMenu>
#include <QSplitter>
#include <QTest>
#include <string>
#include <vector>

namespace thntfs::test {

/// Remembers what the views have to say.
class FrameOfRecord : public MessageTarget {
public:
    struct Message {
        std::uint32_t Number;
        std::uintptr_t WParam;
        std::uintptr_t LParam;
        bool operator==(const Message&) const = default;
    };

    FrameOfRecord() { SetMainWindow(this); }
    ~FrameOfRecord() override { SetMainWindow(nullptr); }

    std::intptr_t OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t lParam) override {
        Messages.push_back({message, wParam, lParam});
        return 0;
    }

    std::vector<Message> Messages;
};

/// A catalogue in the making. Folders are told by their nodes.
class CatalogueMaker {
public:
    CatalogueMaker() { EXPECT_EQ(CreateCatalogue(), 1); }

    static FolderIndexNode& Root() { return *Engine.Folders->FindOrAddFolder(5).Node; }
    static FolderIndexNode& Top() { return *Engine.Folders->FindOrAddFolder(0).Node; }

    FolderIndexNode& AddFolder(FolderIndexNode& parent, std::u16string_view name, bool live = true) {
        FolderIndexNode& node = *Engine.Folders->FindOrAddFolder(kFirstNumber + next_).Node;
        BeginFolderBlock(node);
        node.EntryId = next_;
        CatalogueEntry entry;
        entry.Flags = kFlagFolder | (live ? kFlagLive : 0);
        entry.BlockOffset = node.BlockOffset;
        AddEntry(parent, entry, name);
        return node;
    }

    std::uint32_t AddFile(FolderIndexNode& parent, std::u16string_view name, std::uint64_t size = 0) {
        CatalogueEntry entry;
        entry.Flags = kFlagLive;
        entry.Size = size;
        return AddEntry(parent, entry, name);
    }

    /// Gives the EntryId. Numbers that are 0 are set.
    std::uint32_t AddEntry(FolderIndexNode& parent, CatalogueEntry entry, std::u16string_view name) {
        entry.EntryId = next_;
        entry.RecordNumber = entry.RecordNumber == 0 ? kFirstNumber + next_ : entry.RecordNumber;
        entry.ParentNumber = entry.ParentNumber == 0 ? parent.RecordNumber : entry.ParentNumber;
        AppendEntry(entry, name);
        AddChild(parent, next_);
        return next_++;
    }

    /// Ends the writing and opens the catalogue for reading.
    void Finish() const {
        FinishCatalogue(next_);
        CloseCatalogue();
        EXPECT_EQ(OpenCatalogue(), 1);
    }

private:
    static constexpr std::uint32_t kFirstNumber = 100;
    std::uint32_t next_ = kFirstEntryId;
};

/// Tree and list side by side, before a frame that remembers.
class ViewsFixture : public CatalogueFixture {
protected:
    ViewsFixture() {
        Tree->SetListView(List);
        List->SetTreeView(Tree);
        Window.addWidget(Tree);
        Window.addWidget(List);
        Window.resize(1200, 600);
        Window.setSizes({300, 900});
        Window.show();
        QApplication::setActiveWindow(&Window);
        RunEvents();
    }
    ~ViewsFixture() override { SetPreviewWindowOpen(false); }

    void Fill() {
        Tree->FillTree();
        RunEvents();
        Frame.Messages.clear();
    }

    /// The item at the end of a way down from "#".
    [[nodiscard]] QModelIndex Item(const QStringList& way) const {
        QModelIndex index = Tree->model()->index(0, 0);
        for (const QString& name : way) {
            index = Below(index, name);
        }
        return index;
    }
    [[nodiscard]] QStringList ChildNames(const QModelIndex& parent) const {
        QStringList names;
        for (int row = 0; row < Tree->model()->rowCount(parent); ++row) {
            names.push_back(Tree->model()->index(row, 0, parent).data().toString());
        }
        return names;
    }

    // Places in an item of the tree, brought into view. The mark stands first, then icon and name.
    [[nodiscard]] QPoint OnMark(const QModelIndex& index) const {
        return InItem(index, Margin() + Indicator() / 2);
    }
    [[nodiscard]] QPoint OnIcon(const QModelIndex& index) const {
        return InItem(index, 3 * Margin() + Indicator() + 8);
    }
    [[nodiscard]] QPoint OnName(const QModelIndex& index) const {
        return InItem(index, 5 * Margin() + Indicator() + 16 + 4);
    }
    [[nodiscard]] QPoint BesideName(const QModelIndex& index) const {
        return InItem(index, Tree->visualRect(index).width() - 2);
    }
    void ClickTree(const QPoint& at, Qt::MouseButton button = Qt::LeftButton) const {
        QTest::mouseClick(Tree->viewport(), button, {}, at);
    }

    [[nodiscard]] QAbstractItemView* Rows() const {
        return static_cast<QAbstractItemView*>(List->currentWidget());
    }
    [[nodiscard]] QString Cell(int row, int column) const {
        return Rows()->model()->index(row, column).data().toString();
    }
    [[nodiscard]] QStringList Column(int column) const {
        QStringList cells;
        for (int row = 0; row < List->RowCount(); ++row) {
            cells.push_back(Cell(row, column));
        }
        return cells;
    }
    [[nodiscard]] QPoint OnRow(int row) const {
        return Rows()->visualRect(Rows()->model()->index(row, 0)).center();
    }
    void ClickRow(int row, Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers keys = {}) const {
        QTest::mouseClick(Rows()->viewport(), button, keys, OnRow(row));
    }
    void DoubleClickRow(int row) const {
        QTest::mouseDClick(Rows()->viewport(), Qt::LeftButton, {}, OnRow(row));
    }

    /// The context menu that is open, as "Save Preview* Search* Properties", a star after what is disabled;
    /// empty without one.
    static QString OpenMenuText() {
        QStringList words;
        for (const QAction* action : OpenMenuActions()) {
            if (!action->isSeparator()) {
                words.push_back(action->text().remove(QLatin1Char('&')) +
                                QLatin1String(action->isEnabled() ? "" : "*"));
            }
        }
        return words.join(QLatin1Char(' '));
    }
    static void ChooseInMenu(const QString& text) {
        auto* menu = static_cast<QMenu*>(QApplication::activePopupWidget());
        for (QAction* action : OpenMenuActions()) {
            if (action->text() == text) {
                QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
                return;
            }
        }
        ADD_FAILURE() << "no command " << text.toStdString();
    }
    static QList<QAction*> OpenMenuActions() {
        const QWidget* menu = QApplication::activePopupWidget();
        return menu == nullptr ? QList<QAction*>() : menu->actions();
    }
    static void CloseMenu() {
        if (QWidget* menu = QApplication::activePopupWidget()) {
            menu->close();
        }
    }

    FrameOfRecord Frame;
    QSplitter Window;
    CTHNTFSTreeView* Tree = new CTHNTFSTreeView(&Window);
    CTHNTFSListView* List = new CTHNTFSListView(&Window);

private:
    [[nodiscard]] QModelIndex Below(const QModelIndex& parent, const QString& name) const {
        for (int row = 0; row < Tree->model()->rowCount(parent); ++row) {
            const QModelIndex child = Tree->model()->index(row, 0, parent);
            if (child.data().toString() == name) {
                return child;
            }
        }
        ADD_FAILURE() << "no folder " << name.toStdString();
        return {};
    }
    [[nodiscard]] int Margin() const { return Tree->style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1; }
    [[nodiscard]] int Indicator() const { return Tree->style()->pixelMetric(QStyle::PM_IndicatorWidth); }
    [[nodiscard]] QPoint InItem(const QModelIndex& index, int x) const {
        Tree->scrollTo(index);
        const QRect rect = Tree->visualRect(index);
        return {rect.left() + x, rect.center().y()};
    }
};

} // namespace thntfs::test
