// Takes the pictures of docs/images: drives the real windows on a real screen (scripts/take-screenshots gives
// it one) and saves what stands on it. THNTFS_SCREENS names the folder for them, THNTFS_SAMPLE the sample's
// image.

#include "catalogue/EntryWalk.h"
#include "dialogs/RenameFile.h"
#include "dialogs/SaveChoice.h"
#include "dialogs/SaveData.h"
#include "dialogs/THNTFSFindFile.h"
#include "dialogs/VarientCloneImageDialog.h"
#include "disktools/ImageTarget.h"
#include "frame/FrameFixture.h"
#include "partitions/OpenSource.h"
#include "preview/HexView.h"
#include "preview/PictureFile.h"
#include "shell/DesktopState.h"
#include "shell/WindowMessages.h"
#include "support/desktop/Widgets.h"
#include "wizard/ChooseSectorRange.h"
#include "wizard/DiskScanMode.h"
#include "wizard/WizardSheet.h"

#include <QApplication>
#include <QLineEdit>
#include <QScreen>
#include <QTableWidget>
#include <QTest>
#include <QThread>
#include <QToolButton>
#include <QTreeWidget>

namespace thntfs::test {
namespace {

constexpr int kSettleMilliseconds = 300;

class Screens : public FrameFixture {
protected:
    Screens() {
        if (qEnvironmentVariableIsSet("THNTFS_DARK")) {
            QApplication::setStyle(QStringLiteral("Fusion"));
            QPalette dark(QColor(45, 45, 48));
            dark.setColor(QPalette::Base, QColor(30, 30, 32));
            QApplication::setPalette(dark);
        }
        Frame->showMaximized();
    }

    static void Shoot(const std::string& name) {
        QTest::qWait(kSettleMilliseconds);
        RunEvents();
        const QString folder = qEnvironmentVariable("THNTFS_SCREENS", QStringLiteral("."));
        const QPixmap picture = QGuiApplication::primaryScreen()->grabWindow(0);
        EXPECT_TRUE(picture.save(folder + QLatin1Char('/') + QString::fromStdString(name + ".png")));
    }

    /// The boxes that come up are shot under these names, one after the other.
    void ShootBoxes(std::vector<std::string> names) {
        Answers.MayAnswer = [names = std::move(names), next = std::size_t{0}](const QMessageBox&) mutable {
            if (next < names.size()) {
                Shoot(names[next++]);
            }
            return true;
        };
    }

    void ChooseFolder(const std::vector<const char*>& path) {
        auto& tree = Tree();
        QModelIndex index = tree.model()->index(0, 0);
        for (const char* name : path) {
            tree.expand(index);
            index = tree.model()->match(tree.model()->index(0, 0, index), Qt::DisplayRole,
                                        QLatin1String(name), 1, Qt::MatchContains)[0];
        }
        tree.setCurrentIndex(index);
        QTest::keyClick(&tree, Qt::Key_Return);
    }

    void RunWizard() {
        PressKey(Qt::Key_W, Qt::ControlModifier);
        EXPECT_TRUE(Answers.AllDone());
    }

    static void ChooseFirstDisk(const CWizardSheet& sheet) {
        auto& tree = *sheet.ActivePage().findChild<QTreeWidget*>();
        QTest::mouseClick(tree.viewport(), Qt::LeftButton, {},
                          tree.visualItemRect(tree.topLevelItem(0)->child(0)).center());
    }

    void ChooseImage(const CWizardSheet& sheet, const std::string& path) {
        Press(sheet, "Recover your data from disk image");
        Press(sheet, "Next >");
        Answers.AnswerFile(QString::fromStdString(path));
        Press(sheet, "Select Image File");
    }
};

TEST_F(Screens, MainWindowAboutAndHelp) {
    Shoot("main-empty");
    QTimer::singleShot(kSettleMilliseconds, Frame.get(), [] {
        Shoot("about");
        QTest::mouseClick(QApplication::activeModalWidget(), Qt::LeftButton);
    });
    PressKey(Qt::Key_B, Qt::ControlModifier);
    const QString sample = qEnvironmentVariable("THNTFS_SAMPLE", QString::fromStdString(Volume("basic.img")));
    LoadByMenu(SavedScanOf(sample.toStdString()));
    ChooseFolder({"Root", "Pictures", "Summer 2022"});
    Shoot("main-tree");
    ChooseInMenu("View/Large Icons");
    Shoot("main-icons");
    PressKey(Qt::Key_F1);
    Shoot("help");
}

TEST_F(Screens, PreviewsAndProperties) {
    const std::string sample = qEnvironmentVariable("THNTFS_SAMPLE").toStdString();
    LoadByMenu(SavedScanOf(sample.empty() ? Volume("basic.img") : sample));
    std::uint32_t picture = 0;
    std::uint32_t other = 0;
    std::uint32_t folder = 0;
    EntryWalk walk(WalkStart{});
    while (walk.Next()) {
        const CatalogueItem& item = walk.Item();
        const bool image = !item.IsFolder() && IsImageName(item.Name);
        picture = image && picture == 0 ? item.EntryId : picture;
        other = !image && !item.IsFolder() && item.Size > 1000 && (item.Flags & 0x800) == 0 ? item.EntryId
                                                                                            : other;
        folder = item.IsFolder() && walk.Depth() == 1 ? item.EntryId : folder;
    }
    for (const auto& [name, entryId] : {std::pair("preview-picture", picture), {"preview-hex", other}}) {
        WM_SHOW_PREVIEW.Send(Frame.get(), entryId);
        QTest::qWait(kSettleMilliseconds);
        QWidget* window = QApplication::activeWindow();
        if (auto* view = window->findChild<CHexView*>()) {
            view->Select({19, 30});
            QTest::keyClick(view, Qt::Key_F, Qt::ControlModifier);
        }
        Shoot(name);
        Frame->close();
    }
    for (const auto& [name, entryId] : {std::pair("properties-file", other), {"properties-folder", folder}}) {
        QTimer::singleShot(kSettleMilliseconds, Frame.get(), [shot = name] {
            Shoot(shot);
            Press(*QApplication::activeModalWidget(), "Close");
        });
        WM_SHOW_PROPERTIES.Send(Frame.get(), entryId);
    }
}

TEST_F(Screens, SavingAndFinding) {
    LoadByMenu(SavedScanOf(qEnvironmentVariable("THNTFS_SAMPLE").toStdString()));
    for (const bool again : {false, true}) {
        Answers.When<CSaveChoice>([](CSaveChoice& dialog) {
            Shoot("save-choice");
            Press(dialog, "OK");
        });
        Answers.When<CSaveData>([this](CSaveData& dialog) {
            dialog.findChild<QLineEdit*>()->setText(QString::fromStdString(Folder / "back"));
            Shoot("save-where");
            Press(dialog, "OK");
        });
        if (again) {
            Answers.When<CRenameFile>([](CRenameFile& dialog) {
                Shoot("save-rename");
                Press(dialog, "Skip All");
            });
        }
        PressKey(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_TRUE(WaitForIdle());
    }
    Shoot("save-finished");
    Answers.When<CTHNTFSFindFile>([](CTHNTFSFindFile& dialog) {
        QTest::keyClicks(dialog.findChild<QLineEdit*>(), QStringLiteral("*.png"));
        Press(dialog, "Options>>");
        Press(dialog, "Show all hits in one list");
        Shoot("find");
        Press(dialog, "Search Now");
    });
    PressKey(Qt::Key_F, Qt::ControlModifier);
    Shoot("find-hits");
    EXPECT_TRUE(Answers.AllDone());
}

TEST_F(Screens, RunningScanAndStopQuestion) {
    LoadByMenu(SavedScanOf(Volume("office.img")));
    WatchMedium();
    AtRead(12, [this] {
        Shoot("main-scanning");
        PressKey(Qt::Key_F4);
    });
    ShootBoxes({"main-stop", "main-finished"});
    Frame->BeginBasicScan();
    EXPECT_TRUE(WaitForIdle());
}

TEST_F(Screens, WizardPages) {
    Answers.When<CWizardSheet>([this](CWizardSheet& sheet) {
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
        auto* clone = sheet.ActivePage().findChildren<QToolButton*>().at(kTaskClone); // is hidden
        clone->setEnabled(true);
        clone->click();
        Press(sheet, "Next >");
        Shoot("wizard-clone");
        Press(sheet, "< Back");
        ChooseImage(sheet, Volume("logical.img"));
        Shoot("wizard-image");
        Press(sheet, "Next >");
        auto& table = *sheet.ActivePage().findChild<QTableWidget*>();
        QTest::mouseClick(table.viewport(), Qt::LeftButton, {},
                          table.visualItemRect(table.item(1, 0)).center());
        Shoot("wizard-partitions");
        sheet.done(0);
    });
    RunWizard();
}

TEST_F(Screens, Copy) {
    const std::string disk = Volume("logical.img");
    ASSERT_EQ(OpenSource(disk), kErrorNone);
    WatchMedium();
    Plan->Rules = {{4096, 3}};
    ImageTarget target(disk, Folder / "disk.th2");
    ASSERT_TRUE(target.Open(false, false).Allowed());
    CopyJob job = target.TakeJob();
    AtRead(100, [] {
        Shoot("copy-image");
        QTest::mouseClick(ButtonOf(*Desktop.CopyDialog, "Stop Imaging"), Qt::LeftButton);
    });
    const auto slowly = Plan->OnRead;
    Plan->OnRead = [slowly](std::uint64_t index, const ReadRequest& request) {
        QThread::msleep(20);
        slowly(index, request);
    };
    ShootBoxes({"copy-stop"});
    Answers.Answer(QMessageBox::Yes);
    Engine.ScanRunFlag = 1;
    Desktop.CopyDialog = new CVarientCloneImageDialog;
    WM_START_IMAGE.Send(Desktop.CopyDialog, job);
    EXPECT_TRUE(WaitUntil([] { return Desktop.CopyDialog == nullptr; }));
}

TEST_F(Screens, SearchDialogs) {
    Answers.When<CWizardSheet>([this](CWizardSheet& sheet) {
        ChooseImage(sheet, Volume("logical.img"));
        Press(sheet, "Search for lost partition(s)");
        Press(sheet, "Next >");
    });
    Answers.When<CDiskScanMode>([](CDiskScanMode& dialog) {
        Press(dialog, "Thorough Scan");
        Shoot("search-method");
        Press(dialog, "OK");
    });
    Answers.When<CChooseSectorRange>([](CChooseSectorRange& dialog) {
        Shoot("search-range");
        Press(dialog, "OK");
    });
    ShootBoxes({"search-finished"});
    Answers.When<CWizardSheet>([](CWizardSheet& sheet) {
        Shoot("search-result");
        sheet.done(0);
    });
    RunWizard();
}

} // namespace
} // namespace thntfs::test
