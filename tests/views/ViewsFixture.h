#pragma once

#include "catalogue/CatalogueFixture.h"
#include "shell/ShellFixture.h"
#include "views/ContextMenu.h"
#include "views/THNTFSListView.h"
#include "views/THNTFSTreeView.h"

#include <QApplication>
#include <QMenu>
#include <QSplitter>
#include <QTest>

namespace thntfs::test {

inline constexpr std::uint32_t kRootId = 1;

/// Tree and list side by side, before a frame that remembers. Names come as texts with '|' between.
class ViewsTest : public CatalogueFixture {
protected:
    ViewsTest() {
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
    ~ViewsTest() override {
        SetPreviewWindowOpen(false);
        CloseMenu();
    }

    /// Ends the catalogue and shows it, " Root" in the list.
    void Show(const HandWritten& catalogue) {
        catalogue.Finish();
        Tree->FillTree();
        ShowInList(kRootId);
        Frame.Messages.clear();
    }
    void ShowInList(std::uint32_t entryId) {
        WM_LIST_SHOW_FOLDER.Send(List, entryId);
        RunEvents();
    }

    [[nodiscard]] QModelIndex Top() const { return Tree->model()->index(0, 0); }
    /// The folder at the end of a way down from " Root", the names with '/' between.
    [[nodiscard]] QModelIndex Item(const QString& way = {}) const {
        QModelIndex index = Below(Top(), QStringLiteral(" Root"));
        for (const QString& name : way.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
            index = Below(index, name);
        }
        return index;
    }
    [[nodiscard]] std::string ChildNames(const QModelIndex& parent) const {
        QStringList names;
        for (int row = 0; row < Tree->model()->rowCount(parent); ++row) {
            names.push_back(Tree->model()->index(row, 0, parent).data().toString());
        }
        return names.join(QLatin1Char('|')).toStdString();
    }

    // Places in an item of the tree, brought into view. The mark stands first, then icon and name.
    [[nodiscard]] QPoint OnMark(const QModelIndex& index) const { return InItem(index, 1, Indicator() / 2); }
    [[nodiscard]] QPoint OnIcon(const QModelIndex& index) const { return InItem(index, 3, Indicator() + 8); }
    [[nodiscard]] QPoint OnName(const QModelIndex& index) const {
        return InItem(index, 5, Indicator() + 16 + 4);
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
    /// Of the list's rows.
    [[nodiscard]] std::string Names() const {
        QStringList cells;
        for (int row = 0; row < List->RowCount(); ++row) {
            cells.push_back(Cell(row, 0));
        }
        return cells.join(QLatin1Char('|')).toStdString();
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
    static std::string OpenMenuText() {
        QString words;
        for (const QAction* action : OpenMenuActions()) {
            words +=
                action->text().remove(QLatin1Char('&')) + QLatin1String(action->isEnabled() ? " " : "* ");
        }
        return words.simplified().toStdString();
    }
    static void ChooseInMenu(const char* text) {
        auto* menu = static_cast<QMenu*>(QApplication::activePopupWidget());
        const QList<QAction*> actions = OpenMenuActions();
        const auto found = std::find_if(actions.begin(), actions.end(), [text](const QAction* action) {
            return action->text().remove(QLatin1Char('&')) == QLatin1String(text);
        });
        ASSERT_NE(found, actions.end()) << text;
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(*found).center());
        RunEvents();
    }
    static void CloseMenu() {
        if (QWidget* menu = QApplication::activePopupWidget()) {
            menu->close();
        }
    }

    TestFrame Frame;
    QSplitter Window;
    CTHNTFSTreeView* Tree = new CTHNTFSTreeView(&Window);
    CTHNTFSListView* List = new CTHNTFSListView(&Window);

private:
    [[nodiscard]] QModelIndex Below(const QModelIndex& parent, const QString& name) const {
        const QModelIndex first = Tree->model()->index(0, 0, parent);
        const auto found = Tree->model()->match(first, Qt::DisplayRole, name, 1, Qt::MatchExactly);
        EXPECT_EQ(found.size(), 1) << "no folder " << name.toStdString();
        return found.value(0);
    }
    static QList<QAction*> OpenMenuActions() {
        const QWidget* menu = QApplication::activePopupWidget();
        return menu == nullptr ? QList<QAction*>() : menu->actions();
    }
    [[nodiscard]] int Indicator() const { return Tree->style()->pixelMetric(QStyle::PM_IndicatorWidth); }
    [[nodiscard]] QPoint InItem(const QModelIndex& index, int margins, int beyond) const {
        Tree->scrollTo(index);
        const int margin = Tree->style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1;
        const QRect rect = Tree->visualRect(index);
        return {rect.left() + margins * margin + beyond, rect.center().y()};
    }
};

} // namespace thntfs::test
