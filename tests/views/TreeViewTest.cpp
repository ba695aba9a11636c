#include "shell/DesktopState.h"
#include "shell/DlgWait.h"
#include "views/ViewsFixture.h"

#include <QAccessible>
#include <QHeaderView>
#include <QLocale>

namespace thntfs::test {

namespace {

bool IsBold(const QModelIndex& index) { return index.data(Qt::FontRole).value<QFont>().bold(); }
int MarkOf(const QModelIndex& index) { return index.data(Qt::CheckStateRole).toInt(); }

/// "#" over " Root" over docs (letters with one.txt and two.txt, Bills), photos and a deleted folder.
class TreeViewTest : public ViewsTest {
protected:
    TreeViewTest() {
        HandWritten catalogue;
        FolderIndexNode& docs = catalogue.AddFolder(HandWritten::Root(), 100, u"docs", true, 7);
        FolderIndexNode& letters = catalogue.AddFolder(docs, 101, u"letters");
        catalogue.AddFolder(docs, 102, u"Bills");
        FolderIndexNode& photos = catalogue.AddFolder(HandWritten::Root(), 103, u"Photos");
        catalogue.AddFolder(HandWritten::Root(), 104, u"gone", false);
        catalogue.AddFile(letters, u"one.txt", 100);
        catalogue.AddFile(letters, u"two.txt", 20);
        catalogue.AddFile(docs, u"notes.txt", 3);
        catalogue.AddFile(photos, u"sea.jpg", 5000);
        docsId = docs.EntryId;
        lettersId = letters.EntryId;
        photosId = photos.EntryId;
        Show(catalogue);
        ShowInList(kTopEntryId);
        Tree->expandAll();
        RunEvents();
    }

    [[nodiscard]] QModelIndex Docs() const { return Item(QStringLiteral("docs")); }
    [[nodiscard]] QModelIndex Letters() const { return Item(QStringLiteral("docs/letters")); }
    [[nodiscard]] QModelIndex Bills() const { return Item(QStringLiteral("docs/Bills")); }
    [[nodiscard]] QModelIndex Photos() const { return Item(QStringLiteral("Photos")); }

    void ExpectCurrent(const QModelIndex& index, std::uint32_t entryId) const {
        EXPECT_EQ(Tree->CurrentEntry(), entryId);
        EXPECT_EQ(Tree->currentIndex(), index);
        EXPECT_TRUE(IsBold(index));
    }
    static void ExpectMarked(std::uint32_t folders, std::uint32_t files, std::uint64_t bytes) {
        EXPECT_EQ(Desktop.MarkedFolders, folders);
        EXPECT_EQ(Desktop.MarkedFiles, files);
        EXPECT_EQ(Desktop.MarkedBytes, bytes);
    }

    std::uint32_t docsId = 0;
    std::uint32_t lettersId = 0;
    std::uint32_t photosId = 0;
};

TEST_F(TreeViewTest, FillShowsAllFoldersSortedAndTheTopInTheList) {
    List->SortList(3, false, SortKind::Date);
    Tree->Clear();
    EXPECT_TRUE(Tree->IsEmpty());
    Frame.Messages.clear();
    Reports.Progress.clear();
    TestWorker worker([this] {
        Engine.ScanRunFlag = 1;
        Tree->FillTree();
        Engine.ScanRunFlag = 0;
    });
    EXPECT_TRUE(worker.Finishes());
    EXPECT_EQ(ChildNames({}), "#");
    EXPECT_EQ(ChildNames(Item()), "docs|gone|Photos");
    EXPECT_EQ(ChildNames(Docs()), "Bills|letters");
    EXPECT_EQ(Frame.Messages, (SeenMessages{{WM_UPDATE_TOTALS, 1, 0}}));
    EXPECT_EQ(Desktop.TotalFiles, 4U);
    EXPECT_EQ(Desktop.TotalFolders, 6U);
    EXPECT_EQ(Desktop.TotalBytes, 5130U);
    EXPECT_EQ(Reports.Progress.front(), TestHost::Pair(2, 11));
    EXPECT_EQ(Reports.Progress.back(), TestHost::Pair(8, 11));
    EXPECT_GT(Reports.Gates, 0U);

    ExpectCurrent(Top(), 0);
    EXPECT_TRUE(Tree->isExpanded(Top()));
    EXPECT_TRUE(Tree->hasFocus());
    EXPECT_EQ(Names(), " Root");
    EXPECT_EQ(static_cast<QTreeView*>(Rows())->header()->sortIndicatorSection(), 0);
}

TEST_F(TreeViewTest, ClearedAndUnreadableItTakesOrdersAllTheSame) {
    Tree->Clear();
    EXPECT_FALSE(Tree->CurrentHasParent());
    EXPECT_EQ(Tree->CurrentEntry(), 0U);
    Tree->GoToParent();
    WM_TREE_SELECT_CHILD.Send(Tree, docsId);
    WM_TREE_SELECT_FOLDER.Send(Tree, docsId);
    QTest::keyClick(Tree, Qt::Key_Return);
    EXPECT_TRUE(Tree->IsEmpty());
    CloseCatalogue();
    Tree->FillTree();
    EXPECT_EQ(ChildNames(Top()), "") << "of no catalogue";
    EXPECT_FALSE(Reports.Boxes.empty());
    EXPECT_EQ(Desktop.TotalFolders, 0U);
}

TEST_F(TreeViewTest, ClickOnIconOrNameChoosesAndElsewhereDoesNothing) {
    const int boldWidth = Tree->sizeHintForIndex(Docs()).width();
    ClickTree(OnName(Docs()));
    ExpectCurrent(Docs(), docsId);
    EXPECT_EQ(Names(), "letters|Bills|notes.txt");
    EXPECT_FALSE(IsBold(Top()));
    EXPECT_EQ(Tree->sizeHintForIndex(Docs()).width(), boldWidth);
    for (int x = OnIcon(Photos()).x(); x <= OnName(Photos()).x(); ++x) { // no gap between them
        ClickTree(OnIcon(Docs()));
        ClickTree({x, OnName(Photos()).y()});
        ExpectCurrent(Photos(), photosId);
    }

    const int y = OnName(Docs()).y();
    ClickTree({Tree->visualRect(Docs()).right() - 1, y}); // beside the name
    ClickTree({Tree->viewport()->width() - 2, y});
    ClickTree(OnMark(Docs()));
    for (const int x : {2, Tree->visualRect(Letters()).left() - 5}) { // it has nothing to fold
        ClickTree({x, OnName(Letters()).y()});
    }
    ExpectCurrent(Photos(), photosId);
    EXPECT_EQ(Names(), "sea.jpg");

    for (const QPoint& at : {OnMark(Docs()), OnName(Docs())}) { // a quick second click
        ClickTree(at);
        QTest::mouseDClick(Tree->viewport(), Qt::LeftButton, {}, at);
    }
    EXPECT_EQ(MarkOf(Docs()), Qt::Checked);
    EXPECT_FALSE(Tree->isExpanded(Docs()));
}

TEST_F(TreeViewTest, ReturnMovesToTheSelectionWhichTheArrowKeysAloneDoNot) {
    QTest::keyClick(Tree, Qt::Key_Down);
    QTest::keyClick(Tree, Qt::Key_Down);
    EXPECT_EQ(Tree->CurrentEntry(), 0U);
    Tree->collapse(Docs());
    QTest::keyClick(Tree, Qt::Key_Return);
    ExpectCurrent(Docs(), docsId);
    EXPECT_TRUE(Tree->isExpanded(Docs()));
    EXPECT_EQ(List->RowCount(), 3);
    QTest::keyClick(Tree, Qt::Key_Tab);
    EXPECT_TRUE(Rows()->hasFocus());
    QTest::keyClick(Rows(), Qt::Key_Tab);
    EXPECT_TRUE(Tree->hasFocus());
}

TEST_F(TreeViewTest, FollowsTheListFindAndTheWayUp) {
    WM_TREE_SELECT_FOLDER.Send(Tree, docsId);
    Tree->collapseAll();
    WM_TREE_SELECT_CHILD.Send(Tree, lettersId);
    ExpectCurrent(Letters(), lettersId);
    EXPECT_TRUE(Tree->isExpanded(Docs()) && Tree->isExpanded(Item()));
    WM_TREE_SELECT_CHILD.Send(Tree, photosId);
    EXPECT_EQ(Tree->CurrentEntry(), lettersId);
    EXPECT_FALSE(IsBold(Letters()));

    Tree->GoToParent();
    ExpectCurrent(Docs(), docsId);
    EXPECT_EQ(List->RowCount(), 3);
    Tree->GoToParent();
    Tree->GoToParent();
    EXPECT_FALSE(Tree->CurrentHasParent());
    ExpectCurrent(Top(), 0);
    for (const std::uint32_t entryId : {photosId, 4711U}) {
        WM_TREE_SELECT_FOLDER.Send(Tree, entryId);
        ExpectCurrent(Photos(), photosId);
    }
}

TEST_F(TreeViewTest, MarksSpreadDownAndUpAndAreSummedUp) {
    EXPECT_EQ(MarkOf(Top()), Qt::Unchecked);
    ClickTree(OnMark(Letters()));
    EXPECT_EQ(MarkOf(Letters()), Qt::Checked);
    EXPECT_EQ(MarkOf(Docs()), Qt::PartiallyChecked);
    EXPECT_EQ(MarkOf(Top()), Qt::PartiallyChecked);
    EXPECT_EQ(Frame.Messages, (SeenMessages{{WM_UPDATE_TOTALS, 2, 1}}));
    ExpectMarked(1, 2, 120);

    ClickTree(OnMark(Bills()));
    EXPECT_EQ(MarkOf(Docs()), Qt::Checked);
    ExpectMarked(3, 3, 130);
    ClickTree(OnMark(Bills()));
    ClickTree(OnMark(Docs())); // partly checked: clears it and what is below
    EXPECT_EQ(MarkOf(Letters()), Qt::Unchecked);
    EXPECT_EQ(MarkOf(Top()), Qt::Unchecked);
    ExpectMarked(0, 0, 0);

    ClickTree(OnMark(Top()));
    EXPECT_EQ(MarkOf(Letters()), Qt::Checked);
    ExpectMarked(6, 4, 5130);
    EXPECT_EQ(Tree->CurrentEntry(), 0U);
    Tree->FillTree();
    EXPECT_EQ(MarkOf(Top()), Qt::Unchecked);
    ExpectMarked(0, 0, 0);
}

TEST_F(TreeViewTest, SpeaksOfWhatIsOnlySeenAndSpaceSetsMarks) {
    auto* tree = QAccessible::queryAccessibleInterface(Tree);
    EXPECT_EQ(tree->text(QAccessible::Name), QStringLiteral("Folders"));
    const auto spoken = [&](const QModelIndex& index) {
        Tree->setCurrentIndex(index);
        return tree->focusChild()->text(QAccessible::Name).toStdString();
    };
    EXPECT_EQ(spoken(Item(QStringLiteral("gone"))), "gone, deleted");
    EXPECT_EQ(spoken(Letters()), "letters");
    QTest::keyClick(Tree, Qt::Key_Space);
    ExpectMarked(1, 2, 120);
    EXPECT_TRUE(tree->focusChild()->state().checkable);
    EXPECT_TRUE(tree->focusChild()->state().checked);
    EXPECT_EQ(spoken(Docs()), "docs, partly marked");
}

TEST_F(TreeViewTest, ContextMenuActsOnTheFolderAndLeavesTheList) {
    const int end = Tree->viewport()->width() - 2;
    ClickTree({end, Tree->viewport()->height() - 2}, Qt::RightButton);
    EXPECT_EQ(OpenMenuText(), "");
    for (const int x : {end, OnMark(Photos()).x()}) {
        ClickTree({x, OnName(Photos()).y()}, Qt::RightButton);
        ExpectCurrent(Photos(), photosId);
        CloseMenu();
    }
    EXPECT_EQ(MarkOf(Photos()), Qt::Unchecked);
    ClickTree(OnName(Docs()), Qt::RightButton);
    ExpectCurrent(Docs(), docsId);
    EXPECT_EQ(Names(), " Root");
    EXPECT_EQ(OpenMenuText(), "Save Preview* Search Properties");
    EXPECT_EQ(static_cast<QMenu*>(QApplication::activePopupWidget())->defaultAction()->text(),
              QStringLiteral("&Save"));
    Engine.MarkedEntries = {1, 2, 3};
    ChooseInMenu("Save");
    EXPECT_EQ(Engine.MarkedEntries, std::vector<std::uint32_t>{docsId});

    QTest::keyClick(Tree, Qt::Key_Menu);
    EXPECT_EQ(List->RowCount(), 3);
    ChooseInMenu("Search");
    EXPECT_EQ(Frame.Messages, (SeenMessages{{WM_SAVE_REQUEST, docsId}, {WM_FIND_FROM_VIEW, docsId}}));
}

TEST_F(TreeViewTest, BusyProgramTakesNoOrders) {
    const QPoint onName = OnName(Docs());
    Tree->collapse(Docs());
    Tree->setCurrentIndex(Docs());
    for (const bool job : {true, false}) {
        Engine.ScanRunFlag = job ? 1 : 0;
        const auto wait = job ? nullptr : std::make_unique<CDlgWait>(&Window);
        ClickTree(onName);
        ClickTree(OnMark(Docs()));
        QTest::mouseDClick(Tree->viewport(), Qt::LeftButton, {}, onName);
        ClickTree(onName, Qt::RightButton);
        EXPECT_EQ(OpenMenuText(), "");
        for (const Qt::Key key : {Qt::Key_Menu, Qt::Key_Return, Qt::Key_Right, Qt::Key_Asterisk}) {
            QTest::keyClick(Tree, key);
        }
        EXPECT_EQ(Tree->CurrentEntry(), 0U);
        EXPECT_EQ(MarkOf(Docs()), Qt::Unchecked);
        EXPECT_FALSE(Tree->isExpanded(Docs()));
    }
    EXPECT_TRUE(Frame.Messages.empty());
    WM_TREE_SELECT_FOLDER.Send(Tree, docsId);
    const CDlgWait wait(&Window);
    Tree->GoToParent();
    EXPECT_EQ(Tree->CurrentEntry(), docsId);
}

TEST_F(ViewsTest, FoldersThatHoldEachOtherEndTheWalk) {
    HandWritten catalogue;
    FolderIndexNode& outer = catalogue.AddFolder(HandWritten::Root(), 100, u"outer");
    FolderIndexNode& inner = catalogue.AddFolder(outer, 101, u"inner");
    for (const std::uint32_t child : {outer.EntryId, inner.EntryId, 1U, 0xFFFFFFF0}) {
        AddChild(inner, child);
    }
    Show(catalogue);
    const QModelIndex last = Item(QStringLiteral("outer/inner"));
    EXPECT_EQ(ChildNames(last), "");
    EXPECT_EQ(Desktop.TotalFolders, 3U);
    Tree->expandAll();
    ClickTree(OnMark(last));
    EXPECT_EQ(Desktop.MarkedFolders, 3U);
}

TEST_F(ViewsTest, DeepestFolderCanBeShown) {
    HandWritten catalogue;
    FolderIndexNode* folder = &HandWritten::Root();
    for (std::uint32_t level = 0; level < 40000; ++level) {
        folder = &catalogue.AddFolder(*folder, 100 + level, u"d");
    }
    Show(catalogue);
    const std::uint32_t deepest = Desktop.TotalFolders; // the ids follow each other
    EXPECT_GT(deepest, 16000U);
    WM_TREE_SELECT_FOLDER.Send(Tree, deepest);
    RunEvents();
    EXPECT_EQ(Tree->CurrentEntry(), deepest);
    Tree->grab();
    Tree->GoToParent();
    EXPECT_EQ(Tree->CurrentEntry(), deepest - 1);
}

TEST_F(ViewsTest, OrderIgnoresCaseInAnyLanguageAndEqualNamesKeepTheirs) {
    HandWritten catalogue;
    std::uint32_t number = 100;
    for (const auto* name : {u"beta", u"Alpha", u"alpha", u"Gamma", u"ALPHA"}) {
        catalogue.AddFolder(HandWritten::Root(), number++, name);
    }
    catalogue.Finish();
    for (const QLocale& locale : {QLocale::c(), QLocale(QLocale::German)}) {
        QLocale::setDefault(locale);
        Tree->FillTree();
        EXPECT_EQ(ChildNames(Item()), "Alpha|alpha|ALPHA|beta|Gamma");
    }
    QLocale::setDefault(QLocale::system());
}

TEST_F(ViewsTest, NamesStayOneLineOfText) {
    HandWritten catalogue;
    FolderIndexNode& odd =
        catalogue.AddFolder(HandWritten::Root(), 100, u"a\nb\tc\u2028d\u0085e\u007F\u009B");
    const std::uint32_t oddId = odd.EntryId;
    catalogue.AddFile(odd, {std::initializer_list<char16_t>{u'x', 0xD800, u'y'}.begin(), 3});
    catalogue.AddFile(odd, u"");
    catalogue.AddFile(odd, std::u16string(5000, u'n'));
    Show(catalogue);
    EXPECT_EQ(ChildNames(Item()), "a\u240Ab\u2409c\u2424d\u2424e\u2421\uFFFD");
    WM_TREE_SELECT_FOLDER.Send(Tree, oddId);
    ShowInList(oddId);
    EXPECT_EQ(Names(), "x\uFFFDy||" + std::string(255, 'n'));
    EXPECT_EQ(Tree->visualRect(Tree->currentIndex()).height(), Tree->visualRect(Top()).height());
}

} // namespace

} // namespace thntfs::test
