#include "WizardFixture.h"
#include "partitions/OpenSource.h"
#include "platform/media/Medium.h"
#include "shell/DesktopHost.h"
#include "shell/PauseGate.h"
#include "support/FaultyMedium.h"
#include "wizard/ChooseSectorRange.h"
#include "wizard/DiskScanMode.h"
#include "wizard/LogicalDrivesFound.h"
#include "wizard/ScanArea.h"
#include "wizard/SearchForPartitions.h"

#include <QLineEdit>
#include <QProgressBar>
#include <QTableWidget>
#include <chrono>
#include <fstream>
#include <thread>

namespace thntfs::test {

namespace {

constexpr std::size_t kSector = 512;

class SearchTest : public WizardTest {
protected:
    /// The image "basic" without its partition table and without the copy of the boot sector.
    [[nodiscard]] std::string MakeWreck() const {
        std::string disk = ReadWholeFile(VolumePath("basic").toStdString());
        std::fill_n(disk.begin(), kSector, '\0');
        std::fill_n(disk.begin() + (2048 + 49151) * kSector, kSector, '\0');
        std::ofstream(Scratch / "wreck.th2", std::ios::binary) << disk;
        return Scratch / "wreck.th2";
    }

    void OpenWreck() {
        ASSERT_EQ(OpenImageFile(MakeWreck()), kErrorNone);
        Engine.SourceDisk.MediaHandle = MakeFaultyMedium(std::move(Engine.SourceDisk.MediaHandle), Plan);
    }

    void OpenSlowWreck() {
        OpenWreck();
        Plan->OnRead = [](auto, auto) { std::this_thread::sleep_for(std::chrono::milliseconds(2)); };
    }

    void AnswerMode(const char* method, const char* button = "OK") {
        Answers.When<CDiskScanMode>([method, button](CDiskScanMode& dialog) {
            test::Press(dialog, method);
            test::Press(dialog, button);
        });
    }

    void AnswerRange(const char* button) {
        Answers.When<CChooseSectorRange>(
            [button](CChooseSectorRange& dialog) { test::Press(dialog, button); });
    }

    std::shared_ptr<FaultPlan> Plan = std::make_shared<FaultPlan>();
};

TEST_F(SearchTest, EachMethodFromTheImagePageAndBackFromEachQuestion) {
    const std::string wreck = MakeWreck();
    Texts lines = {"clear views", "0 Selected: " + wreck + " | Image Processing Mode:Logical Volume Scan"};
    Sheet->OpenOnImage(QString::fromStdString(wreck));
    AtSheet([&] {
        Press("Search for lost partition(s)");
        Press("Next >");
    });
    AnswerMode("Thorough Scan", "Cancel");
    AtSheet([&] {
        EXPECT_EQ(Heading(), "Select image to recover data");
        EXPECT_EQ(Buttons(), "< Back Next >");
        EXPECT_EQ(Arrived, lines) << "no search";
        Press("Next >");
    });
    AnswerMode("Thorough Scan");
    AnswerRange("Cancel");
    AtSheet([&] {
        EXPECT_EQ(Heading(), "Select image to recover data");
        Arrived.clear();
        Press("Next >");
    });
    AnswerMode("Quick Scan");
    AtSheet([&] {
        EXPECT_EQ(RowsShown(*Sheet), Texts{"No Logical Drives Found |  |  |  |  |  | "});
        EXPECT_EQ(Buttons(), "< Back (Finish)");
        lines.push_back("0 Searching Logical Volumes | Sectors Range 0 to " +
                        std::to_string(Engine.SourceDisk.TotalSectors));
        lines.emplace_back("2 Completed Searching partitions | -----------------");
        EXPECT_EQ(Arrived, lines);
        EXPECT_EQ(Engine.ScanRunFlag, 0U);
        Press("< Back");
        Press("Next >");
    });
    AnswerMode("Thorough Scan");
    AnswerRange("OK");
    Texts found;
    QString percent;
    Answers.MayAnswer = [&](const QMessageBox& box) {
        found = RowsShown(*box.parentWidget());
        percent = box.parentWidget()->findChildren<QLabel*>().at(0)->text();
        return true;
    };
    AtSheet([&] {
        EXPECT_EQ(RowsShown(*Sheet),
                  Texts{"NTFS logical drive 1 | 2048 |  24.000 MB | Yes | search | Basic | 169"});
        QTest::keyClick(&OnPage<QTableWidget>(), Qt::Key_Down);
        Press("Finish");
    });
    EXPECT_EQ(Run(), kWizardFinished);
    EXPECT_EQ(found, Texts{"NTFS logical drive #1 | 2048"});
    EXPECT_EQ(percent, QStringLiteral("100 %"));
    EXPECT_EQ(Boxes(), (Texts{"Information: Quick scan of drives completed.\nNo logical drive(s) found.\n"
                              "Please use thorough scan.",
                              "Information: Thorough scan of drives completed."}));
    EXPECT_EQ(Answers.Boxes[1].Icon, QMessageBox::Information);
    EXPECT_FALSE(Engine.VolumeParams.MftExtents.empty());
}

TEST_F(SearchTest, AbortKeepsWhatWasFound) {
    OpenSlowWreck();
    AnswerMode("Thorough Scan");
    AnswerRange("OK");
    Answers.When<CLogicalDrivesFound>([&](CLogicalDrivesFound& dialog) {
        EXPECT_TRUE(WaitUntil([&] { return !RowsShown(dialog).empty(); }));
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Thorough Scan"));
        QTest::keyClick(&dialog, Qt::Key_Escape);
        dialog.close();
        EXPECT_TRUE(dialog.isVisible());
        Answers.Answer(QMessageBox::No);
        Answers.Answer(QMessageBox::Yes);
        Answers.MayAnswer = [](const QMessageBox& box) {
            return box.windowTitle() != QLatin1String("Confirm") || WorkerGate().IsHolding();
        };
        test::Press(dialog, "Abort Process");
        EXPECT_EQ(Engine.ScanRunFlag, 1U) << "No";
        EXPECT_FALSE(WorkerGate().IsClosed());
        test::Press(dialog, "Abort Process");
    });
    EXPECT_TRUE(SearchForPartitions(Engine.SourceDisk.TotalSectors, nullptr)) << "the wizard goes on";
    EXPECT_TRUE(Answers.AllDone());
    EXPECT_EQ(Boxes(),
              (Texts{"Confirm: Do you want to abort scanning?", "Confirm: Do you want to abort scanning?",
                     "Information: Thorough scan of drives aborted."}));
    EXPECT_EQ(Answers.Boxes.back().Icon, QMessageBox::Critical);
    EXPECT_EQ(Arrived.back(), "1 Aborted searching partitions | -----------------");
    EXPECT_EQ(Engine.SourceDisk.Partitions.size(), 1U);
    EXPECT_EQ(Engine.ScanRunFlag, 0U);
    EXPECT_FALSE(TheDesktopHost().IsSearching());
}

TEST_F(SearchTest, EndOfTheProgramEndsTheSearch) {
    OpenSlowWreck();
    AnswerMode("Thorough Scan");
    AnswerRange("OK");
    Answers.When<CLogicalDrivesFound>([&](CLogicalDrivesFound& dialog) {
        EXPECT_TRUE(WaitUntil([&] { return !RowsShown(dialog).empty(); }));
        dialog.done(QDialog::Rejected);
    });
    EXPECT_TRUE(SearchForPartitions(Engine.SourceDisk.TotalSectors, nullptr));
    EXPECT_EQ(Arrived.back(), "1 Aborted searching partitions | -----------------");
    EXPECT_EQ(Engine.ScanRunFlag, 0U);
}

TEST_F(SearchTest, DialogShowsWhatIsToldAndTheEndBehindTheAbortQuestion) {
    CLogicalDrivesFound dialog(nullptr, {SearchMethod::Quick, 0, 1000});
    dialog.show();
    const auto& bar = *dialog.findChild<QProgressBar*>();
    WM_SEARCH_POSITION.Send(&dialog, 5, 0);
    EXPECT_EQ(bar.value(), 0);
    WM_SEARCH_POSITION.Send(&dialog, 999, 1000);
    EXPECT_EQ(bar.value(), 99);
    for (unsigned i = 0; i < 256; ++i) {
        WM_PARTITION_FOUND.Send(&dialog, 0xFFFFFF00U + i);
    }
    EXPECT_EQ(RowsShown(dialog).at(254), "NTFS logical drive #255 | 4294967294");
    EXPECT_EQ(RowsShown(dialog).at(255), "NTFS logical drive #0 | 4294967295");
    Answers.MayAnswer = [&](const QMessageBox& box) {
        if (box.windowTitle() == QLatin1String("Confirm")) {
            WM_SEARCH_FINISHED.Send(&dialog, true);
        }
        return true;
    };
    test::Press(dialog, "Abort Process");
    EXPECT_EQ(Boxes().size(), 2U);
    EXPECT_FALSE(dialog.isVisible());
}

TEST_F(SearchTest, RangeIsTestedWithEveryChange) {
    constexpr const char* kStartFault = "Start sector should be less than total sectors";
    constexpr const char* kOrderFault = "End sector should be greater than start sector";
    constexpr const char* kEndFault = "End sector should be less than total sectors";
    const std::tuple<const char*, const char*, const char*, int, int> cases[] = {
        {"0", "20000", "9.77 MB", 0, 100},     {"0", "20001", kEndFault, 1, 0},
        {"20000", "20000", kStartFault, 1, 0}, {"12345", "12345", kOrderFault, 1, 0},
        {"", "2", "1024 bytes", 0, 0},         {"5000", "15102", "4.93 MB", 25, 76},
        {"5000", "", kOrderFault, 1, 0}};
    Engine.SourceDisk.BytesPerSector = 512;
    CChooseSectorRange dialog(nullptr, 20000);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    const auto edits = dialog.findChildren<QLineEdit*>();
    const auto parts = dialog.findChildren<QFrame*>(QString(), Qt::FindDirectChildrenOnly);
    const auto isArea = [](const QFrame* part) { return dynamic_cast<const CScanArea*>(part) != nullptr; };
    const auto& bar = dynamic_cast<const CScanArea&>(**std::find_if(parts.begin(), parts.end(), isArea));
    for (const auto& [start, end, text, barStart, barEnd] : cases) {
        edits.at(0)->setText(QLatin1String(start));
        edits.at(1)->setText(QLatin1String(end));
        EXPECT_EQ(dialog.findChild<QLabel*>()->text(), QLatin1String(text)) << start;
        EXPECT_EQ(std::pair(bar.RangeStart(), bar.RangeEnd()), std::pair(barStart, barEnd)) << start;
        EXPECT_EQ(ButtonOf(dialog, "OK")->isEnabled(), barStart <= barEnd) << end;
    }
    dialog.accept();
    EXPECT_TRUE(dialog.isVisible()) << "with a fault";
    edits.at(0)->clear();
    QTest::keyClicks(edits.at(0), QStringLiteral("-1x2345678"));
    EXPECT_EQ(edits.at(0)->text(), QStringLiteral("12345")) << "digits, and no more than fit";
    edits.at(0)->setFocus();
    edits.at(0)->clear();
    QTest::keyClick(edits.at(0), Qt::Key_Tab);
    EXPECT_EQ(edits.at(0)->text(), QStringLiteral("0")) << "what is left empty is filled";
    edits.at(1)->setFocus();
    edits.at(1)->clear();
    QTest::keyClick(edits.at(1), Qt::Key_Return);
    EXPECT_EQ(dialog.EndSector, 20000U);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

TEST_F(SearchTest, RangeGoesIntoTheSearch) {
    OpenWreck();
    Plan->Rules = {{3100, 2}};
    AnswerMode("Thorough Scan");
    Answers.When<CChooseSectorRange>([](CChooseSectorRange& dialog) {
        dialog.findChildren<QLineEdit*>().at(0)->setText(QStringLiteral("3000"));
        dialog.findChildren<QLineEdit*>().at(1)->setText(QStringLiteral("4000"));
        test::Press(dialog, "OK");
    });
    EXPECT_TRUE(SearchForPartitions(Engine.SourceDisk.TotalSectors, nullptr));
    EXPECT_EQ(Arrived.at(0), "0 Searching Logical Volumes | Sectors Range 3000 to 4000");
    EXPECT_EQ(Arrived.back().find("1 2 sectors"), 0U) << Arrived.back();
    EXPECT_TRUE(Engine.SourceDisk.Partitions.empty());
    EXPECT_EQ(Boxes(), Texts{"Information: Thorough scan of drives completed."}) << "no advice";
}

} // namespace

} // namespace thntfs::test
