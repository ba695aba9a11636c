#include "dialogs/HelpViewer.h"

#include "support/desktop/BoxAnswers.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QRegularExpression>
#include <QSet>
#include <QTest>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTimer>
#include <QWindow>
#include <gtest/gtest.h>
#include <memory>

using namespace thntfs;
using namespace thntfs::test;

namespace {

QWidget* HelpWindow() {
    const auto windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (window->objectName() == QLatin1String("Help")) {
            return window;
        }
    }
    return nullptr;
}

QTextBrowser* Page() { return HelpWindow()->findChild<QTextBrowser*>(); }
QListWidget* TopicList() { return HelpWindow()->findChild<QListWidget*>(); }

// A click as the window system reports it: it doesn't reach a window that a modal dialog blocks.
void ClickTopic(int row) {
    RunEvents();
    const QRect place = TopicList()->visualItemRect(TopicList()->item(row));
    const QPoint inWindow = TopicList()->viewport()->mapTo(HelpWindow(), place.center());
    QTest::mouseClick(HelpWindow()->windowHandle(), Qt::LeftButton, Qt::NoModifier, inWindow);
    RunEvents();
}

class HelpViewerTest : public testing::Test {
protected:
    void TearDown() override { delete HelpWindow(); }
};

} // namespace

TEST_F(HelpViewerTest, ShowsEachTopicAndNoLinkLeadsNowhere) {
    ShowHelp({});
    QSet<QString> topics;
    for (int row = 0; row < TopicList()->count(); ++row) {
        topics.insert(TopicList()->item(row)->data(Qt::UserRole).toString());
    }
    const QStringList files = QDir(QStringLiteral(":/help")).entryList();
    EXPECT_EQ(topics, QSet<QString>(files.begin(), files.end()));
    static const QRegularExpression links(QStringLiteral("href=\"([^\"#]*)\""));
    for (int row = 0; row < TopicList()->count(); ++row) {
        const QString topic = TopicList()->item(row)->data(Qt::UserRole).toString();
        ShowHelp(topic);
        EXPECT_EQ(Page()->source().fileName(), topic);
        EXPECT_EQ(Page()->documentTitle(), TopicList()->item(row)->text()) << qPrintable(topic);
        EXPECT_EQ(TopicList()->currentRow(), row);
        auto match = links.globalMatch(Page()->toHtml());
        while (match.hasNext()) {
            const QString target = match.next().captured(1);
            EXPECT_TRUE(topics.contains(target)) << qPrintable(topic + QStringLiteral(" -> ") + target);
        }
    }
}

TEST_F(HelpViewerTest, UnknownTopicShowsTheContentsInTheSameWindow) {
    ShowHelp(QStringLiteral("keys.htm"));
    const QWidget* first = HelpWindow();
    ShowHelp(QStringLiteral("nothing-of-ours.htm"));
    EXPECT_EQ(HelpWindow(), first);
    EXPECT_EQ(Page()->source().fileName(), QStringLiteral("contents.htm"));
    ASSERT_TRUE(QTest::qWaitForWindowActive(HelpWindow()));
    QTest::keyClick(HelpWindow(), Qt::Key_Left, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([] { return Page()->source().fileName() == QLatin1String("keys.htm"); }));
    EXPECT_EQ(TopicList()->currentItem()->text(), QStringLiteral("Keys"));
    EXPECT_FALSE(Page()->isBackwardAvailable());
}

TEST_F(HelpViewerTest, FollowsOwnLinksOnly) {
    ShowHelp({});
    const QUrl contents = Page()->source();
    for (const char* link : {"https://example.org/keys.htm", "file:///etc/keys.htm", "qrc:/icons/app.svg"}) {
        Q_EMIT Page()->anchorClicked(QUrl(QLatin1String(link)));
        EXPECT_EQ(Page()->source(), contents) << link;
    }
    Q_EMIT Page()->anchorClicked(QUrl(QStringLiteral("qrc:/help/keys.htm")));
    EXPECT_EQ(Page()->source().fileName(), QStringLiteral("keys.htm"));
}

// The help stands already, unowned, when the wizard calls for it; it serves there, and once the wizard is
// gone.
TEST_F(HelpViewerTest, ServesBesideAModalDialogAndOutlivesIt) {
    QWidget frame;
    frame.show();
    ShowHelp({});
    {
        QDialog wizard(&frame);
        QTimer::singleShot(0, &wizard, [&wizard] {
            ClickTopic(2);
            EXPECT_EQ(Page()->source().fileName(), QStringLiteral("contents.htm")) << "not blocked";
            ShowHelp(QStringLiteral("keys.htm"));
            ClickTopic(1);
            EXPECT_EQ(Page()->source().fileName(), QStringLiteral("ntfswizardwin.htm"));
            wizard.reject();
        });
        wizard.exec();
    }
    ASSERT_NE(HelpWindow(), nullptr);
    EXPECT_TRUE(HelpWindow()->isVisible());
    EXPECT_EQ(HelpWindow()->parentWidget(), &frame);
    ClickTopic(2);
    EXPECT_EQ(Page()->source().fileName(), QStringLiteral("ntfsrecoverdata.htm"));
}

TEST_F(HelpViewerTest, OpensAnewAfterItsOwnerDied) {
    auto dialog = std::make_unique<QDialog>();
    dialog->setModal(true);
    dialog->show();
    ShowHelp(QStringLiteral("keys.htm"));
    EXPECT_EQ(HelpWindow()->parentWidget(), dialog.get());
    ASSERT_TRUE(QTest::qWaitForWindowActive(HelpWindow()));
    QTest::keyClick(HelpWindow(), Qt::Key_Escape);
    EXPECT_FALSE(HelpWindow()->isVisible());
    dialog.reset();
    ShowHelp(QStringLiteral("faq.htm"));
    ASSERT_NE(HelpWindow(), nullptr);
    EXPECT_TRUE(HelpWindow()->isVisible());
    EXPECT_EQ(Page()->source().fileName(), QStringLiteral("faq.htm"));
}

TEST_F(HelpViewerTest, SearchGoesAroundThePage) {
    ShowHelp(QStringLiteral("scans.htm"));
    auto* search = HelpWindow()->findChild<QLineEdit*>();
    QTest::keyClicks(search, QStringLiteral("turbo"));
    const int first = Page()->textCursor().selectionStart();
    EXPECT_EQ(Page()->textCursor().selectedText(), QStringLiteral("Turbo"));
    int places = 0;
    do {
        QTest::keyClick(search, Qt::Key_Return);
        ++places;
    } while (Page()->textCursor().selectionStart() != first && places < 100);
    EXPECT_EQ(places, Page()->toPlainText().count(QStringLiteral("turbo"), Qt::CaseInsensitive));
    QTest::keyClicks(search, QStringLiteral("xyz"));
    EXPECT_FALSE(Page()->textCursor().hasSelection());
}
