#include "views/ViewsFixture.h"

#include <QImage>
#include <QPalette>
#include <algorithm>
#include <cmath>
#include <map>

namespace thntfs::test {

namespace {

double Luminance(QRgb colour) {
    const auto part = [](int value) {
        const double share = value / 255.0;
        return share <= 0.03928 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(qRed(colour)) + 0.7152 * part(qGreen(colour)) + 0.0722 * part(qBlue(colour));
}

double Contrast(QRgb a, QRgb b) {
    const auto [low, high] = std::minmax({Luminance(a), Luminance(b)});
    return (high + 0.05) / (low + 0.05);
}

/// What a piece of a window is painted with: the colour of most of it, and the one that stands out most.
struct Painted {
    QRgb Ground = 0;
    QRgb Text = 0;
};

Painted PaintedIn(QWidget& widget, const QRect& rect) {
    const QImage image = widget.grab(rect).toImage();
    std::map<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            ++counts[image.pixel(x, y) | 0xFF000000U];
        }
    }
    Painted painted;
    painted.Ground = std::max_element(counts.begin(), counts.end(), [](const auto& a, const auto& b) {
                         return a.second < b.second;
                     })->first;
    painted.Text = std::max_element(counts.begin(), counts.end(), [&](const auto& a, const auto& b) {
                       return Contrast(a.first, painted.Ground) < Contrast(b.first, painted.Ground);
                   })->first;
    return painted;
}

QPalette PaletteOn(const QColor& button, const QColor& window) {
    QPalette palette(button, window);
    palette.setColor(QPalette::Highlight, QColor(20, 80, 140));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

class LookTest : public ViewsFixture {
protected:
    LookTest() {
        CatalogueMaker maker;
        folderId = maker.AddFolder(maker.Root(), u"LLLLLL").EntryId;
        for (int i = 0; i < 5; ++i) {
            ids.push_back(maker.AddFile(maker.Root(), u"WWWWWWWW"));
        }
        maker.Finish();
        Fill();
        Tree->expandAll();
        WM_LIST_SHOW_FOLDER.Send(List, 1);
        RunEvents();
    }
    ~LookTest() override { QApplication::setPalette(usual_); }

    void UsePalette(const QPalette& palette) {
        QApplication::setPalette(palette);
        RunEvents();
    }

    /// Inside the lines of the grid.
    [[nodiscard]] Painted RowPainted(int row) const {
        const QRect cell = Rows()->visualRect(Rows()->model()->index(row, 0));
        return PaintedIn(*Rows()->viewport(), cell.adjusted(24, 1, -2, -2));
    }
    [[nodiscard]] Painted FolderPainted(const QModelIndex& index) const {
        const QPoint at = OnName(index);
        return PaintedIn(*Tree->viewport(), QRect(at.x(), at.y() - 4, 30, 9));
    }

    std::uint32_t folderId = 0;
    std::vector<std::uint32_t> ids;

private:
    QPalette usual_ = QApplication::palette();
};

TEST_F(LookTest, FixedColoursHoldAndAllTextIsLegibleOnLightAndDarkPalettes) {
    const QModelIndex folder = Item({QStringLiteral(" Root")});
    const QModelIndex current = Item({QStringLiteral(" Root"), QStringLiteral("LLLLLL")});
    WM_TREE_SELECT_FOLDER.Send(Tree, folderId);
    for (const QPalette& palette :
         {PaletteOn({239, 239, 239}, Qt::white), PaletteOn({45, 45, 48}, {30, 30, 30})}) {
        UsePalette(palette);
        EXPECT_EQ(RowPainted(2).Ground, qRgb(232, 232, 244));
        EXPECT_EQ(RowPainted(3).Ground, qRgb(255, 255, 255));
        EXPECT_EQ(FolderPainted(current).Ground, qRgb(255, 255, 255));
        EXPECT_GT(qRed(FolderPainted(current).Text), 240);

        Rows()->selectionModel()->clear();
        ClickRow(4);
        for (const int row : {2, 3, 4}) {
            const Painted painted = RowPainted(row);
            EXPECT_GT(Contrast(painted.Ground, painted.Text), 4.5) << "row " << row;
        }
        EXPECT_GT(Contrast(FolderPainted(current).Ground, FolderPainted(current).Text), 3.5);
        EXPECT_GT(Contrast(FolderPainted(folder).Ground, FolderPainted(folder).Text), 4.5);
        const QPoint mark = OnMark(folder);
        const Painted box = PaintedIn(*Tree->viewport(), QRect(mark - QPoint(8, 8), QSize(16, 16)));
        EXPECT_GT(Contrast(box.Ground, box.Text), 1.5);
        Tree->setCurrentIndex(folder);
        EXPECT_GT(Contrast(FolderPainted(folder).Ground, FolderPainted(folder).Text), 4.5);
        Tree->setCurrentIndex(current);
        for (const std::uint32_t mode : {60000U, 60002U}) {
            List->SetViewMode(mode);
            RunEvents();
            const Painted painted = RowPainted(1);
            EXPECT_GT(Contrast(painted.Ground, painted.Text), 4.5) << "mode " << mode;
        }
        List->SetViewMode(60003);
        RunEvents();
    }
}

TEST_F(LookTest, FoundRowStandsOutUntilFindEnds) {
    List->SetFoundEntry(ids[1]);
    const Painted found = RowPainted(2);
    EXPECT_EQ(found.Ground, qRgb(251, 248, 191));
    EXPECT_GT(qRed(found.Text), 240);
    EXPECT_LT(qGreen(found.Text), 60);
    EXPECT_EQ(RowPainted(4).Ground, qRgb(232, 232, 244));
    WM_LIST_SHOW_FOLDER.Send(List, 1);
    RunEvents();
    EXPECT_EQ(RowPainted(2).Ground, qRgb(251, 248, 191));
    List->SetFoundEntry(0xFFFFFFFF);
    EXPECT_EQ(RowPainted(2).Ground, qRgb(232, 232, 244));
}

TEST_F(LookTest, FoundRowIsBroughtIntoView) {
    Window.resize(1200, 90);
    RunEvents();
    const QModelIndex last = Rows()->model()->index(5, 0);
    EXPECT_FALSE(Rows()->viewport()->rect().contains(Rows()->visualRect(last).center()));
    List->SetFoundEntry(ids[4]);
    EXPECT_TRUE(Rows()->viewport()->rect().contains(Rows()->visualRect(last).center()));
}

} // namespace

} // namespace thntfs::test
