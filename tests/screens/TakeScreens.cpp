// Takes the pictures of docs/images: drives the real windows on a real screen (scripts/take-screenshots gives
// it one) and saves what stands on it. THNTFS_SCREENS names the folder for them, THNTFS_SAMPLE the sample's
// image.

#include "frame/FrameFixture.h"
#include "shell/PauseGate.h"
#include "support/desktop/ModalSteps.h"
#include "support/desktop/Widgets.h"
#include "wizard/ChooseSectorRange.h"
#include "wizard/DiskScanMode.h"
#include "wizard/LogicalDrivesFound.h"
#include "wizard/WizardSheet.h"

#include <QApplication>
#include <QPalette>
#include <QScreen>
#include <QTableWidget>
#include <QTest>
#include <QToolButton>
#include <QTreeView>
#include <QTreeWidget>
#include <fstream>
#include <thread>

namespace thntfs::test {
namespace {

constexpr int kSettleMilliseconds = 300;
constexpr std::size_t kSector = 512;

void UseDarkPalette() {
    QApplication::setStyle(QStringLiteral("Fusion"));
    QPalette dark(QColor(45, 45, 48));
    dark.setColor(QPalette::Base, QColor(30, 30, 32));
    QApplication::setPalette(dark);
}

class Screens : public FrameFixture {
protected:
    Screens() {
        if (qEnvironmentVariableIsSet("THNTFS_DARK")) {
            UseDarkPalette();
        }
        Frame->showMaximized();
        QTest::qWait(kSettleMilliseconds);
    }

    static void Shoot(const char* name) {
        QTest::qWait(kSettleMilliseconds);
        QTimer::singleShot(0, [] {}); // the commands' states follow when the loop is about to wait
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QTest::qWait(kSettleMilliseconds);
        const QString folder = qEnvironmentVariable("THNTFS_SCREENS", QStringLiteral("."));
        const QPixmap picture = QGuiApplication::primaryScreen()->grabWindow(0);
        EXPECT_TRUE(picture.save(folder + QLatin1Char('/') + QLatin1String(name) + QStringLiteral(".png")));
    }

    /// The image of the sample disk, or else one of the packed volumes.
    static std::string Sample() {
        return qEnvironmentVariable("THNTFS_SAMPLE", QString::fromStdString(Volume("basic.img")))
            .toStdString();
    }

    void Choose(const std::vector<QString>& path) {
        auto& tree = *Frame->TreeView;
        QModelIndex index = tree.model()->index(0, 0);
        for (const QString& name : path) {
            tree.expand(index);
            for (int row = 0; row < tree.model()->rowCount(index); ++row) {
                const QModelIndex child = tree.model()->index(row, 0, index);
                if (child.data().toString().trimmed() == name) {
                    index = child;
                    break;
                }
            }
        }
        tree.setCurrentIndex(index);
        QTest::keyClick(&tree, Qt::Key_Return);
    }

    void AtSheet(std::function<void(CWizardSheet&)> act) { Steps.When<CWizardSheet>(std::move(act)); }

    static void ClickRow(QTableWidget& table, int row) {
        QTest::mouseClick(table.viewport(), Qt::LeftButton, {},
                          table.visualItemRect(table.item(row, 0)).center());
    }

    void ChooseFirstDisk(const CWizardSheet& sheet) {
        auto& tree = *sheet.ActivePage().findChild<QTreeWidget*>();
        QTest::mouseClick(tree.viewport(), Qt::LeftButton, {},
                          tree.visualItemRect(tree.topLevelItem(0)->child(0)).center());
    }

    ModalSteps Steps;
};

TEST_F(Screens, MainWindow) {
    Shoot("main-empty");
    LoadByMenu(SavedScanOf(Sample()));
    Choose({QStringLiteral("Root"), QStringLiteral("Pictures"), QStringLiteral("Summer 2022")});
    Shoot("main-tree");
    Frame->RunCommand(60000);
    Shoot("main-icons");
    Frame->RunCommand(60003);
}

TEST_F(Screens, RunningScanAndStopQuestion) {
    LoadByMenu(SavedScanOf(Volume("office.img")));
    WatchMedium();
    Plan->OnRead = [this](std::uint64_t index, const ReadRequest& /*request*/) {
        if (index == 12) {
            QMetaObject::invokeMethod(
                Frame.get(), [] { Shoot("main-scanning"); }, Qt::BlockingQueuedConnection);
            QMetaObject::invokeMethod(
                Frame.get(), [this] { PressKey(Qt::Key_F4); }, Qt::QueuedConnection);
            while (!WorkerGate().IsClosed()) {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        }
    };
    const char* name = "main-stop";
    Answers.MayAnswer = [&name](const QMessageBox& /*box*/) {
        if (name != nullptr) {
            Shoot(std::exchange(name, name == std::string("main-stop") ? "main-finished" : nullptr));
        }
        return true;
    };
    Frame->BeginBasicScan();
    EXPECT_TRUE(WaitForIdle());
}

TEST_F(Screens, WizardPages) {
    AtSheet([this](CWizardSheet& sheet) {
        Shoot("wizard-main");
        Press(sheet, "Recover your Data");
        Shoot("wizard-task");
        Press(sheet, "Next >");
        Shoot("wizard-disk-steps");
        ChooseFirstDisk(sheet);
        Shoot("wizard-disk");
        Press(sheet, "< Back");
        Press(sheet, "Create disk Image");
        Press(sheet, "Next >");
        ChooseFirstDisk(sheet);
        Shoot("wizard-create-image");
        Press(sheet, "< Back");
        Press(sheet, "Recover your data from disk image");
        Press(sheet, "Next >");
        Answers.AnswerFile(QString::fromStdString(Volume("logical.img")));
        Press(sheet, "Select Image File");
        Shoot("wizard-image");
        Press(sheet, "Next >");
        auto& table = *sheet.ActivePage().findChild<QTableWidget*>();
        ClickRow(table, 1);
        Shoot("wizard-partitions");
        sheet.done(0);
    });
    PressKey(Qt::Key_W, Qt::ControlModifier);
    AtSheet([](CWizardSheet& sheet) {
        auto* clone = sheet.ActivePage().findChildren<QToolButton*>().at(kTaskClone); // is hidden
        clone->setEnabled(true);
        clone->click();
        Press(sheet, "Next >");
        Shoot("wizard-clone");
        sheet.done(0);
    });
    PressKey(Qt::Key_W, Qt::ControlModifier);
    EXPECT_TRUE(Steps.AllDone());
}

TEST_F(Screens, SearchDialogs) {
    std::string disk = ReadWholeFile(Volume("logical.img"));
    disk.replace(0, kSector, kSector, '\0');
    std::ofstream(Folder / "wreck.img", std::ios::binary) << disk;
    AtSheet([this](CWizardSheet& sheet) {
        Press(sheet, "Recover your data from disk image");
        Press(sheet, "Next >");
        Answers.AnswerFile(QString::fromStdString(Folder / "wreck.img"));
        Press(sheet, "Select Image File");
        Press(sheet, "Search for lost partition(s)");
        Press(sheet, "Next >");
    });
    Steps.When<CDiskScanMode>([](CDiskScanMode& dialog) {
        Press(dialog, "Thorough Scan");
        Shoot("search-method");
        Press(dialog, "OK");
    });
    Steps.When<CChooseSectorRange>([](CChooseSectorRange& dialog) {
        Shoot("search-range");
        Press(dialog, "OK");
    });
    bool shot = false;
    Answers.MayAnswer = [&shot](const QMessageBox& /*box*/) {
        if (!std::exchange(shot, true)) {
            Shoot("search-finished");
        }
        return true;
    };
    AtSheet([](CWizardSheet& sheet) {
        Shoot("search-result");
        sheet.done(0);
    });
    PressKey(Qt::Key_W, Qt::ControlModifier);
    EXPECT_TRUE(Steps.AllDone());
}

TEST_F(Screens, HelpAndAbout) {
    QTimer::singleShot(kSettleMilliseconds, Frame.get(), [] {
        Shoot("about");
        QTest::mouseClick(QApplication::activeModalWidget(), Qt::LeftButton);
    });
    Frame->RunCommand(kCmdAbout);
    Frame->RunCommand(kCmdHelpContents);
    Shoot("help");
}

} // namespace
} // namespace thntfs::test
