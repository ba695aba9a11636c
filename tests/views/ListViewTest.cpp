#include "catalogue/Conditions.h"
#include "platform/files/PagedFile.h"
#include "shell/DesktopState.h"
#include "shell/DlgWait.h"
#include "views/ViewsFixture.h"

#include <QAccessible>
#include <QHeaderView>
#include <QListView>
#include <QScrollBar>

namespace thntfs::test {

namespace {

const std::string kCopies = " Copy Names Ctrl+C Copy Paths Ctrl+Shift+C";

constexpr std::uint16_t DosDate(int day, int month, int year) {
    return static_cast<std::uint16_t>((year - 1980) << 9 | month << 5 | day);
}

/// " Root" with a file before its folders, so that the order in the catalogue is none of those shown.
class ListViewTest : public ViewsTest {
protected:
    ListViewTest() {
        HandWritten catalogue;
        const CatalogueEntry report{.Size = 5'000'000'000,
                                    .RecordNumber = 99,
                                    .Flags = kFlagLive,
                                    .CreatedDate = DosDate(31, 12, 1999),
                                    .AccessedDate = DosDate(7, 3, 2009)};
        const CatalogueEntry erased{
            .Size = 12, .RecordNumber = 1000, .ParentNumber = 40, .AccessedDate = DosDate(8, 1, 2010)};
        fileId = catalogue.AddEntry(HandWritten::Root(), report, u"report.doc");
        FolderIndexNode& music = catalogue.AddFolder(HandWritten::Root(), 103, u"music");
        catalogue.AddEntry(HandWritten::Root(), erased, u"Alpha.tmp");
        boxId = catalogue.AddFolder(HandWritten::Root(), 105, u"box", false, 7).EntryId;
        catalogue.AddFile(music, u"song.mp3", 77);
        catalogue.AddFolder(music, 107, u"empty");
        musicId = music.EntryId;
        SetCondition(fileId + 2, 62);
        Show(catalogue);
        WM_TREE_SELECT_FOLDER.Send(Tree, kRootId);
    }

    [[nodiscard]] const QHeaderView& Header() const { return *static_cast<QTreeView*>(Rows())->header(); }
    void ClickHeader(int column) const {
        QTest::mouseClick(Header().viewport(), Qt::LeftButton, {},
                          {Header().sectionViewportPosition(column) + Header().sectionSize(column) / 2, 5});
    }
    void Press(Qt::Key key) const { QTest::keyClick(Rows(), key); }

    std::uint32_t fileId = 0;
    std::uint32_t musicId = 0;
    std::uint32_t boxId = 0;
};

TEST_F(ListViewTest, FoldersComeFirstEachGroupAsInTheCatalogue) {
    EXPECT_EQ(Names(), "music|box|report.doc|Alpha.tmp");
    const auto row = [this](int at) {
        std::string cells;
        for (int column = 0; column < 8; ++column) {
            cells += Cell(at, column).toStdString() + "|";
        }
        return cells;
    };
    EXPECT_EQ(row(1), "box|0|Folder|||105|5||");
    EXPECT_EQ(row(2), "report.doc|5000000000|File|07-03-2009|31-12-1999|99|5||");
    EXPECT_EQ(row(3), "Alpha.tmp|12|File|08-01-2010||1000|40|partly 62 %|");

    EXPECT_EQ(Header().model()->headerData(1, Qt::Horizontal).toString(), QStringLiteral("Size in Bytes"));
    for (const int width : {1200, 1100}) {
        Window.resize(width, 500);
        RunEvents();
        EXPECT_EQ(Header().length(), Rows()->viewport()->width());
        for (int column = 0; column < 8; ++column) {
            EXPECT_GE(Header().sectionSize(column), Header().sectionSizeHint(column)) << column << " is cut";
        }
    }
    Window.resize(700, 500); // too narrow for the titles
    RunEvents();
    for (int column = 0; column < 8; ++column) {
        EXPECT_GE(Header().sectionSize(column), Rows()->sizeHintForColumn(column)) << column;
    }
    EXPECT_LT(Header().sectionSize(5), Header().sectionSizeHint(5));
}

TEST_F(ViewsTest, EntriesOfOneFolderComeOnceAndBrokenOnesNotAtAll) {
    HandWritten catalogue;
    const std::uint32_t file = catalogue.AddFile(HandWritten::Root(), u"once");
    AddChild(HandWritten::Root(), file);
    AddChild(HandWritten::Root(), 0x7FFFFFFF);
    Show(catalogue);
    EXPECT_EQ(Names(), "once");
    Engine.TreeFile.reset();
    for (std::size_t boxes = 1; boxes < 3; ++boxes) {
        ShowInList(kRootId);
        EXPECT_TRUE(List->IsEmpty());
        EXPECT_EQ(Desktop.WaitDialog, nullptr);
        EXPECT_EQ(Reports.Boxes.size(), boxes);
        CloseCatalogue();
    }
}

TEST_F(ViewsTest, TheRowsOfALongFolderAreTheirOwnEntries) {
    HandWritten catalogue;
    for (int i = 0; i < 5000; ++i) {
        catalogue.AddFile(HandWritten::Root(), u"file");
    }
    const std::uint32_t folder = catalogue.AddFolder(HandWritten::Root(), 100, u"folder").EntryId;
    bool waits = false;
    QObject::connect(Rows()->model(), &QAbstractItemModel::modelReset, &Window,
                     [&] { waits = Desktop.WaitDialog != nullptr; });
    Show(catalogue);
    EXPECT_TRUE(waits);
    WM_TREE_SELECT_FOLDER.Send(Tree, kRootId);
    Rows()->scrollToBottom();
    ShowInList(kRootId);
    EXPECT_EQ(Rows()->verticalScrollBar()->value(), 0);
    DoubleClickRow(0);
    EXPECT_EQ(Tree->CurrentEntry(), folder);
}

TEST_F(ListViewTest, HeaderSortsByTheKindOfItsColumnAndTurnsAtASecondClick) {
    const std::pair<int, const char*> orders[] = {
        {1, "music|box|Alpha.tmp|report.doc"}, // 0 0 12 5000000000
        {2, "report.doc|Alpha.tmp|music|box"},
        {3, "music|box|report.doc|Alpha.tmp"}, // by year, not by day
        {4, "music|box|Alpha.tmp|report.doc"},
        {5, "Alpha.tmp|music|box|report.doc"}, // as text: 1000 103 105 99
        {6, "music|box|report.doc|Alpha.tmp"}, // as a number: 5 40
        {7, "music|box|Alpha.tmp|report.doc"}, // nothing, a part, all
        {0, "Alpha.tmp|box|music|report.doc"},
    };
    for (const auto& [column, order] : orders) {
        ShowInList(kRootId);
        ClickHeader(column);
        EXPECT_EQ(Names(), order) << "column " << column;
        EXPECT_EQ(Header().sortIndicatorSection(), column);
    }
    ClickHeader(0);
    EXPECT_EQ(Names(), "report.doc|music|box|Alpha.tmp");
    EXPECT_EQ(Header().sortIndicatorOrder(), Qt::DescendingOrder);
    ClickHeader(3); // another column keeps the header's direction
    EXPECT_EQ(Names(), "Alpha.tmp|report.doc|music|box") << "equal ones keep their order";

    ShowInList(kRootId);
    EXPECT_EQ(Names(), "music|box|report.doc|Alpha.tmp");
    EXPECT_EQ(Header().sortIndicatorSection(), 3);
    List->Clear();
    ClickHeader(1);
    EXPECT_EQ(Header().sortIndicatorSection(), 3);
}

TEST_F(ListViewTest, SelectedEntriesStaySelectedThroughASort) {
    ClickRow(0);
    ClickRow(3, Qt::LeftButton, Qt::ControlModifier);
    List->SortList(0, true, SortKind::Text);
    ClickRow(2, Qt::RightButton);
    ChooseInMenu("Save");
    EXPECT_EQ(Engine.MarkedEntries, (std::vector<std::uint32_t>{fileId + 2, musicId}));
}

TEST_F(ListViewTest, DoubleClickAndReturnGoDownIntoFoldersOnly) {
    DoubleClickRow(2);
    EXPECT_EQ(List->RowCount(), 4);
    ClickRow(0);
    DoubleClickRow(0);
    EXPECT_EQ(Names(), "empty|song.mp3");
    EXPECT_EQ(Tree->CurrentEntry(), musicId);
    ClickRow(0);
    Press(Qt::Key_Return);
    EXPECT_TRUE(List->IsEmpty());
    EXPECT_EQ(Tree->currentIndex().data().toString(), QStringLiteral("empty"));
    Press(Qt::Key_Return);
    Press(Qt::Key_Menu);
    QTest::mouseClick(Rows()->viewport(), Qt::RightButton, {}, {50, 10});
    EXPECT_EQ(OpenMenuText(), "");
    Tree->GoToParent();
    EXPECT_EQ(List->RowCount(), 2);
}

TEST_F(ListViewTest, ContextMenuFitsTheRowAndTheSelection) {
    ClickRow(2, Qt::RightButton);
    EXPECT_EQ(OpenMenuText(), "Save Preview Search* Properties" + kCopies);
    ChooseInMenu("Preview");
    SetPreviewWindowOpen(true);
    ClickRow(2, Qt::RightButton);
    EXPECT_EQ(OpenMenuText(), "Save Preview* Search* Properties" + kCopies);
    ChooseInMenu("Properties");
    ClickRow(1);
    Press(Qt::Key_Menu);
    EXPECT_EQ(OpenMenuText(), "Save Preview* Search Properties" + kCopies);
    ChooseInMenu("Search");
    Rows()->selectAll();
    SetPreviewWindowOpen(false);
    for (const int row : {1, 2}) {
        CloseMenu();
        ClickRow(row, Qt::RightButton);
        EXPECT_EQ(OpenMenuText(), "Save Preview* Search* Properties*" + kCopies);
    }
    ChooseInMenu("Save");
    EXPECT_EQ(Engine.MarkedEntries, (std::vector<std::uint32_t>{musicId, boxId, fileId, fileId + 2}));
    EXPECT_EQ(Frame.Messages, (SeenMessages{{WM_SHOW_PREVIEW, fileId},
                                            {WM_SHOW_PROPERTIES, fileId},
                                            {WM_FIND_FROM_VIEW, boxId},
                                            {WM_SAVE_REQUEST}}));
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
        EXPECT_EQ(OpenMenuText(), "");
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
        EXPECT_EQ(OnRow(1).y() == OnRow(0).y(), mode != 60002) << "across or down";
        EXPECT_EQ(icons->visualRect(icons->model()->index(3, 0)).size(), icons->gridSize()) << mode;
        ClickRow(0, Qt::RightButton);
        EXPECT_EQ(OpenMenuText(), "Save Preview* Search Properties" + kCopies);
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

TEST_F(ViewsTest, NamesAreSpokenAndTippedAsPlainText) {
    HandWritten catalogue;
    catalogue.AddEntry(HandWritten::Root(), {}, u"<b>a name</b>");
    Show(catalogue);
    Rows()->setCurrentIndex(Rows()->model()->index(0, 0));
    EXPECT_TRUE(
        Rows()->currentIndex().data(Qt::ToolTipRole).toString().contains(QStringLiteral("&lt;b&gt;a")));
    auto* spoken = QAccessible::queryAccessibleInterface(Rows());
    EXPECT_EQ(spoken->text(QAccessible::Name), QStringLiteral("Content of the folder"));
    EXPECT_EQ(spoken->focusChild()->text(QAccessible::Name), QStringLiteral("<b>a name</b>, deleted"));
}

} // namespace

} // namespace thntfs::test
