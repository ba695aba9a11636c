#include "preview/Previews.h"

#include "catalogue/CatalogueFixture.h"
#include "preview/HangingDrawing.h"
#include "preview/HexView.h"
#include "preview/ImageViewWindow.h"
#include "preview/PreviewWnd.h"
#include "shell/DesktopHost.h"
#include "support/desktop/BoxAnswers.h"
#include "support/desktop/Widgets.h"

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <QTest>
#include <filesystem>

namespace thntfs::test {

namespace {

constexpr std::uint64_t kMaxShown = 31457280;

class PreviewsTest : public CatalogueFixture {
protected:
    PreviewsTest() { OpenVolume(Volume); }

    /// Puts a file on the volume and into the catalogue, and shows it.
    void Show(std::u16string name, ByteVector content) {
        const std::uint64_t size = content.size();
        Volume.AddFile(
            {.Number = ++number_, .Name = name, .Content = std::move(content), .InClusters = size > 100});
        ShowRecord(name, size);
    }
    void ShowRecord(const std::u16string& name, std::uint64_t size) {
        HandWritten catalogue;
        CatalogueEntry entry{.Size = size, .RecordNumber = number_};
        entry.RecordSector = Volume.RecordSector(number_);
        const std::uint32_t id = catalogue.AddEntry(HandWritten::Root(), entry, name);
        catalogue.Finish();
        Shown.ShowPreview(id);
        RunEvents(); // keys reach the window that is active
    }

    template <typename Window>
    static Window* Open() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (auto* sought = dynamic_cast<Window*>(window); sought != nullptr && sought->isVisible()) {
                return sought;
            }
        }
        return nullptr;
    }
    static CHexView& Hex() { return *Open<CPreviewWnd>()->findChild<CHexView*>(); }
    static void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(&Hex(), key, modifiers);
    }
    static QString Copied(Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
        Press(Qt::Key_C, modifiers);
        return QGuiApplication::clipboard()->text();
    }

    /// The notice of the image window once it has come to an end.
    static std::string NoticeAtEnd() {
        CImageViewWindow* window = Open<CImageViewWindow>();
        EXPECT_TRUE(window != nullptr && window->isMaximized());
        EXPECT_TRUE(WaitUntil([&] { return !window->Notice().startsWith(QStringLiteral("Please Wait.")); }));
        EXPECT_NE(window->cursor().shape(), Qt::WaitCursor);
        return window->Notice().toStdString();
    }
    [[nodiscard]] static bool CopyIsLeft() {
        namespace fs = std::filesystem;
        const fs::path place = fs::path(Engine.CatalogueFolder).parent_path();
        return std::any_of(fs::recursive_directory_iterator(place), fs::recursive_directory_iterator(),
                           [](const auto& file) { return file.path().stem() == "picture"; });
    }

    VolumeBuilder Volume;
    int Changes = 0;
    Previews Shown{[this] { ++Changes; }};

private:
    std::uint32_t number_ = 40;
};

ByteVector PictureBytes(const QColor& left, const QColor& right) {
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(left);
    QPainter(&image).fillRect(20, 0, 20, 30, right);
    QBuffer buffer;
    EXPECT_TRUE(image.save(&buffer, "PNG"));
    return BytesOf(buffer.data().toStdString());
}

} // namespace

TEST_F(PreviewsTest, PictureIsStretchedOverTheWindow) {
    for (int again = 0; again < 2; ++again) {
        Show(u"two [*] halves.PNG", PictureBytes(Qt::red, Qt::blue));
        ASSERT_NE(Open<CImageViewWindow>(), nullptr);
        EXPECT_EQ(Open<CImageViewWindow>()->windowTitle().toStdString(), "two [*][*] halves.PNG");
        EXPECT_EQ(Open<CImageViewWindow>()->Notice().toStdString(), "Please Wait. Loading Image file...");
        EXPECT_TRUE(CopyIsLeft());
        EXPECT_EQ(NoticeAtEnd(), "");
        EXPECT_FALSE(CopyIsLeft());
        for (const QSize size : {QSize(300, 100), QSize(100, 300)}) {
            Open<CImageViewWindow>()->showNormal();
            Open<CImageViewWindow>()->resize(size);
            const QImage seen = Open<CImageViewWindow>()->grab().toImage();
            EXPECT_EQ(seen.pixelColor(2, size.height() - 3), Qt::red);
            EXPECT_EQ(seen.pixelColor(size.width() - 3, 2), Qt::blue);
        }
        EXPECT_FALSE(Engine.PreviewActive);
        EXPECT_TRUE(Reports.Progress.empty());
        QTest::keyClick(Open<CImageViewWindow>(), Qt::Key_Escape);
        EXPECT_FALSE(Shown.AnyOpen());
    }
    EXPECT_EQ(Changes, 4);
}

TEST_F(PreviewsTest, PicturesThatCannotBeDrawn) {
    ByteVector damaged = PictureBytes(Qt::red, Qt::blue);
    std::fill(damaged.begin() + 20, damaged.end(), std::uint8_t{0});
    for (const ByteVector& content : {damaged, ByteVector{}, BytesOf("text")}) {
        Show(u"a.jpg", content);
        EXPECT_EQ(NoticeAtEnd(), "Drawing Failed...");
        EXPECT_FALSE(CopyIsLeft());
        EXPECT_TRUE(Shown.CloseOne());
    }
    Plan->Log.clear();
    ShowRecord(u"a.jpg", std::uint64_t{1} << 40U);
    EXPECT_EQ(NoticeAtEnd(), "Drawing Failed...");
    EXPECT_TRUE(Plan->Log.empty()) << "not even copied";
    Shown.CloseOne();
    Show(u"a.png", PictureBytes(Qt::red, Qt::blue));
    EXPECT_TRUE(Shown.CloseOne()) << "while it loads";
    EXPECT_FALSE(CopyIsLeft());
    EXPECT_EQ(Reports.Boxes.size(), 0U);

    QElapsedTimer time;
    time.start();
    Show(u"a.svg", BytesOf(HangingDrawing().toStdString()));
    EXPECT_FALSE(WaitUntil([] { return Open<CImageViewWindow>()->cursor().shape() != Qt::WaitCursor; }, 500));
    EXPECT_TRUE(Shown.CloseOne() && !CopyIsLeft());
    EXPECT_LT(time.elapsed(), 5000) << "neither did the drawing hold up the window";

    Show(u"a.txt", ByteVector(1, 7));
    Plan->Rules = {{.FirstSector = 0, .SectorCount = kForever, .Code = 5}};
    Engine.ScanRunFlag = 1; // in a job a bad code is fatal
    Show(u"a.png", PictureBytes(Qt::red, Qt::blue));
    EXPECT_EQ(NoticeAtEnd(), "Drawing Failed...");
    EXPECT_FALSE(CopyIsLeft());
    EXPECT_EQ(Reports.Boxes.size(), 1U);
    EXPECT_TRUE(Shown.CloseOne() && Shown.CloseOne());
    Show(u"b.txt", ByteVector(400, 7));
    EXPECT_TRUE(CHexView::Shown().empty());
    EXPECT_EQ(Reports.Boxes.size(), 2U);
    EXPECT_TRUE(Shown.CloseOne());
    EXPECT_FALSE(Shown.CloseOne());
}

TEST_F(PreviewsTest, HexWindow) {
    Show(u"photo.old.jpg", BytesOf("0123456789abcdeF!"));
    ASSERT_NE(Open<CPreviewWnd>(), nullptr);
    EXPECT_TRUE(Open<CPreviewWnd>()->isMaximized());
    EXPECT_EQ(Open<CPreviewWnd>()->windowTitle().toStdString(), "photo.old.jpg hex view");
    EXPECT_EQ(Copied().toStdString(), "30") << "the first byte is selected";
    Press(Qt::Key_Down);
    Press(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(Copied().toStdString(), "46 21");
    EXPECT_EQ(Copied(Qt::ControlModifier | Qt::ShiftModifier).toStdString(), "F!");
    Press(Qt::Key_Right);
    Press(Qt::Key_Right);
    EXPECT_EQ(Copied().toStdString(), "21") << "no further";
    Press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(Copied(Qt::ControlModifier | Qt::ShiftModifier).toStdString(), "0123456789abcdeF!");

    Show(u"another", BytesOf("other"));
    EXPECT_EQ(CHexView::Shown().size(), 17U) << "one is enough";
    EXPECT_EQ(Changes, 1);
    Press(Qt::Key_Escape);
    EXPECT_FALSE(Shown.AnyOpen());
    EXPECT_TRUE(Engine.PreviewBuffer.empty() && Engine.PreviewLength == 0);
    Show(u"empty", {});
    EXPECT_EQ(Hex().verticalScrollBar()->maximum(), 0);
    Press(Qt::Key_Down);
    QTest::mouseClick(Hex().viewport(), Qt::LeftButton, {}, {100, 100});
    EXPECT_EQ(Hex().Selected().Length, 0U);
}

TEST_F(PreviewsTest, MouseSelectsInBothColumns) {
    Show(u"a", PatternBytes(64));
    const int line = Hex().verticalScrollBar()->singleStep();
    const int letter = Hex().horizontalScrollBar()->singleStep();
    const auto at = [&](int character, int row) {
        return QPoint((8 + character) * letter + letter / 2 + 2, row * line + line / 2 + 2);
    };
    QTest::mouseClick(Hex().viewport(), Qt::LeftButton, {}, at(HexPairAt(8) + 1, 1));
    EXPECT_EQ(Hex().Selected(), (HexMatch{24, 1}));
    QTest::mouseClick(Hex().viewport(), Qt::LeftButton, Qt::ShiftModifier, at(kHexPartChars + 15, 2));
    EXPECT_EQ(Hex().Selected(), (HexMatch{24, 24}));
    QTest::mouseClick(Hex().viewport(), Qt::LeftButton, {}, at(0, 100));
    EXPECT_EQ(Hex().Selected(), (HexMatch{48, 1}));
}

TEST_F(PreviewsTest, LargestFileIsScrolledAndSearched) {
    Show(u"large", ByteVector(400, 'x'));
    Shown.CloseOne();
    Engine.PreviewBuffer.assign(kMaxShown, 'x');
    Engine.PreviewLength = kMaxShown;
    CHexView view;
    view.resize(800, 600);
    view.show();
    QElapsedTimer time;
    time.start();
    QTest::keyClick(&view, Qt::Key_End, Qt::ControlModifier);
    for (int i = 0; i < 100; ++i) {
        QTest::keyClick(&view, Qt::Key_PageUp);
        view.viewport()->repaint();
    }
    EXPECT_LT(time.elapsed(), 5000);
    EXPECT_EQ(view.Selected(), (HexMatch{kMaxShown - 1 - 16000, 1}));
    QTest::keyClick(&view, Qt::Key_End, Qt::ControlModifier);
    const int lines = static_cast<int>(kMaxShown / kHexLineBytes) * view.verticalScrollBar()->singleStep();
    EXPECT_EQ(view.verticalScrollBar()->value(), lines + 2 - view.viewport()->height());
    const QImage bottom = view.viewport()->grab().toImage();
    EXPECT_NE(bottom.copy(0, bottom.height() - 20, 60, 20), bottom.copy(0, bottom.height() - 40, 60, 20));
    Engine.PreviewLength = 0;
    Engine.PreviewBuffer.clear();
}

TEST_F(PreviewsTest, SearchGoesFromHitToHit) {
    Show(u"a", BytesOf("one two ONE"));
    Press(Qt::Key_F, Qt::ControlModifier);
    auto* wanted = Open<CPreviewWnd>()->findChild<QLineEdit*>();
    ASSERT_TRUE(wanted->isVisible());
    QTest::keyClicks(wanted, QStringLiteral("one"));
    for (const std::uint64_t offset : {0U, 8U, 0U}) {
        QTest::keyClick(wanted, Qt::Key_Return);
        EXPECT_EQ(Hex().Selected(), (HexMatch{offset, 3}));
    }
    wanted->setText(QStringLiteral("6F"));
    ButtonOf(*Open<CPreviewWnd>(), "Hex bytes")->click();
    for (const std::uint64_t offset : {6U, 0U, 6U}) {
        QTest::keyClick(wanted, Qt::Key_F3);
        EXPECT_EQ(Hex().Selected(), (HexMatch{offset, 1}));
    }
    const auto told = [&](const char* text) {
        wanted->setText(QLatin1String(text));
        QTest::keyClick(wanted, Qt::Key_Return);
        return wanted->parentWidget()->findChild<QLabel*>()->text().toStdString();
    };
    EXPECT_EQ(told("6F6F"), "Not found.");
    EXPECT_EQ(told("6"), "These are no hex bytes.");
    QTest::keyClick(wanted, Qt::Key_Escape);
    EXPECT_TRUE(Shown.AnyOpen() && !wanted->isVisible());
}

} // namespace thntfs::test
