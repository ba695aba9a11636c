// Brings up every window of the program and looks at it: on a small screen that isn't there by what a program
// can see, and on a real one (scripts/take-screenshots gives it one) by pictures as well, where
// THNTFS_SCREENS names a folder for them.

#include "catalogue/EntryWalk.h"
#include "dialogs/ExcludedTypes.h"
#include "dialogs/RenameFile.h"
#include "dialogs/SaveChoice.h"
#include "dialogs/SaveData.h"
#include "dialogs/SaveListChoice.h"
#include "dialogs/SaveWishes.h"
#include "dialogs/SplashWnd.h"
#include "dialogs/THNTFSFindFile.h"
#include "dialogs/TipFile.h"
#include "dialogs/TipOfTheDay.h"
#include "dialogs/VarientCloneImageDialog.h"
#include "dialogs/VistaMsgDlg.h"
#include "disktools/ImageTarget.h"
#include "frame/FrameFixture.h"
#include "partitions/OpenSource.h"
#include "preview/HexView.h"
#include "preview/PictureFile.h"
#include "shell/DesktopState.h"
#include "shell/DlgWait.h"
#include "shell/ReadablePalette.h"
#include "shell/WindowMessages.h"
#include "support/desktop/Widgets.h"
#include "support/desktop/WindowFaults.h"
#include "wizard/ChooseSectorRange.h"
#include "wizard/DiskScanMode.h"
#include "wizard/RowTable.h"
#include "wizard/WizardSheet.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QScreen>
#include <QTableWidget>
#include <QTest>
#include <QThread>
#include <QToolButton>
#include <QTreeWidget>
#include <fstream>

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
            QApplication::setPalette(ReadablePalette(dark));
        }
        Frame->showMaximized();
    }

    static void Shoot(const std::string& name) {
        RunEvents();
        for (const QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && window->windowType() != Qt::Popup &&
                window->windowType() != Qt::ToolTip) {
                const std::string faults = WindowFaults(*window);
                EXPECT_TRUE(faults.empty()) << name << "\n" << faults;
            }
        }
        const QString folder = qEnvironmentVariable("THNTFS_SCREENS");
        if (folder.isEmpty()) {
            return;
        }
        QTest::qWait(kSettleMilliseconds);
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
        PickImage(sheet, path);
    }
    void PickImage(const CWizardSheet& sheet, const std::string& path) {
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
    LoadByMenu(SavedScanOf(Volume("sample.img")));
    ChooseFolder({"Root", "Pictures", "Summer 2022"});
    Shoot("main-tree");
    Find<QWidget>("ListView").parentWidget()->findChild<QLineEdit*>()->setText(QStringLiteral("a"));
    ChooseInMenu("View/Sizes in KB, MB, GB");
    Shoot("main-filtered");
    Answers.When<CSaveListChoice>([](CSaveListChoice& dialog) {
        Shoot("save-list");
        Press(dialog, "Cancel");
    });
    ChooseInMenu("Tools/Save List As...");
    ChooseInMenu("View/Sizes in Bytes");
    ChooseInMenu("View/Large Icons");
    Shoot("main-icons");
    PressKey(Qt::Key_F1);
    Shoot("help");
}

TEST_F(Screens, PreviewsAndProperties) {
    LoadByMenu(SavedScanOf(Volume("sample.img")));
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
    LoadByMenu(SavedScanOf(Volume("sample.img")));
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
        Shoot("find-closed");
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

TEST_F(Screens, WindowsOfTheStart) {
    const QPointer<CSplashWnd> splash(new CSplashWnd(*Frame, [] {}));
    Shoot("splash");
    splash->close();
    ProvideTipFile(TipFilePath());
    QFile::remove(TipFilePath());
    QFile::copy(QStringLiteral(THNTFS_TIPS), TipFilePath());
    Answers.When<QDialog>([](QDialog& tips) {
        Shoot("tips");
        tips.accept();
    });
    ShowTipOfTheDay(Frame.get());
    CVistaMsgDlg notice(Frame.get());
    notice.show();
    Shoot("notice");
    notice.close();
    CDlgWait wait(Frame.get());
    wait.show();
    Shoot("wait");
}

TEST_F(Screens, VeryLongNames) {
    const QString name(255, QLatin1Char('W'));
    QString path = QString::fromStdString(Folder.Path());
    while (path.size() < 3500) {
        path += QLatin1Char('/') + name;
    }
    ASSERT_TRUE(QDir().mkpath(path));
    LoadByMenu(SavedScanOf(Volume("names.img")));
    ChooseFolder({"Root", "Long kept"});
    Shoot("long-main");
    CRenameFile rename(Frame.get(), path + QLatin1Char('/') + name, QStringLiteral("the name is too long"),
                       name);
    rename.show();
    Shoot("long-rename");
    rename.hide();
    SaveWishes wishes;
    wishes.Folder = path;
    wishes.Prefix = name;
    CSaveData where(Frame.get(), wishes, {});
    where.show();
    Shoot("long-save");
    where.hide();
    CExcludedTypes types(Frame.get(), {QStringLiteral("doc"), name});
    types.show();
    Shoot("save-types");
    types.hide();
    const std::string image = path.toStdString() + "/image.img";
    std::filesystem::copy_file(Volume("logical.img"), image);
    Answers.When<CWizardSheet>([&](CWizardSheet& sheet) {
        ChooseImage(sheet, image);
        Shoot("long-image");
        Press(sheet, "Next >");
        auto* table = sheet.ActivePage().findChild<CRowTable*>();
        table->AddRow({QStringLiteral("NTFS logical drive 9"), QStringLiteral("4294967295"),
                       QStringLiteral("16777216.00 TB"), QStringLiteral("Yes"),
                       QStringLiteral("backup boot sector"), name.left(32), QStringLiteral("4294967295")});
        EXPECT_FALSE(table->item(table->rowCount() - 1, 5)->toolTip().isEmpty());
        Shoot("long-label");
        sheet.done(0);
    });
    RunWizard();
}

TEST_F(Screens, RunningScanAndStopQuestion) {
    LoadByMenu(SavedScanOf(Volume("office.img")));
    WatchMedium();
    AtRead(12, [this] {
        Shoot("main-scanning");
        PressKey(Qt::Key_F4);
    });
    ShootBoxes({"main-stop", "main-finished", "main-save-first"});
    Frame->BeginBasicScan();
    EXPECT_TRUE(WaitForIdle());
    ASSERT_TRUE(WaitUntil([this] { return IsOffered("Turbo Scan"); }));
    PressKey(Qt::Key_T, Qt::ControlModifier);
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
        Press(sheet, "Recover your data from disk image");
        Press(sheet, "Next >");
        Press(sheet, "Next >");
        Shoot("wizard-no-image");
        std::ofstream(Folder / "zeros.img") << std::string(70000, '\0');
        PickImage(sheet, Folder / "zeros.img");
        Press(sheet, "Next >");
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
    ShootBoxes({"wizard-no-volumes"});
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
