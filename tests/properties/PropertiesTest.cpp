#include "catalogue/CatalogueFixture.h"
#include "catalogue/CountBelow.h"
#include "content/EntryFacts.h"
#include "properties/PropertiesSheet.h"
#include "properties/PropertyTexts.h"
#include "shell/DesktopHost.h"
#include "shell/PauseGate.h"
#include "support/desktop/BoxAnswers.h"
#include "support/desktop/Widgets.h"

#include <QCheckBox>
#include <QElapsedTimer>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>
#include <thread>

namespace thntfs::test {

namespace {

class PropertiesTest : public CatalogueFixture {
protected:
    PropertiesTest() { OpenVolume(Volume); }
    ~PropertiesTest() override {
        WorkerGate().Open();
        Leave();
    }

    /// As a user closes it, so that no worker is at it any more.
    void Leave() {
        if (Sheet == nullptr) {
            return;
        }
        Sheet->close();
        EXPECT_TRUE(WaitUntil([this] { return !Sheet->isVisible(); }));
        Sheet.reset();
    }
    void Open(std::uint32_t entryId) {
        Leave();
        Sheet = std::make_unique<CPropertiesSheet>(nullptr, entryId);
        Sheet->open();
        RunEvents();
    }
    /// "caption: text" of all rows; of the name, which has none, the text alone.
    [[nodiscard]] Texts Rows() const {
        Texts rows;
        for (const QLabel* label : Sheet->findChildren<QLabel*>()) {
            const QString text = label->buddy() == nullptr ? QString() : TextOf(*label->buddy());
            if (!text.isEmpty()) {
                rows.push_back((label->text() + QStringLiteral(": ") + text).toStdString());
            }
        }
        return rows;
    }
    [[nodiscard]] Texts Checked() const {
        Texts checked;
        for (const QCheckBox* box : Sheet->findChildren<QCheckBox*>()) {
            EXPECT_FALSE(box->isEnabled());
            if (box->isChecked()) {
                checked.push_back(box->text().remove(QLatin1Char('&')).toStdString());
            }
        }
        return checked;
    }
    bool WaitForRow(const std::string& row) const {
        return WaitUntil([&] {
            const Texts rows = Rows();
            return std::find(rows.begin(), rows.end(), row) != rows.end();
        });
    }
    bool CloseIsQuick() const {
        QElapsedTimer time;
        time.start();
        Press(*Sheet, "Close");
        return WaitUntil([this] { return !Sheet->isVisible(); }) && time.elapsed() < 1000;
    }

    VolumeBuilder Volume;
    std::unique_ptr<CPropertiesSheet> Sheet;

private:
    static QString TextOf(const QWidget& field) {
        if (const auto* line = dynamic_cast<const QLineEdit*>(&field)) {
            EXPECT_TRUE(line->isReadOnly());
            return line->text();
        }
        const auto* lines = dynamic_cast<const QPlainTextEdit*>(&field);
        return lines == nullptr ? QString() : lines->toPlainText();
    }
};

} // namespace

TEST_F(PropertiesTest, Texts) {
    for (const auto& [bytes, text] : {std::pair<std::uint64_t, const char*>{0, "(0.000   KB) 0 bytes"},
                                      {1536, "(1.500   KB) 1536 bytes"},
                                      {1048575, "(1023.999 KB) 1048575 bytes"},
                                      {1048576, "(1.000   MB) 1048576 bytes"},
                                      {1073741823, "(1024.000 MB) 1073741823 bytes"},
                                      {1073741824, "(1.000   GB) 1073741824 bytes"}}) {
        EXPECT_EQ(PropertySize(bytes).toStdString(), text);
    }
    EXPECT_EQ(PropertySize(512, true).toStdString(), "(0.500   KB)512 bytes");
    EXPECT_EQ(PropertyContains({.Files = 3, .Folders = 1}).toStdString(), "3 Files, 1 Folders");
    EXPECT_EQ(PropertyDate(0).toStdString(), "N\\A");
    EXPECT_EQ(PropertyDate(44 << 9 | 1 << 5 | 3).toStdString(), "Wednesday, January 03, 2024");
    EXPECT_EQ(PropertyDate(44 << 9 | 2 << 5 | 30).toStdString(), "N\\A");
    EXPECT_EQ(PropertyAttributes(0x10000022).toStdString(), "Hidden, Archive, Folder index (0x10000022)");
    qputenv("TZ", "XST+3:30"); // west of Greenwich
    tzset();
    EXPECT_EQ(PropertyTime(133497648001239999).toStdString(), "2024-01-15 00:30:00.123 UTC-03:30");
    qunsetenv("TZ");
    tzset();
}

TEST_F(PropertiesTest, AFile) {
    Volume.PlaceRecord(Volume.NewRecord(40)
                           .AddStandardInformation(EqualTimes(), 0x21)
                           .AddFileName(NameIn(5, u"letter"))
                           .AddFileName(NameIn(5, u"copy"))
                           .AddData({.Runs = {{2, 500}}})
                           .AddData(BytesOf("abc"), u"side"));
    HandWritten catalogue;
    CatalogueEntry entry{.Size = 8192, .RecordNumber = 40};
    entry.CreatedDate = 44 << 9 | 1 << 5 | 3;
    entry.Flags = 0x821;
    entry.RecordSector = Volume.RecordSector(40);
    const std::uint32_t id = catalogue.AddEntry(HandWritten::Root(), entry, u"let[*]ter");
    catalogue.Finish();
    Open(id);
    EXPECT_EQ(Sheet->windowTitle().toStdString(), "let[*][*]ter Properties");
    EXPECT_EQ(Sheet->findChild<QLineEdit*>()->text().toStdString(), "let[*]ter");
    EXPECT_TRUE(WaitForRow("Condition: unknown"));
    const Texts rows = Rows();
    EXPECT_EQ((Texts{rows.begin(), rows.begin() + 6}),
              (Texts{"Type: File", "Size: (8.000   KB) 8192 bytes", "Created: Wednesday, January 03, 2024",
                     "Modified: N\\A", "Full path: /let[*]ter", "Record number: 40"}));
    EXPECT_EQ((Texts{rows.begin() + 10, rows.end()}),
              (Texts{"NTFS attributes: Read only, Archive (0x00000021)", "All names: /letter\n/copy",
                     "Named streams: side: 3 bytes",
                     "Data: In 1 run(s) of clusters, the first at cluster 500", "Condition: unknown"}));
    EXPECT_EQ(Checked(), (Texts{"Read Only", "Deleted", "Archive", "Compressed"}));
    EXPECT_TRUE(CloseIsQuick());
    Open(0x7FFFFFFF);
    EXPECT_TRUE(CloseIsQuick());
}

TEST_F(PropertiesTest, AFolderIsCounted) {
    HandWritten catalogue;
    FolderIndexNode& outer = catalogue.AddFolder(HandWritten::Root(), 30, u"outer", true, 7);
    FolderIndexNode& inner = catalogue.AddFolder(outer, 31, u"inner", false, 12);
    for (int i = 0; i < 3; ++i) {
        catalogue.AddFile(inner, u"file", 500);
    }
    const auto [outerId, innerId] = std::pair(outer.EntryId, inner.EntryId);
    const std::uint32_t emptyId = catalogue.AddFolder(inner, 32, u"empty", true, 100).EntryId;
    catalogue.Finish();

    WorkerGate().Close(); // holds the count where it tells of itself
    Open(outerId);
    EXPECT_EQ(Rows()[1], "Size: (0.007   KB) 7 bytes");
    WorkerGate().Open();
    EXPECT_TRUE(WaitForRow("Size: (1.574   KB) 1612 bytes"));
    EXPECT_EQ(Rows()[2], "Contains: 3 Files, 2 Folders");
    EXPECT_TRUE(WaitForRow("Full path: /outer"));
    EXPECT_TRUE(Checked().empty());
    Open(emptyId);
    EXPECT_TRUE(WaitForRow("Size: (0.000   KB) 0 bytes"));
    EXPECT_EQ(Rows()[2], "Contains: 0 Files, 0 Folders");

    Leave();
    WorkerGate().Close();
    Open(innerId);
    EXPECT_EQ(Checked(), Texts{"Deleted"});
    Press(*Sheet, "Close");
    Sheet->close();
    QTest::keyClick(Sheet.get(), Qt::Key_Escape);
    EXPECT_TRUE(Sheet->isVisible()) << "the worker is still at it";
    WorkerGate().Open();
    EXPECT_TRUE(WaitUntil([this] { return !Sheet->isVisible(); }));
    EXPECT_EQ(Sheet->result(), -1);

    WorkerGate().Close();
    Open(outerId);
    const std::jthread later([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        WorkerGate().Open();
    });
    Sheet.reset(); // not closed before, and its worker is about to send
}

} // namespace thntfs::test
