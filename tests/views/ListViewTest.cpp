#include "platform/files/PagedFile.h"
#include "shell/DesktopState.h"
#include "shell/DlgWait.h"
#include "views/ViewsFixture.h"

#include <QAccessible>
#include <QHeaderView>

namespace thntfs::test {

namespace {

using Message = FrameOfRecord::Message;

constexpr std::uint16_t DosDate(int day, int month, int year) {
    return static_cast<std::uint16_t>((year - 1980) << 9 | month << 5 | day);
}

/// " Root" with a file before its folders, so that the order in the catalogue is none of those shown.
class ListViewTest : public ViewsFixture {
protected:
    ListViewTest() {
        CatalogueMaker maker;
        const std::uint32_t file = maker.AddEntry(maker.Root(), Report(), u"report.doc");
        FolderIndexNode& music = maker.AddFolder(maker.Root(), u"music");
        maker.AddEntry(maker.Root(), Erased(), u"Alpha.tmp");
        FolderIndexNode& box = maker.AddFolder(maker.Root(), u"box", false);
        maker.AddFile(music, u"song.mp3", 77);
        maker.AddFolder(music, u"empty");
        fileId = file;
        musicId = music.EntryId;
        boxId = box.EntryId;
        maker.Finish();
        Fill();
        WM_TREE_SELECT_FOLDER.Send(Tree, kRootId);
        WM_LIST_SHOW_FOLDER.Send(List, kRootId);
        RunEvents();
    }
    ~ListViewTest() override { CloseMenu(); }

    static CatalogueEntry Report() {
        CatalogueEntry entry;
        entry.Size = 5'000'000'000;
        entry.RecordNumber = 99;
        entry.ParentNumber = 5;
        entry.AccessedDate = DosDate(7, 3, 2009);
        entry.CreatedDate = DosDate(31, 12, 1999);
        entry.Flags = kFlagLive;
        return entry;
    }
    static CatalogueEntry Erased() {
        CatalogueEntry entry;
        entry.Size = 12;
        entry.RecordNumber = 1000;
        entry.ParentNumber = 40;
        entry.AccessedDate = DosDate(8, 1, 2010);
        return entry;
    }

    void ClickHeader(int column) const {
        const auto* header = static_cast<QTreeView*>(Rows())->header();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          {header->sectionViewportPosition(column) + header->sectionSize(column) / 2, 5});
    }
    [[nodiscard]] QString Names() const { return Column(0).join(QLatin1Char(' ')); }
    void Press(Qt::Key key) const { QTest::keyClick(Rows(), key); }

    static constexpr std::uint32_t kRootId = 1;
    std::uint32_t fileId = 0;
    std::uint32_t musicId = 0;
    std::uint32_t boxId = 0;
};

TEST_F(ListViewTest, FoldersComeFirstEachGroupAsInTheCatalogue) {
    EXPECT_EQ(Names(), QStringLiteral("music box report.doc Alpha.tmp"));
    const auto row = [this](int at) {
        QStringList cells;
        for (int column = 0; column < 7; ++column) {
            cells.push_back(Cell(at, column));
        }
        return cells.join(QLatin1Char('|'));
    };
    EXPECT_EQ(row(0), QStringLiteral("music|0|Folder|||103|5"));
    EXPECT_EQ(row(2), QStringLiteral("report.doc|5000000000|File|07-03-2009|31-12-1999|99|5"));
    EXPECT_EQ(row(3), QStringLiteral("Alpha.tmp|12|File|08-01-2010||1000|40"));

    const auto* header = static_cast<QTreeView*>(Rows())->header();
    EXPECT_EQ(header->model()->headerData(1, Qt::Horizontal).toString(), QStringLiteral("Size in Bytes"));
    EXPECT_EQ(header->length(), Rows()->viewport()->width());
    Window.resize(900, 500);
    RunEvents();
    EXPECT_EQ(header->length(), Rows()->viewport()->width());
    for (int column = 0; column < header->count(); ++column) {
        EXPECT_GE(header->sectionSize(column), header->sectionSizeHint(column)) << column; // no title is cut
    }
}

TEST_F(ListViewTest, IconViewsGiveEachNameItsCellAndSpeak) {
    CloseCatalogue();
    CatalogueMaker maker;
    maker.AddFile(maker.Root(), u"a");
    maker.AddEntry(maker.Root(), Erased(), u"<b>a longer name</b>");
    maker.Finish();
    for (const std::uint32_t mode : {60000U, 60001U, 60002U}) {
        List->SetViewMode(mode);
        WM_LIST_SHOW_FOLDER.Send(List, kRootId);
        RunEvents();
        for (int row = 0; row < 2; ++row) {
            const auto* view = static_cast<QListView*>(Rows());
            EXPECT_EQ(view->visualRect(view->model()->index(row, 0)).size(), view->gridSize()) << mode;
        }
    }
    const QModelIndex second = Rows()->model()->index(1, 0);
    EXPECT_TRUE(second.data(Qt::ToolTipRole).toString().contains(QStringLiteral("&lt;b&gt;a longer name")));
    Rows()->setCurrentIndex(second);
    auto* spoken = QAccessible::queryAccessibleInterface(Rows());
    EXPECT_EQ(spoken->text(QAccessible::Name), QStringLiteral("Content of the folder"));
    EXPECT_EQ(spoken->focusChild()->text(QAccessible::Name), QStringLiteral("<b>a longer name</b>, deleted"));
}

TEST_F(ListViewTest, EntriesOfOneFolderComeOnceAndBrokenOnesNotAtAll) {
    CloseCatalogue();
    CatalogueMaker maker;
    const std::uint32_t file = maker.AddFile(maker.Root(), u"once");
    AddChild(maker.Root(), file);
    AddChild(maker.Root(), 0x7FFFFFFF);
    maker.Finish();
    WM_LIST_SHOW_FOLDER.Send(List, kRootId);
    EXPECT_EQ(Names(), QStringLiteral("once"));
    CloseCatalogue();
    WM_LIST_SHOW_FOLDER.Send(List, kRootId);
    EXPECT_TRUE(List->IsEmpty());
    EXPECT_EQ(Desktop.WaitDialog, nullptr);
    EXPECT_EQ(Reports.Boxes.size(), 1U);
}

TEST_F(ListViewTest, UnreadableChainLeavesTheListEmptyAndTheProgramIdle) {
    Engine.TreeFile.reset();
    WM_LIST_SHOW_FOLDER.Send(List, kRootId);
    EXPECT_TRUE(List->IsEmpty());
    EXPECT_EQ(Desktop.WaitDialog, nullptr);
    EXPECT_EQ(Reports.Boxes.size(), 1U);
}

TEST_F(ListViewTest, HeaderSortsByTheKindOfItsColumnAndTurnsAtASecondClick) {
    const std::vector<std::pair<int, QString>> orders{
        {1, QStringLiteral("music box Alpha.tmp report.doc")}, // 0 0 12 5000000000
        {2, QStringLiteral("report.doc Alpha.tmp music box")},
        {3, QStringLiteral("music box report.doc Alpha.tmp")}, // by year, not by day
        {4, QStringLiteral("music box Alpha.tmp report.doc")},
        {5, QStringLiteral("Alpha.tmp music box report.doc")}, // as text: 1000 103 105 99
        {6, QStringLiteral("music box report.doc Alpha.tmp")}, // as a number: 5 40
        {0, QStringLiteral("Alpha.tmp box music report.doc")},
    };
    const auto* header = static_cast<QTreeView*>(Rows())->header();
    for (const auto& [column, order] : orders) {
        WM_LIST_SHOW_FOLDER.Send(List, kRootId);
        ClickHeader(column);
        EXPECT_EQ(Names(), order) << "column " << column;
        EXPECT_EQ(header->sortIndicatorSection(), column);
    }
    ClickHeader(0);
    EXPECT_EQ(Names(), QStringLiteral("report.doc music box Alpha.tmp"));
    EXPECT_EQ(header->sortIndicatorOrder(), Qt::DescendingOrder);
    ClickHeader(3); // another column keeps the header's direction
    EXPECT_EQ(Cell(0, 0), QStringLiteral("Alpha.tmp"));

    WM_LIST_SHOW_FOLDER.Send(List, kRootId);
    EXPECT_EQ(Names(), QStringLiteral("music box report.doc Alpha.tmp"));
    EXPECT_EQ(header->sortIndicatorSection(), 3);
    List->Clear();
    ClickHeader(1);
    EXPECT_EQ(header->sortIndicatorSection(), 3);
}

TEST_F(ListViewTest, SelectedEntriesStaySelectedThroughASort) {
    ClickRow(0);
    ClickRow(3, Qt::LeftButton, Qt::ControlModifier);
    List->SortList(0, true, SortKind::Text);
    ClickRow(2, Qt::RightButton);
    ChooseInMenu(QStringLiteral("&Save"));
    EXPECT_EQ(Engine.MarkedEntries, (std::vector<std::uint32_t>{fileId + 2, musicId}));
}

TEST_F(ListViewTest, DoubleClickAndReturnGoDownIntoFoldersOnly) {
    DoubleClickRow(2);
    EXPECT_EQ(List->RowCount(), 4);
    ClickRow(0);
    DoubleClickRow(0);
    EXPECT_EQ(Names(), QStringLiteral("empty song.mp3"));
    EXPECT_EQ(Tree->CurrentEntry(), musicId);
    ClickRow(0);
    Press(Qt::Key_Return);
    EXPECT_TRUE(List->IsEmpty());
    EXPECT_EQ(Tree->currentIndex().data().toString(), QStringLiteral("empty"));
    Press(Qt::Key_Return);
    Press(Qt::Key_Menu);
    QTest::mouseClick(Rows()->viewport(), Qt::RightButton, {}, {50, 10});
    EXPECT_EQ(OpenMenuText(), QString());
    Tree->GoToParent();
    EXPECT_EQ(List->RowCount(), 2);
}

TEST_F(ListViewTest, ContextMenuFitsTheRowAndTheSelection) {
    ClickRow(2, Qt::RightButton);
    EXPECT_EQ(OpenMenuText(), QStringLiteral("Save Preview Search* Properties"));
    ChooseInMenu(QStringLiteral("&Preview"));
    SetPreviewWindowOpen(true);
    ClickRow(2, Qt::RightButton);
    EXPECT_EQ(OpenMenuText(), QStringLiteral("Save Preview* Search* Properties"));
    ChooseInMenu(QStringLiteral("P&roperties"));
    ClickRow(1);
    Press(Qt::Key_Menu);
    EXPECT_EQ(OpenMenuText(), QStringLiteral("Save Preview* Search Properties"));
    ChooseInMenu(QStringLiteral("S&earch"));
    Press(Qt::Key_Down);
    Rows()->selectAll();
    ClickRow(1, Qt::RightButton);
    EXPECT_EQ(OpenMenuText(), QStringLiteral("Save Preview* Search* Properties*"));
    ChooseInMenu(QStringLiteral("&Save"));
    EXPECT_EQ(Engine.MarkedEntries, (std::vector<std::uint32_t>{musicId, boxId, fileId, fileId + 2}));
    EXPECT_EQ(Frame.Messages, (std::vector<Message>{{WM_SHOW_PREVIEW, fileId, 0},
                                                    {WM_SHOW_PROPERTIES, fileId, 0},
                                                    {WM_FIND_FROM_VIEW, boxId, 0},
                                                    {WM_SAVE_REQUEST, 0, 0}}));
}

TEST_F(ListViewTest, BusyProgramTakesNoClicksAndNoOrders) {
    ClickRow(1);
    for (const bool job : {true, false}) {
        Engine.ScanRunFlag = job ? 1 : 0;
        const auto wait = job ? nullptr : std::make_unique<CDlgWait>(&Window);
        ClickRow(0);
        DoubleClickRow(0);
        ClickRow(0, Qt::RightButton);
        Press(Qt::Key_Menu);
        Press(Qt::Key_Return);
        EXPECT_EQ(OpenMenuText(), QString());
        EXPECT_EQ(List->RowCount(), 4);
        const QModelIndexList selected = Rows()->selectionModel()->selectedRows();
        ASSERT_EQ(selected.size(), 1);
        EXPECT_EQ(selected.front().row(), 1);
    }
}

TEST_F(ListViewTest, EveryViewModeShowsTheRowsAndTakesTheSameOrders) {
    ClickRow(1);
    for (const std::uint32_t mode : {60000U, 60001U, 60002U}) {
        QApplication::setActiveWindow(&Window);
        List->setFocus();
        List->SetViewMode(mode);
        RunEvents();
        auto* icons = dynamic_cast<QListView*>(Rows());
        ASSERT_NE(icons, nullptr);
        EXPECT_EQ(icons->iconSize().width(), mode == 60000 ? 32 : 16);
        EXPECT_TRUE(icons->hasFocus());
        EXPECT_EQ(icons->selectionModel()->selectedRows().front().row(), 1);
        const bool across = OnRow(1).y() == OnRow(0).y();
        EXPECT_EQ(across, mode != 60002);
        ClickRow(0, Qt::RightButton);
        EXPECT_EQ(OpenMenuText(), QStringLiteral("Save Preview* Search Properties"));
        CloseMenu();
        ClickRow(0);
        Press(Qt::Key_Return);
        EXPECT_EQ(Tree->CurrentEntry(), musicId);
        Tree->GoToParent();
        RunEvents();
        ClickRow(1);
    }
    List->setFocus();
    List->SetViewMode(60003);
    EXPECT_NE(dynamic_cast<QTreeView*>(Rows()), nullptr);
    EXPECT_TRUE(Rows()->hasFocus());
}

} // namespace

} // namespace thntfs::test
