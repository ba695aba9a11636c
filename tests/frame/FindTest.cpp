// Find and Find Next in the window, by keys and mouse.

#include "FrameFixture.h"
#include "dialogs/THNTFSFindFile.h"
#include "support/desktop/Widgets.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QTest>

namespace thntfs::test {
namespace {

class FindInFrame : public FrameFixture {
protected:
    FindInFrame() { LoadByMenu(SavedScanOf(Volume("basic.img"))); }

    /// Opens the dialog by its key, does something in it and searches.
    void Search(const char* pattern, std::function<void(CTHNTFSFindFile&)> act = {}) {
        Answers.Boxes.clear();
        Answers.When<CTHNTFSFindFile>([pattern, act = std::move(act)](CTHNTFSFindFile& dialog) {
            EXPECT_FALSE(ButtonOf(dialog, "Search Now")->isEnabled());
            QTest::keyClicks(QApplication::focusWidget(), QLatin1String(pattern));
            if (act) {
                act(dialog);
            }
            QTest::keyClick(dialog.findChild<QLineEdit*>(), Qt::Key_Return);
        });
        PressKey(Qt::Key_F, Qt::ControlModifier);
        EXPECT_TRUE(Answers.AllDone());
    }

    void Next() { PressKey(Qt::Key_F3); }

    /// The tree's folder and the row that is marked: "2021: January.txt".
    [[nodiscard]] std::string Found() const {
        const QAbstractItemModel& model = *Details().model();
        std::string rows;
        for (int row = 0; row < model.rowCount(); ++row) {
            if (model.index(row, 0).data(Qt::UserRole).toBool()) {
                rows += ": " + model.index(row, 0).data().toString().toStdString();
            }
        }
        return Tree().currentIndex().data().toString().toStdString() + rows;
    }

    [[nodiscard]] bool ToldNothing() const {
        return !Answers.Boxes.empty() &&
               Answers.Boxes.back().Text == QStringLiteral("Search Item not found.");
    }
};

TEST_F(FindInFrame, ShowsEachHitInItsPlaceAndEndsWithAWord) {
    EXPECT_FALSE(IsOffered("Find Next"));
    Search("JANUARY*");
    std::set<std::string> found{Found()};
    Next();
    found.insert(Found());
    Next();
    found.insert(Found());
    EXPECT_EQ(found, (std::set<std::string>{"2021: January.txt", "2022: January.txt", "2023: January.txt"}));
    EXPECT_TRUE(IsOffered("Find Next"));
    Next();
    EXPECT_TRUE(ToldNothing());
    EXPECT_EQ(Found().find(':'), std::string::npos);
    EXPECT_FALSE(IsOffered("Find Next"));

    Search("deep");
    EXPECT_EQ(Found(), " Root: Deep") << "a folder's row stands in its parent";
    PressKey(Qt::Key_Escape);
    EXPECT_EQ(Found(), " Root");
    EXPECT_FALSE(IsOffered("Find Next"));
    Search("DEEP", [](CTHNTFSFindFile& dialog) { Press(dialog, "Match case"); });
    EXPECT_TRUE(ToldNothing());
}

TEST_F(FindInFrame, FiltersCountWhereTheyAreOn) {
    Search("second*", [](CTHNTFSFindFile& dialog) {
        const int closed = dialog.sizeHint().height();
        Press(dialog, "Options>>");
        EXPECT_GT(dialog.sizeHint().height(), closed);
        Press(dialog, "Size");
        EXPECT_FALSE(ButtonOf(dialog, "Search Now")->isEnabled()) << "0 is no size";
        auto& number = *dialog.findChildren<QLineEdit*>()[1];
        const auto unit = dialog.findChildren<QComboBox*>()[1];
        number.clear();
        QTest::keyClicks(&number, QStringLiteral("99999999999a9"));
        EXPECT_EQ(number.text(), QStringLiteral("99999999999"));
        EXPECT_FALSE(ButtonOf(dialog, "Search Now")->isEnabled()) << "above 2^44";
        unit->setCurrentIndex(1);
        EXPECT_EQ(number.text(), QStringLiteral("0"));
        unit->setCurrentIndex(0);
        number.setText(QStringLiteral("100"));
        EXPECT_EQ(dialog.SizeValue, 102400U);
        EXPECT_TRUE(ButtonOf(dialog, "Search Now")->isEnabled());
    });
    EXPECT_EQ(Found(), "Reused: second.txt");
    Next();
    EXPECT_TRUE(ToldNothing());
    Search("*.txt", [](CTHNTFSFindFile& dialog) {
        Press(dialog, "Options>>");
        Press(dialog, "Date"); // today
    });
    EXPECT_TRUE(ToldNothing());
}

TEST_F(FindInFrame, AllHitsStandInOneListUntilEscape) {
    const int folderRows = Details().model()->rowCount();
    Search("june*", [](CTHNTFSFindFile& dialog) {
        Press(dialog, "Options>>");
        Press(dialog, "Show all hits in one list");
    });
    const QAbstractItemModel& model = *Details().model();
    std::set<std::string> rows;
    for (int row = 0; row < model.rowCount(); ++row) {
        rows.insert(model.index(row, model.columnCount() - 1).data().toString().toStdString());
    }
    EXPECT_EQ(rows, (std::set<std::string>{"/Documents/Letters/2021", "/Documents/Letters/2022",
                                           "/Documents/Letters/2023"}));
    EXPECT_FALSE(Details().isColumnHidden(model.columnCount() - 1));
    PressKey(Qt::Key_Escape);
    EXPECT_EQ(model.rowCount(), folderRows);
    EXPECT_TRUE(Details().isColumnHidden(model.columnCount() - 1));
}

} // namespace
} // namespace thntfs::test
