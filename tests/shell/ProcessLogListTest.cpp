#include "shell/ProcessLogList.h"

#include "shell/ShellFixture.h"

#include <QApplication>
#include <QClipboard>
#include <QEventLoop>
#include <QHeaderView>
#include <QLineEdit>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

namespace thntfs::test {

namespace {

const QColor kMark(255, 159, 89);

class ProcessLogListTest : public testing::Test {
protected:
    void SetUp() override {
        List.resize(1142, 200);
        List.show();
        RunEvents();
    }

    void Send(const std::string& name, const std::string& description = {},
              std::uint8_t status = kLogInProgress) {
        const ProcessLogEntry entry{name, description, "a time of the sender's", status};
        WM_LOG_ADD.Send(&List, entry);
    }

    bool AllShown() {
        return WaitUntil([this] { return List.model()->rowCount() == std::ssize(List.Log().Rows()); });
    }

    [[nodiscard]] QModelIndex Cell(int row, int column) const { return List.model()->index(row, column); }
    [[nodiscard]] QString Text(int row, int column) const { return Cell(row, column).data().toString(); }

    /// Colour at the right end of a row, where no text stands.
    QColor ColourOfRow(int row) {
        const QRect cell = List.visualRect(Cell(row, 2));
        return List.viewport()->grab().toImage().pixelColor(cell.right() - 3, cell.center().y());
    }

    CProcessLogList List;
};

TEST_F(ProcessLogListTest, RowsStandInTheOrderAndWithTheTimeOfTheirArrival) {
    EXPECT_TRUE(List.IsEmpty());
    TestWorker worker([this] {
        Send("first", "of a worker");
        Send("second", {}, kLogFailed);
    });
    EXPECT_TRUE(worker.Finishes());
    Send("third", "line\r\nfeed\tand \x01", kLogDone);
    EXPECT_FALSE(List.IsEmpty());
    ASSERT_EQ(List.Log().Rows().size(), 3U) << "the log has a row at once";
    ASSERT_TRUE(AllShown());
    EXPECT_EQ(Text(0, 0), QStringLiteral("first"));
    EXPECT_EQ(Text(0, 1), QStringLiteral("of a worker"));
    EXPECT_EQ(Text(1, 0), QStringLiteral("second"));
    EXPECT_EQ(Text(2, 1), QStringLiteral("line  feed and  ")) << "one row, whatever the text";
    EXPECT_EQ(List.Log().Rows()[2].Description, "line\r\nfeed\tand \x01");
    const QRegularExpression time(
        QStringLiteral("^[A-Z][a-z]{2} [A-Z][a-z]{2} [ 0-9]\\d \\d{4} \\d\\d:\\d\\d:\\d\\d$"));
    EXPECT_TRUE(time.match(Text(0, 2)).hasMatch()) << Text(0, 2).toStdString();

    const auto icon = [this](int row) {
        return Cell(row, 0).data(Qt::DecorationRole).value<QIcon>().pixmap(16).toImage();
    };
    EXPECT_FALSE(icon(0).isNull());
    EXPECT_NE(icon(0), icon(1));
    EXPECT_NE(icon(1), icon(2));
}

TEST_F(ProcessLogListTest, OnlyTheLastRowIsMarked) {
    for (const int shown : {1, 2, 5}) {
        while (std::ssize(List.Log().Rows()) < shown) {
            Send("row");
        }
        ASSERT_TRUE(AllShown());
        for (int row = 0; row < shown - 1; ++row) {
            EXPECT_EQ(ColourOfRow(row), List.palette().color(QPalette::Base)) << row << " of " << shown;
        }
        EXPECT_EQ(ColourOfRow(shown - 1), kMark) << shown;
    }
    Send("on its way as the log is cleared");
    const QSignalSpy inserted(List.model(), &QAbstractItemModel::rowsInserted);
    List.Clear();
    EXPECT_TRUE(List.IsEmpty());
    EXPECT_EQ(List.model()->rowCount(), 0);
    QTest::qWait(60);
    EXPECT_EQ(inserted.count(), 0);
    Send("after it");
    ASSERT_TRUE(AllShown());
    ASSERT_EQ(List.model()->rowCount(), 1);
    EXPECT_EQ(ColourOfRow(0), kMark);
}

TEST_F(ProcessLogListTest, ALongLogIsShownInBatchesWhileItGrows) {
    constexpr int kRows = 50000;
    int batches = 0;
    bool shownOnTheWay = false;
    std::atomic<bool> allSent = false;
    QObject::connect(List.model(), &QAbstractItemModel::rowsInserted, &List, [&] {
        ++batches;
        shownOnTheWay = shownOnTheWay || !allSent;
    });
    QEventLoop loop;
    TestTarget end;
    end.Handle = [&](auto, auto, auto) { return loop.quit(), 0; };
    TestWorker worker([&] {
        for (int i = 0; i < kRows; ++i) {
            Send(std::to_string(i));
        }
        allSent = true;
        PostWindowMessage(&end, WM_APP);
    });
    loop.exec();
    ASSERT_TRUE(AllShown());
    EXPECT_TRUE(shownOnTheWay);
    EXPECT_LT(batches, kRows / 10);
    EXPECT_EQ(Text(kRows - 1, 0), QString::number(kRows - 1));
    EXPECT_TRUE(List.viewport()->rect().contains(List.visualRect(Cell(kRows - 1, 0))));
}

TEST_F(ProcessLogListTest, ColumnsFitTheListUntilTheUserSizesThem) {
    EXPECT_EQ(List.header()->sectionSize(0), 265);
    EXPECT_EQ(List.header()->sectionSize(1), 299);
    EXPECT_EQ(List.header()->sectionSize(2), 576);
    Send("row");
    ASSERT_TRUE(AllShown());
    for (const int width : {800, 500}) {
        List.resize(width, 200);
        EXPECT_EQ(List.header()->length(), List.viewport()->width());
        EXPECT_GE(List.columnWidth(2), List.fontMetrics().horizontalAdvance(Text(0, 2)));
        EXPECT_GT(List.columnWidth(0), 100);
    }
    List.header()->resizeSection(0, 123);
    List.resize(900, 200);
    EXPECT_EQ(List.header()->sectionSize(0), 123);
    EXPECT_EQ(List.header()->length(), List.viewport()->width());
}

TEST_F(ProcessLogListTest, SelectedRowsAreCopiedInTheirOrder) {
    for (const char* name : {"a", "b", "c"}) {
        Send(name, "about it");
    }
    ASSERT_TRUE(AllShown());
    const auto select = QItemSelectionModel::Select | QItemSelectionModel::Rows;
    List.selectionModel()->select(Cell(2, 0), select);
    List.selectionModel()->select(Cell(0, 0), select);
    QTest::keyClick(&List, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(),
              QStringLiteral("a\tabout it\t%1\nc\tabout it\t%2").arg(Text(0, 2), Text(2, 2)));
}

TEST(ProcessLogFocusTest, TabGoesToItsTarget) {
    QWidget window;
    QVBoxLayout layout(&window);
    QLineEdit target;
    QLineEdit behind;
    CProcessLogList list;
    for (QWidget* widget : std::initializer_list<QWidget*>{&target, &list, &behind}) {
        layout.addWidget(widget);
    }
    list.SetTabTarget(&target);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_Tab);
    EXPECT_TRUE(target.hasFocus());
}

} // namespace

} // namespace thntfs::test
