#include "shell/DesktopState.h"
#include "shell/DlgWait.h"
#include "views/ViewsFixture.h"

#include <QAccessible>
#include <QLocale>
#include <thread>

namespace thntfs::test {

namespace {

using Message = FrameOfRecord::Message;

bool IsBold(const QModelIndex& index) { return index.data(Qt::FontRole).value<QFont>().bold(); }
int MarkOf(const QModelIndex& index) { return index.data(Qt::CheckStateRole).toInt(); }

/// "#" over " Root" over docs (letters with one.txt and two.txt, Bills), photos and a deleted folder.
class TreeViewTest : public ViewsFixture {
protected:
    TreeViewTest() {
        CatalogueMaker maker;
        FolderIndexNode& docs = maker.AddFolder(maker.Root(), u"docs");
        FolderIndexNode& letters = maker.AddFolder(docs, u"letters");
        maker.AddFolder(docs, u"Bills");
        FolderIndexNode& photos = maker.AddFolder(maker.Root(), u"Photos");
        maker.AddFolder(maker.Root(), u"gone", false);
        maker.AddFile(letters, u"one.txt", 100);
        maker.AddFile(letters, u"two.txt", 20);
        maker.AddFile(docs, u"notes.txt", 3);
        maker.AddFile(photos, u"sea.jpg", 5000);
        docsId = docs.EntryId;
        lettersId = letters.EntryId;
        photosId = photos.EntryId;
        maker.Finish();
        Fill();
        Tree->expandAll();
        RunEvents();
    }

    [[nodiscard]] QModelIndex Docs() const { return Item({root, QStringLiteral("docs")}); }
    [[nodiscard]] QModelIndex Letters() const {
        return Item({root, QStringLiteral("docs"), QStringLiteral("letters")});
    }
    [[nodiscard]] QModelIndex Bills() const {
        return Item({root, QStringLiteral("docs"), QStringLiteral("Bills")});
    }
    [[nodiscard]] QModelIndex Photos() const { return Item({root, QStringLiteral("Photos")}); }

    void ExpectCurrent(const QModelIndex& index, std::uint32_t entryId) const {
        EXPECT_EQ(Tree->CurrentEntry(), entryId);
        EXPECT_EQ(Tree->currentIndex(), index);
        EXPECT_TRUE(IsBold(index));
    }

    const QString root = QStringLiteral(" Root");
    std::uint32_t docsId = 0;
    std::uint32_t lettersId = 0;
    std::uint32_t photosId = 0;
};

TEST_F(TreeViewTest, FillShowsAllFoldersSortedAndTheTopInTheList) {
    Tree->Clear();
    Frame.Messages.clear();
    Reports.Progress.clear();
    std::thread worker([this] {
        Engine.ScanRunFlag = 1;
        Tree->FillTree();
        Engine.ScanRunFlag = 0;
    });
    EXPECT_TRUE(WaitUntil([this] { return !Tree->IsEmpty() && Engine.ScanRunFlag == 0; }));
    worker.join();

    EXPECT_EQ(ChildNames({}), QStringList{QStringLiteral("#")});
    EXPECT_EQ(ChildNames(Item({root})),
              QStringList({QStringLiteral("docs"), QStringLiteral("gone"), QStringLiteral("Photos")}));
    EXPECT_EQ(ChildNames(Docs()), QStringList({QStringLiteral("Bills"), QStringLiteral("letters")}));
    EXPECT_EQ(Frame.Messages, (std::vector<Message>{{WM_UPDATE_TOTALS, 1, 0}}));
    EXPECT_EQ(Desktop.TotalFiles, 4U);
    EXPECT_EQ(Desktop.TotalFolders, 6U);
    EXPECT_EQ(Desktop.TotalBytes, 5123U);
    EXPECT_EQ(Reports.Progress.front(), TestHost::Pair(2, 11));
    EXPECT_EQ(Reports.Progress.back(), TestHost::Pair(8, 11));
    EXPECT_GT(Reports.Gates, 0U);

    ExpectCurrent(Item({}), 0);
    EXPECT_TRUE(Tree->isExpanded(Item({})));
    EXPECT_TRUE(Tree->hasFocus());
    EXPECT_EQ(Column(0), QStringList{root});
}

TEST_F(TreeViewTest, ClearEmptiesItAndNothingIsCurrent) {
    Tree->Clear();
    EXPECT_TRUE(Tree->IsEmpty());
    EXPECT_FALSE(Tree->CurrentHasParent());
    EXPECT_EQ(Tree->CurrentEntry(), 0U);
    Tree->GoToParent();
    WM_TREE_SELECT_CHILD.Send(Tree, docsId);
    WM_TREE_SELECT_FOLDER.Send(Tree, docsId);
    QTest::keyClick(Tree, Qt::Key_Return);
    EXPECT_TRUE(Tree->IsEmpty());
}

TEST_F(TreeViewTest, CatalogueThatIsMissingOrCannotBeReadShowsItsTop) {
    CloseCatalogue();
    Tree->FillTree();
    EXPECT_EQ(ChildNames(Item({})), QStringList());
    EXPECT_FALSE(Reports.Boxes.empty());
    EXPECT_EQ(Desktop.TotalFolders, 0U);
}

TEST_F(TreeViewTest, ClickOnIconOrNameChoosesAndElsewhereDoesNothing) {
    ClickTree(OnName(Docs()));
    ExpectCurrent(Docs(), docsId);
    EXPECT_EQ(Column(0),
              QStringList({QStringLiteral("letters"), QStringLiteral("Bills"), QStringLiteral("notes.txt")}));
    EXPECT_FALSE(IsBold(Item({})));
    for (int x = OnIcon(Photos()).x(); x <= OnName(Photos()).x(); ++x) { // no gap between them
        ClickTree(OnIcon(Docs()));
        ClickTree({x, OnName(Photos()).y()});
        ExpectCurrent(Photos(), photosId);
    }

    ClickTree(BesideName(Docs()));
    ClickTree(QPoint(Tree->viewport()->width() - 2, OnName(Docs()).y()));
    ClickTree(OnMark(Docs()));
    ClickTree(QPoint(2, OnName(Letters()).y()));
    ExpectCurrent(Photos(), photosId);
    EXPECT_EQ(Column(0), QStringList{QStringLiteral("sea.jpg")});
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
    EXPECT_TRUE(Tree->isExpanded(Docs()) && Tree->isExpanded(Item({root})));

    WM_TREE_SELECT_CHILD.Send(Tree, photosId);
    EXPECT_EQ(Tree->CurrentEntry(), lettersId);
    EXPECT_FALSE(IsBold(Letters()));

    Tree->GoToParent();
    ExpectCurrent(Docs(), docsId);
    EXPECT_EQ(List->RowCount(), 3);
    Tree->GoToParent();
    Tree->GoToParent();
    EXPECT_FALSE(Tree->CurrentHasParent());
    ExpectCurrent(Item({}), 0);

    WM_TREE_SELECT_FOLDER.Send(Tree, photosId);
    ExpectCurrent(Photos(), photosId);
    WM_TREE_SELECT_FOLDER.Send(Tree, 4711);
    ExpectCurrent(Photos(), photosId);
}

TEST_F(TreeViewTest, MarksSpreadDownAndUpAndAreSummedUp) {
    EXPECT_EQ(MarkOf(Item({})), Qt::Unchecked);
    ClickTree(OnMark(Letters()));
    EXPECT_EQ(MarkOf(Letters()), Qt::Checked);
    EXPECT_EQ(MarkOf(Docs()), Qt::PartiallyChecked);
    EXPECT_EQ(MarkOf(Item({})), Qt::PartiallyChecked);
    EXPECT_EQ(Frame.Messages, (std::vector<Message>{{WM_UPDATE_TOTALS, 2, 1}}));
    EXPECT_EQ(Desktop.MarkedFolders, 1U);
    EXPECT_EQ(Desktop.MarkedFiles, 2U);
    EXPECT_EQ(Desktop.MarkedBytes, 120U);

    ClickTree(OnMark(Bills()));
    EXPECT_EQ(MarkOf(Docs()), Qt::Checked);
    EXPECT_EQ(Desktop.MarkedBytes, 123U);
    ClickTree(OnMark(Bills()));
    ClickTree(OnMark(Docs())); // partly checked: clears it and what is below
    EXPECT_EQ(MarkOf(Letters()), Qt::Unchecked);
    EXPECT_EQ(MarkOf(Item({})), Qt::Unchecked);
    EXPECT_EQ(Desktop.MarkedFolders, 0U);

    ClickTree(OnMark(Item({})));
    EXPECT_EQ(MarkOf(Letters()), Qt::Checked);
    EXPECT_EQ(Desktop.MarkedFolders, Desktop.TotalFolders);
    EXPECT_EQ(Desktop.MarkedFiles, Desktop.TotalFiles);
    EXPECT_EQ(Desktop.MarkedBytes, Desktop.TotalBytes);
    EXPECT_EQ(Tree->CurrentEntry(), 0U);

    Fill();
    EXPECT_EQ(MarkOf(Item({})), Qt::Unchecked);
    EXPECT_EQ(Desktop.MarkedFiles, 0U);
}

TEST_F(TreeViewTest, SpeaksOfWhatIsOnlySeenAndSpaceSetsMarks) {
    auto* tree = QAccessible::queryAccessibleInterface(Tree);
    EXPECT_EQ(tree->text(QAccessible::Name), QStringLiteral("Folders"));
    const auto spoken = [&](const QModelIndex& index) {
        Tree->setCurrentIndex(index);
        return tree->focusChild()->text(QAccessible::Name);
    };
    EXPECT_EQ(spoken(Item({root, QStringLiteral("gone")})), QStringLiteral("gone, deleted"));
    EXPECT_EQ(spoken(Letters()), QStringLiteral("letters"));
    QTest::keyClick(Tree, Qt::Key_Space);
    EXPECT_EQ(Desktop.MarkedFiles, 2U);
    EXPECT_TRUE(tree->focusChild()->state().checkable);
    EXPECT_TRUE(tree->focusChild()->state().checked);
    EXPECT_EQ(spoken(Docs()), QStringLiteral("docs, partly marked"));
}

TEST_F(TreeViewTest, QuickSecondClickOnAMarkCountsAndOnANameFolds) {
    for (const QPoint& at : {OnMark(Docs()), OnName(Docs())}) {
        ClickTree(at);
        QTest::mouseDClick(Tree->viewport(), Qt::LeftButton, {}, at);
    }
    EXPECT_EQ(MarkOf(Docs()), Qt::Unchecked);
    EXPECT_FALSE(Tree->isExpanded(Docs()));
}

TEST_F(TreeViewTest, ContextMenuActsOnTheFolderAndLeavesTheList) {
    const int end = Tree->viewport()->width() - 2;
    ClickTree({end, Tree->viewport()->height() - 2}, Qt::RightButton);
    EXPECT_EQ(OpenMenuText(), QString());
    ClickTree({end, OnName(Photos()).y()}, Qt::RightButton);
    ExpectCurrent(Photos(), photosId);
    CloseMenu();
    ClickTree(OnName(Docs()), Qt::RightButton);
    ExpectCurrent(Docs(), docsId);
    EXPECT_EQ(Column(0), QStringList{root});
    EXPECT_EQ(OpenMenuText(), QStringLiteral("Save Preview* Search Properties"));
    EXPECT_EQ(static_cast<QMenu*>(QApplication::activePopupWidget())->defaultAction()->text(),
              QStringLiteral("&Save"));
    Engine.MarkedEntries = {1, 2, 3};
    ChooseInMenu(QStringLiteral("&Save"));
    EXPECT_EQ(Engine.MarkedEntries, std::vector<std::uint32_t>{docsId});

    QTest::keyClick(Tree, Qt::Key_Menu);
    EXPECT_EQ(List->RowCount(), 3);
    ChooseInMenu(QStringLiteral("S&earch"));
    QTest::keyClick(Tree, Qt::Key_Menu);
    ChooseInMenu(QStringLiteral("P&roperties"));
    EXPECT_EQ(Frame.Messages, (std::vector<Message>{{WM_SAVE_REQUEST, docsId, 0},
                                                    {WM_FIND_FROM_VIEW, docsId, 0},
                                                    {WM_SHOW_PROPERTIES, docsId, 0}}));
}

TEST_F(TreeViewTest, BusyProgramTakesNoOrders) {
    const QPoint onName = OnName(Docs());
    const QPoint onMark = OnMark(Docs());
    Tree->collapse(Docs());
    Tree->setCurrentIndex(Docs());
    for (const bool job : {true, false}) {
        Engine.ScanRunFlag = job ? 1 : 0;
        const auto wait = job ? nullptr : std::make_unique<CDlgWait>(&Window);
        ClickTree(onName);
        ClickTree(onMark);
        QTest::mouseDClick(Tree->viewport(), Qt::LeftButton, {}, onName);
        ClickTree(onName, Qt::RightButton);
        EXPECT_EQ(OpenMenuText(), QString());
        for (const Qt::Key key :
             {Qt::Key_Menu, Qt::Key_Return, Qt::Key_Right, Qt::Key_Plus, Qt::Key_Asterisk}) {
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

/// Catalogues that each test makes for itself.
class OddTreeTest : public ViewsFixture {};

TEST_F(OddTreeTest, FoldersThatHoldEachOtherEndTheWalk) {
    CatalogueMaker maker;
    FolderIndexNode& outer = maker.AddFolder(maker.Root(), u"outer");
    FolderIndexNode& inner = maker.AddFolder(outer, u"inner");
    AddChild(inner, outer.EntryId);
    AddChild(inner, inner.EntryId);
    AddChild(inner, 1);
    AddChild(inner, 0xFFFFFFF0);
    maker.Finish();
    Fill();
    const QModelIndex last =
        Item({QStringLiteral(" Root"), QStringLiteral("outer"), QStringLiteral("inner")});
    EXPECT_EQ(ChildNames(last), QStringList());
    EXPECT_EQ(Desktop.TotalFolders, 3U);
    Tree->expandAll();
    ClickTree(OnMark(last));
    EXPECT_EQ(Desktop.MarkedFolders, 3U);
}

TEST_F(OddTreeTest, DeepestFolderCanBeShown) {
    constexpr int kLevels = 40000;
    CatalogueMaker maker;
    FolderIndexNode* folder = &maker.Root();
    for (int level = 0; level < kLevels; ++level) {
        folder = &maker.AddFolder(*folder, u"d");
    }
    maker.Finish();
    Fill();
    const std::uint32_t deepest = Desktop.TotalFolders; // the ids follow each other
    EXPECT_GT(deepest, 16000U);
    WM_TREE_SELECT_FOLDER.Send(Tree, deepest);
    RunEvents();
    EXPECT_EQ(Tree->CurrentEntry(), deepest);
    Tree->grab();
    Tree->GoToParent();
    EXPECT_EQ(Tree->CurrentEntry(), deepest - 1);
}

TEST_F(OddTreeTest, OrderIgnoresCaseInAnyLanguageAndEqualNamesKeepTheirs) {
    CatalogueMaker maker;
    for (const auto* name : {u"beta", u"Alpha", u"alpha", u"Gamma", u"ALPHA"}) {
        maker.AddFolder(maker.Root(), name);
    }
    maker.Finish();
    for (const QLocale& locale : {QLocale::c(), QLocale(QLocale::German)}) {
        QLocale::setDefault(locale);
        Fill();
        EXPECT_EQ(ChildNames(Item({QStringLiteral(" Root")})).join(QLatin1Char(' ')),
                  QStringLiteral("Alpha alpha ALPHA beta Gamma"));
    }
    QLocale::setDefault(QLocale::system());
}

TEST_F(OddTreeTest, NamesStayOneLineOfText) {
    CatalogueMaker maker;
    FolderIndexNode& odd = maker.AddFolder(maker.Root(), u"a\nb\tc\u2028d\u0085e\u007F\u009B");
    const std::uint32_t oddId = odd.EntryId;
    const char16_t alone[] = {u'x', 0xD800, u'y'};
    maker.AddFile(odd, {alone, 3});
    maker.AddFile(odd, u"");
    maker.AddFile(odd, std::u16string(5000, u'n'));
    maker.Finish();
    Fill();
    const QString name = QString::fromUtf8("a\u240Ab\u2409c\u2424d\u2424e\u2421\uFFFD");
    ASSERT_EQ(ChildNames(Item({QStringLiteral(" Root")})), QStringList{name});
    WM_TREE_SELECT_FOLDER.Send(Tree, oddId);
    RunEvents();
    ClickTree(OnName(Tree->currentIndex()));
    EXPECT_EQ(Cell(0, 0), QString::fromUtf8("x\uFFFDy"));
    EXPECT_EQ(Cell(1, 0), QString());
    EXPECT_EQ(Cell(2, 0).size(), 255);
    EXPECT_EQ(Tree->visualRect(Tree->currentIndex()).height(), Tree->visualRect(Item({})).height());
}

} // namespace

} // namespace thntfs::test
