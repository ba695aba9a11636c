#include "shell/ProcessLogList.h"

#include "shell/ShellFixture.h"

#include <QApplication>
#include <QClipboard>
#include <QEventLoop>
#include <QHeaderView>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

namespace thntfs::test {

namespace {

class ProcessLogListTest : public testing::Test {
protected:
    ProcessLogListTest() {
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
    [[nodiscard]] std::string Text(int row, int column) const {
        return Cell(row, column).data().toString().toStdString();
    }

    /// Whether the right end of a row, where no text stands, has the mark's colour.
    bool IsMarked(int row) {
        const QRect cell = List.visualRect(Cell(row, 2));
        const QImage image = List.viewport()->grab().toImage();
        return image.pixelColor(cell.right() - 3, cell.center().y()) == QColor(255, 159, 89);
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
    Send("odd", {}, 3);
    Send("third", "line\r\nfeed\tand \x01", kLogDone);
    EXPECT_FALSE(List.IsEmpty());
    ASSERT_EQ(List.Log().Rows().size(), 4U) << "the log has a row at once";
    ASSERT_TRUE(AllShown());
    EXPECT_EQ(Text(0, 0) + "|" + Text(0, 1) + "|" + Text(1, 0), "first|of a worker|second");
    EXPECT_EQ(Text(3, 1), "line  feed and  ") << "one row, whatever the text";
    EXPECT_EQ(List.Log().Rows()[3].Description, "line\r\nfeed\tand \x01");
    const QRegularExpression time(QStringLiteral("^\\w{3} \\w{3} [ 0-9]\\d \\d{4} \\d\\d:\\d\\d:\\d\\d$"));
    EXPECT_TRUE(time.match(Cell(0, 2).data().toString()).hasMatch()) << Text(0, 2);
    const auto icon = [this](int row) {
        return Cell(row, 0).data(Qt::DecorationRole).value<QIcon>().pixmap(16).toImage();
    };
    EXPECT_FALSE(icon(0).isNull());
    EXPECT_NE(icon(0), icon(1));
    EXPECT_NE(icon(1), icon(3));
    EXPECT_EQ(icon(2), icon(0)) << "a status that is none";
}

TEST_F(ProcessLogListTest, OnlyTheLastRowIsMarked) {
    for (int shown = 1; shown < 4; ++shown) {
        Send("row");
        ASSERT_TRUE(AllShown());
        for (int row = 0; row < shown; ++row) {
            EXPECT_EQ(IsMarked(row), row == shown - 1) << row << " of " << shown;
        }
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
    EXPECT_TRUE(IsMarked(0));
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
    QEventLoop loop; // which takes no time of its own
    TestWorker worker([&] {
        for (int i = 0; i < kRows; ++i) {
            Send(std::to_string(i));
        }
        allSent = true;
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    ASSERT_TRUE(AllShown());
    EXPECT_TRUE(shownOnTheWay);
    EXPECT_LT(batches, kRows / 10);
    EXPECT_EQ(Text(kRows - 1, 0), std::to_string(kRows - 1));
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
        EXPECT_GE(List.columnWidth(2), List.fontMetrics().horizontalAdvance(Cell(0, 2).data().toString()));
        EXPECT_GT(List.columnWidth(0), 100);
    }
    List.resize(1142, 200);
    EXPECT_EQ(List.header()->sectionSize(0), 265);
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
    for (const int row : {2, 0}) {
        List.selectionModel()->select(Cell(row, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
    QTest::keyClick(&List, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(),
              "a\tabout it\t" + Text(0, 2) + "\nc\tabout it\t" + Text(2, 2));
}

} // namespace

} // namespace thntfs::test
