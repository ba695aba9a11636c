// The list with the line and the filter above it.

#include "views/ListPane.h"

#include "catalogue/Conditions.h"
#include "views/FilterBar.h"
#include "views/ViewsFixture.h"

#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QToolButton>

namespace thntfs::test {

namespace {

class ListPaneTest : public ViewsTest {
protected:
    ListPaneTest() {
        List->setParent(nullptr);
        delete std::exchange(List, Pane->List());
        Tree->SetListView(List);
        List->SetTreeView(Tree);
        Pane->show();
        Window.setSizes({300, 900});
        RunEvents();
        Engine.SourceDisk.Description = u"/media/old/disk.img";
        Engine.VolumeParams.TotalSectors = 4096;
        Engine.VolumeParams.BytesPerSector = 512;
        Pane->TakeVolume();
    }

    /// What stands in " Root" is "a", in which is "b", and so on; and files with small and large letters.
    void ShowFolders(const std::vector<std::u16string>& names) {
        HandWritten catalogue;
        FolderIndexNode* parent = &HandWritten::Root();
        for (std::uint32_t i = 0; i < names.size(); ++i) {
            parent = &catalogue.AddFolder(*parent, 100 + i, names[i]);
            lastId = parent->EntryId;
        }
        catalogue.AddFile(HandWritten::Root(), u"Der ÄRGER.txt", 1024);
        goneId = catalogue.AddEntry(HandWritten::Root(), {.Size = 1024ULL * 1024 * 1536, .RecordNumber = 7},
                                    u"Zorn & Ärger.TXT");
        catalogue.AddFile(*parent, u"last.doc", 12);
        catalogue.AddFolder(HandWritten::Top(), 900, u"#900");
        Show(catalogue);
    }

    [[nodiscard]] QLineEdit& NamePart() const { return *Pane->findChild<QLineEdit*>(); }
    [[nodiscard]] std::string Count() const {
        const QString text = Pane->Filter().findChild<QLabel*>()->text();
        return text.toStdString();
    }
    void TypeName(const char* text) const {
        NamePart().setText(QString::fromUtf8(text));
        RunEvents();
    }
    /// The parts that show, with '|' between.
    [[nodiscard]] std::string Path() const {
        QStringList parts;
        for (const QToolButton* button : Parts()) {
            parts += button->text();
        }
        return parts.join(QLatin1Char('|')).toStdString();
    }
    [[nodiscard]] QList<QToolButton*> Parts() const {
        QList<QToolButton*> parts = Pane->Path().findChildren<QToolButton*>();
        parts.removeIf([](const QToolButton* button) { return button->isHidden(); });
        return parts;
    }
    static std::string Copied() { return QApplication::clipboard()->text().toStdString(); }

    CListPane* Pane = new CListPane(&Window, *Tree);
    std::uint32_t lastId = 0;
    std::uint32_t goneId = 0;
};

TEST_F(ListPaneTest, AFilterNarrowsWhatIsShownInEveryFolder) {
    ShowFolders({u"one", u"two"});
    EXPECT_EQ(Names(), "one|Der ÄRGER.txt|Zorn & Ärger.TXT");
    EXPECT_EQ(Count(), "");
    ClickRow(0);
    TypeName("zorn");
    EXPECT_FALSE(List->HasSelection()) << "what was selected is hidden";
    TypeName("");
    ClickRow(2);
    TypeName("ärger");
    EXPECT_EQ(Names(), "Der ÄRGER.txt|Zorn & Ärger.TXT");
    EXPECT_EQ(Count(), "2 of 3 shown");
    EXPECT_EQ(Rows()->currentIndex().row(), 1);
    List->SortList(0, false, SortKind::Text);
    EXPECT_EQ(Names(), "Zorn & Ärger.TXT|Der ÄRGER.txt");
    EXPECT_EQ(Rows()->currentIndex().row(), 0) << "still the same entry";
    Rows()->selectAll();
    List->CopyPaths();
    EXPECT_EQ(Copied(), "/Zorn & Ärger.TXT\n/Der ÄRGER.txt");
    TypeName("");
    List->CopyNames();
    EXPECT_EQ(Copied(), "Zorn & Ärger.TXT\nDer ÄRGER.txt") << "not what was hidden between them";
    List->SetViewMode(CTHNTFSListView::kSmallIcons);
    TypeName("der");
    List->CopyNames();
    EXPECT_EQ(Copied(), "Der ÄRGER.txt");
    List->SetViewMode(CTHNTFSListView::kDetails);
    TypeName("ärger");
    Pane->findChild<QComboBox*>()->setCurrentIndex(1);
    EXPECT_EQ(Names(), "Zorn & Ärger.TXT");
    ClickRow(0, Qt::RightButton);
    ChooseInMenu("Save");
    EXPECT_EQ(Engine.MarkedEntries, std::vector<std::uint32_t>{goneId});

    ShowInList(lastId);
    EXPECT_TRUE(List->IsEmpty());
    EXPECT_EQ(Rows()->accessibleDescription(), QStringLiteral("Nothing here fits the filter."));
    EXPECT_EQ(Count(), "0 of 1 shown");
    List->SetFoundEntry(lastId + 3); // last.doc
    EXPECT_EQ(Names() + Count() + NamePart().text().toStdString(), "last.doc");
    EXPECT_EQ(Rows()->accessibleDescription(), QString());

    TypeName("*.TX?");
    ShowInList(kRootId);
    EXPECT_EQ(Count(), "2 of 3 shown");
    List->SortList(0, false, SortKind::Text);
    QApplication::setActiveWindow(&Window);
    Pane->Filter().TakeFocus();
    QTest::keyClick(&NamePart(), Qt::Key_Escape);
    EXPECT_EQ(Names(), "Zorn & Ärger.TXT|one|Der ÄRGER.txt") << "what was hidden is sorted as well";
    QTest::keyClick(&NamePart(), Qt::Key_Down);
    EXPECT_TRUE(Rows()->hasFocus());
    QTest::keyClick(Rows(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(NamePart().hasFocus());
    TypeName("one");
    Pane->TakeVolume();
    EXPECT_EQ(Count() + NamePart().text().toStdString(), "") << "another volume shows whole";
}

TEST_F(ListPaneTest, TheLineTellsWhereOneIsAndGoesThere) {
    EXPECT_EQ(Path(), "");
    EXPECT_EQ(Rows()->accessibleDescription(),
              QStringLiteral("Press Ctrl+W to choose a disk or an image, or drop an image file here."));
    ShowFolders({u"one", u"A & B", u"three"});
    EXPECT_EQ(Path(), "disk.img|NTFS (2.0 MB)");
    EXPECT_EQ(Rows()->accessibleDescription(), QString());
    Tree->GoToFolder(lastId);
    EXPECT_EQ(Path(), "disk.img|NTFS (2.0 MB)|one|A && B|three");
    Pane->Path().TakeFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(Copied(), "/media/old/disk.img › NTFS (2.0 MB) › /one/A & B/three");
    Rows()->selectAll();
    QTest::keyClick(Rows(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(Copied(), "last.doc");
    List->CopyPaths();
    EXPECT_EQ(Copied(), "/one/A & B/three/last.doc");
    Parts().at(3)->setFocus();
    QTest::keyClick(Parts().at(3), Qt::Key_Return);
    EXPECT_EQ(Path(), "disk.img|NTFS (2.0 MB)|one|A && B");
    EXPECT_EQ(Tree->CurrentEntry(), lastId - 1);
    EXPECT_EQ(Names(), "three");
    EXPECT_TRUE(Parts().back()->hasFocus());
    Engine.ScanRunFlag = 1;
    Parts().front()->click();
    EXPECT_EQ(Tree->CurrentEntry(), lastId - 1);
    Engine.ScanRunFlag = 0;
    Parts().front()->click();
    EXPECT_EQ(Tree->CurrentEntry(), kRootId);
    Tree->GoToFolder(lastId + 4);
    EXPECT_EQ(Path(), "disk.img|NTFS (2.0 MB)|#900");
    ShowInList(0); // the top
    Rows()->selectAll();
    List->CopyPaths();
    EXPECT_EQ(Copied(), "/\n#900");
    FileRows hits{.Rows = {}, .Names = u"last.doc"};
    for (const std::uint32_t folder : {lastId, kRootId}) {
        hits.Rows.push_back({.EntryId = lastId + 3, .FolderId = folder, .NameUnits = 8, .State = {}});
    }
    List->ShowHits(hits, QStringLiteral("Results of *"));
    EXPECT_EQ(Path(), "disk.img|NTFS (2.0 MB)|Results of *");
    Rows()->selectAll();
    List->CopyPaths();
    EXPECT_EQ(Copied(), "/one/A & B/three/last.doc\n/last.doc");
    EXPECT_EQ(List->RowsShown().FolderOf, (std::vector<std::uint32_t>{0, 1}));
    EXPECT_EQ(List->RowsShown().FolderPaths.at(0), "/one/A & B/three/");
    Parts().back()->click();
    EXPECT_EQ(Path(), "disk.img|NTFS (2.0 MB)|#900");
    List->Clear();
    EXPECT_EQ(Path(), "");
}

TEST_F(ListPaneTest, ALineThatIsTooLongLeavesOutItsMiddle) {
    std::vector<std::u16string> names;
    for (int i = 0; i < 40; ++i) { // a part that is taken for its neighbour has a very different width
        names.push_back(i % 2 == 0 ? u"x" : u"a folder with a longer name");
    }
    ShowFolders(names);
    Tree->GoToFolder(lastId);
    std::uint32_t behindDots = 0;
    for (int width = 900; width >= 450; width -= 15) {
        Window.resize(width + 300, 500);
        Window.setSizes({300, width});
        RunEvents();
        const QList<QToolButton*> parts = Parts();
        ASSERT_TRUE(Path().starts_with("disk.img|NTFS (2.0 MB)|…|")) << Path();
        behindDots = static_cast<std::uint32_t>(parts.size() - 3);
        ASSERT_GE(behindDots, 2U) << width;
        for (std::uint32_t i = 0; i < behindDots; ++i) {
            EXPECT_EQ(parts[3 + i]->text().toStdU16String(), names[40 - behindDots + i]) << width;
        }
        const int gap = parts[1]->x() - parts[0]->geometry().right() - 1;
        for (qsizetype i = 1; i < parts.size(); ++i) {
            EXPECT_EQ(parts[i]->x(), parts[i - 1]->geometry().right() + 1 + gap) << width;
        }
        const int end = parts.back()->geometry().right();
        EXPECT_LT(end, Pane->Path().width()) << width;
        const int next = parts[4]->width(); // of the same kind as that next above those that show
        EXPECT_GT(end + 2 * gap + next, Pane->Path().width() - 1) << "there is room for one more";
    }
    for (QToolButton* part : Parts()) {
        if (part->text() == QStringLiteral("…")) {
            part->click();
        }
    }
    const auto lines = static_cast<QMenu*>(QApplication::activePopupWidget())->actions();
    EXPECT_EQ(lines.size(), 30);
    lines.back()->trigger();
    EXPECT_EQ(Tree->CurrentEntry(), lastId - behindDots) << "the folder next above those that show";
    const QList<QToolButton*> above = Parts();
    above[3]->click();
    EXPECT_EQ(Tree->CurrentEntry(), lastId - behindDots + 4 - static_cast<std::uint32_t>(above.size()));
}

TEST_F(ListPaneTest, SizesStandInTheUnitThatFitsAndSortByValue) {
    ShowFolders({u"one"});
    List->SetSizesInUnits(true);
    const QLocale locale;
    EXPECT_EQ(Cell(0, 1), QString());
    EXPECT_EQ(Cell(1, 1), locale.toString(1.0, 'f', 1) + QStringLiteral(" KB"));
    EXPECT_EQ(Cell(2, 1), locale.toString(1.5, 'f', 1) + QStringLiteral(" GB"));
    EXPECT_EQ(Rows()->model()->headerData(1, Qt::Horizontal).toString(), QStringLiteral("Size"));
    List->SortList(1, false, SortKind::WholeNumber);
    EXPECT_EQ(Names(), "Zorn & Ärger.TXT|Der ÄRGER.txt|one");
    List->SetSizesInUnits(false);
    EXPECT_EQ(Cell(0, 1), QStringLiteral("1610612736"));
}

} // namespace

} // namespace thntfs::test
