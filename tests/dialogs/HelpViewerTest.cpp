#include "dialogs/HelpViewer.h"

#include "support/desktop/BoxAnswers.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QListWidget>
#include <QRegularExpression>
#include <QTest>
#include <QTextBrowser>
#include <QWindow>
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

namespace thntfs::test {

namespace {

QWidget* HelpWindow() {
    const auto windows = QApplication::topLevelWidgets();
    const auto help = std::find_if(windows.begin(), windows.end(), [](const QWidget* window) {
        return window->objectName() == QLatin1String("Help");
    });
    return help == windows.end() ? nullptr : *help;
}

QTextBrowser& Page() { return *HelpWindow()->findChild<QTextBrowser*>(); }
std::string PageShown() { return Page().source().fileName().toStdString(); }
QListWidget& TopicList() { return *HelpWindow()->findChild<QListWidget*>(); }

// A click as the window system reports it: it doesn't reach a window that a modal dialog blocks.
void ClickTopic(int row) {
    RunEvents();
    const QRect place = TopicList().visualItemRect(TopicList().item(row));
    const QPoint inWindow = TopicList().viewport()->mapTo(HelpWindow(), place.center());
    QTest::mouseClick(HelpWindow()->windowHandle(), Qt::LeftButton, Qt::NoModifier, inWindow);
    RunEvents();
}

class HelpViewerTest : public testing::Test {
protected:
    ~HelpViewerTest() override { delete HelpWindow(); }
};

TEST_F(HelpViewerTest, ShowsEachTopicAndNoLinkLeadsNowhere) {
    const QStringList files = QDir(QStringLiteral(":/help")).entryList();
    ShowHelp({});
    EXPECT_EQ(TopicList().count(), files.size());
    static const QRegularExpression links(QStringLiteral("href=\"([^\"#]*)\""));
    for (int row = 0; row < TopicList().count(); ++row) {
        const QString topic = TopicList().item(row)->data(Qt::UserRole).toString();
        ShowHelp(topic);
        EXPECT_EQ(Page().source().fileName(), topic);
        EXPECT_EQ(Page().documentTitle(), TopicList().item(row)->text()) << qPrintable(topic);
        EXPECT_EQ(TopicList().currentRow(), row);
        for (auto match = links.globalMatch(Page().toHtml()); match.hasNext();) {
            const QString target = match.next().captured(1);
            EXPECT_TRUE(files.contains(target)) << qPrintable(topic + QStringLiteral(" -> ") + target);
        }
    }
}

TEST_F(HelpViewerTest, UnknownTopicShowsTheContentsInTheSameWindowAndForeignLinksNothing) {
    ShowHelp(QStringLiteral("keys.htm"));
    const QWidget* first = HelpWindow();
    ShowHelp(QStringLiteral("nothing-of-ours.htm"));
    EXPECT_EQ(HelpWindow(), first);
    for (const char* link : {"https://example.org/keys.htm", "file:///etc/keys.htm", "qrc:/icons/app.svg"}) {
        Q_EMIT Page().anchorClicked(QUrl(QLatin1String(link)));
        EXPECT_EQ(PageShown(), "contents.htm") << link;
    }
    Q_EMIT Page().anchorClicked(QUrl(QStringLiteral("qrc:/help/faq.htm")));
    EXPECT_EQ(PageShown(), "faq.htm");
    ASSERT_TRUE(QTest::qWaitForWindowActive(HelpWindow()));
    for (const char* before : {"contents.htm", "keys.htm"}) {
        QTest::keyClick(HelpWindow(), Qt::Key_Left, Qt::AltModifier);
        EXPECT_TRUE(WaitUntil([before] { return PageShown() == before; }));
    }
    EXPECT_EQ(TopicList().currentItem()->text(), QStringLiteral("Keys"));
    EXPECT_FALSE(Page().isBackwardAvailable());
}

// The help stands already, unowned, when the wizard calls for it; it serves there, and once the wizard is
// gone.
TEST_F(HelpViewerTest, ServesBesideAModalDialogAndOutlivesIt) {
    QWidget frame;
    frame.show();
    ShowHelp({});
    auto wizard = std::make_unique<QDialog>(&frame);
    wizard->setModal(true);
    wizard->show();
    ClickTopic(2);
    EXPECT_EQ(PageShown(), "contents.htm") << "not blocked";
    ShowHelp(QStringLiteral("keys.htm"));
    ClickTopic(1);
    EXPECT_EQ(PageShown(), "ntfswizardwin.htm");
    wizard->reject();
    EXPECT_TRUE(HelpWindow()->isVisible());
    EXPECT_EQ(HelpWindow()->parentWidget(), &frame);
    ClickTopic(2);
    EXPECT_EQ(PageShown(), "ntfsrecoverdata.htm");

    wizard->show();
    ShowHelp(QStringLiteral("keys.htm"));
    ASSERT_TRUE(QTest::qWaitForWindowActive(HelpWindow()));
    QTest::keyClick(HelpWindow(), Qt::Key_Escape);
    EXPECT_FALSE(HelpWindow()->isVisible());
    wizard.reset();
    ShowHelp(QStringLiteral("faq.htm"));
    EXPECT_TRUE(HelpWindow()->isVisible());
    EXPECT_EQ(PageShown(), "faq.htm");
}

TEST_F(HelpViewerTest, SearchGoesAroundThePage) {
    ShowHelp(QStringLiteral("scans.htm"));
    auto* search = HelpWindow()->findChild<QLineEdit*>();
    QTest::keyClicks(search, QStringLiteral("turbo"));
    const int first = Page().textCursor().selectionStart();
    EXPECT_EQ(first, Page().toPlainText().indexOf(QStringLiteral("turbo"), 0, Qt::CaseInsensitive));
    int places = 0;
    do {
        QTest::keyClick(search, Qt::Key_Return);
        ++places;
    } while (Page().textCursor().selectionStart() != first && places < 100);
    EXPECT_EQ(places, Page().toPlainText().count(QStringLiteral("turbo"), Qt::CaseInsensitive));
    QTest::keyClicks(search, QStringLiteral("xyz"));
    EXPECT_FALSE(Page().textCursor().hasSelection());
}

} // namespace

} // namespace thntfs::test
