#include "views/ViewsFixture.h"

#include <QImage>
#include <QPalette>

namespace thntfs::test {

namespace {

constexpr QRgb kEven = qRgb(232, 232, 244);
constexpr QRgb kOdd = qRgb(255, 255, 255);
constexpr QRgb kFound = qRgb(251, 248, 191);

/// On a dark desktop, with a folder and five files of which the views show each name.
class LookTest : public ViewsTest {
protected:
    LookTest() {
        QApplication::setPalette(QPalette(QColor(45, 45, 48), QColor(30, 30, 30)));
        HandWritten catalogue;
        folderId = catalogue.AddFolder(HandWritten::Root(), 100, u"LLLLLL").EntryId;
        for (int i = 0; i < 5; ++i) {
            catalogue.AddFile(HandWritten::Root(), u"WWWWWWWW");
        }
        Show(catalogue);
        Tree->expandAll();
    }
    ~LookTest() override { QApplication::setPalette(usual_); }

    /// Whether a piece has a ground of a colour, and something on it nearly of another one.
    static bool IsPainted(QWidget& widget, const QRect& rect, QRgb ground, const QColor& text) {
        const QImage image = widget.grab(rect).toImage();
        bool hasText = false;
        int grounds = 0;
        for (int place = 0; place < rect.width() * rect.height(); ++place) {
            const QColor c = image.pixelColor(place % rect.width(), place / rect.width());
            grounds += c.rgb() == ground ? 1 : 0;
            hasText = hasText || std::abs(c.red() - text.red()) + std::abs(c.green() - text.green()) +
                                         std::abs(c.blue() - text.blue()) <
                                     80;
        }
        return hasText && 4 * grounds > rect.width() * rect.height();
    }
    /// Inside the lines of the grid.
    [[nodiscard]] bool RowIs(int row, QRgb ground, const QColor& text) const {
        const QRect cell = Rows()->visualRect(Rows()->model()->index(row, 0));
        return IsPainted(*Rows()->viewport(), cell.adjusted(24, 1, -2, -2), ground, text);
    }

    std::uint32_t folderId = 0;

private:
    QPalette usual_ = QApplication::palette();
};

TEST_F(LookTest, FixedColoursHoldWhateverThePalette) {
    EXPECT_TRUE(RowIs(2, kEven, Qt::black));
    EXPECT_TRUE(RowIs(3, kOdd, Qt::black));
    WM_TREE_SELECT_FOLDER.Send(Tree, folderId);
    const QPoint at = OnName(Item(QStringLiteral("LLLLLL")));
    EXPECT_TRUE(IsPainted(*Tree->viewport(), QRect(at.x(), at.y() - 4, 30, 9), kOdd, QColor(252, 12, 12)));
    const QPoint mark = OnMark(Item());
    EXPECT_TRUE(IsPainted(*Tree->viewport(), QRect(mark - QPoint(8, 8), QSize(16, 16)),
                          Tree->palette().color(QPalette::Base).rgb(), QColor(Qt::white).darker(140)));

    Window.resize(1200, 90);
    RunEvents();
    List->SetFoundEntry(folderId + 5);
    EXPECT_TRUE(RowIs(5, kFound, Qt::red)) << "brought into view";
    EXPECT_TRUE(RowIs(4, kEven, Qt::black));
    List->SetFoundEntry(folderId + 1);
    ShowInList(kRootId);
    EXPECT_TRUE(RowIs(1, kFound, Qt::red)) << "in a list that is filled anew";
    List->SetFoundEntry(0xFFFFFFFF);
    EXPECT_TRUE(RowIs(1, kOdd, Qt::black));
}

} // namespace

} // namespace thntfs::test
