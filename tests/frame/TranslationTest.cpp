// Every text that a window shows passes through the translators: a language in which each text stands in
// marks leaves no word without them, but for names.

#include "FrameFixture.h"
#include "dialogs/ExcludedTypes.h"
#include "dialogs/RenameFile.h"
#include "dialogs/SaveChoice.h"
#include "dialogs/SaveData.h"
#include "dialogs/SaveListChoice.h"
#include "dialogs/THNTFSFindFile.h"
#include "dialogs/VarientCloneImageDialog.h"
#include "dialogs/VistaMsgDlg.h"
#include "engine/Host.h"
#include "frame/CommandIds.h"
#include "shell/DlgWait.h"
#include "shell/WindowMessages.h"
#include "wizard/ChooseSectorRange.h"
#include "wizard/DiskScanMode.h"
#include "wizard/WizardSheet.h"

#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QRegularExpression>
#include <QToolButton>
#include <QTranslator>
#include <QTreeWidget>

namespace thntfs::test {
namespace {

const QString kName = QStringLiteral("12345.67"); // where a dialog is given a name

/// A language in which a text is itself between marks. What is asked for under the name of a class that ours
/// derive from would never be found, as a text's key has our class's name: it gets none.
class MarkedLanguage : public QTranslator {
public:
    MarkedLanguage() { QCoreApplication::installTranslator(this); }
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char* context, const char* text, const char* /*comment*/,
                                    int /*count*/) const override {
        static const std::set<std::string> bases{"QObject",
                                                 "QWidget",
                                                 "QDialog",
                                                 "QMainWindow",
                                                 "QFrame",
                                                 "QListWidget",
                                                 "QTreeWidget",
                                                 "QTreeView",
                                                 "QTabWidget",
                                                 "QLabel",
                                                 "QProgressBar",
                                                 "QAbstractItemModel",
                                                 "QAbstractTableModel",
                                                 "QAbstractScrollArea"};
        return bases.contains(context) ? QString() : u'«' + QString::fromUtf8(text) + u'»';
    }
};

struct LanguageFirst {
    MarkedLanguage Language;
};

class TranslationTest : public LanguageFirst, public FrameFixture {
protected:
    TranslationTest() { Answers.Passed = QStringLiteral("«Disk Opening Error"); }

    void Run(std::uint32_t command) {
        const auto actions = Frame->actions();
        for (QAction* action : actions) {
            if (action->data().toUInt() == command) {
                action->trigger();
            }
        }
    }

    /// Does it and looks at the window that it opens, which is then closed.
    void LookAtModal(const std::function<void()>& open) {
        Answers.When<QDialog>([](QDialog& dialog) {
            ExpectMarked(dialog);
            dialog.done(0);
        });
        open();
        EXPECT_TRUE(Answers.AllDone());
    }

    static void ExpectMarkedText(QString text, const QObject& of) {
        static const QRegularExpression markup(QStringLiteral("<[a-z/][^>]*>"));
        static const QRegularExpression marked(QStringLiteral("«[^«»]*(»|$)"));
        static const QRegularExpression ofNobody(
            QStringLiteral("Tarnholt Volume Salvage \\(NTFS\\)|\\b[KMGT]B\\b|^[0-9]+ bytes$|Basic(?=\\W+24)|"
                           "[^ ]*basic\\.img"));
        text.remove(ofNobody).remove(markup);
        for (qsizetype length = -1; length != text.size();) {
            length = text.size();
            text.remove(marked);
        }
        EXPECT_FALSE(text.contains(QRegularExpression(QStringLiteral("[A-Za-z]"))))
            << text.toStdString() << " in " << of.metaObject()->className() << " "
            << of.objectName().toStdString();
    }

    /// What a control shows, but for what it shows of a medium.
    static QStringList TextsOf(const QWidget& widget) {
        QStringList texts;
        for (const char* property :
             {"windowTitle", "toolTip", "accessibleName", "placeholderText", "title"}) {
            texts += widget.property(property).toString();
        }
        if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
            texts += label->text();
        } else if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) {
            texts += button->text();
        } else if (const auto* tabs = qobject_cast<const QTabWidget*>(&widget)) {
            texts += tabs->tabText(0);
        } else if (const auto* tree = qobject_cast<const QTreeWidget*>(&widget)) {
            texts += tree->model()->index(0, 0).data().toString();
        } else if (const auto* header = qobject_cast<const QHeaderView*>(&widget)) {
            for (int column = 0; column < header->count(); ++column) {
                texts += header->model()->headerData(column, Qt::Horizontal).toString();
            }
        } else if (const auto* box = qobject_cast<const QComboBox*>(&widget)) {
            texts += RowsOf(*box->model()).join(QLatin1Char('\n'));
        } else if (const auto* list = qobject_cast<const QListWidget*>(&widget)) {
            texts += RowsOf(*list->model()).join(QLatin1Char('\n')); // a text may have many rows
        }
        const auto actions = widget.actions();
        for (const QAction* action : actions) {
            texts += {action->text(), action->toolTip(), action->statusTip()};
        }
        return texts;
    }

    static QStringList RowsOf(const QAbstractItemModel& model) {
        QStringList rows;
        for (int row = 0; row < model.rowCount(); ++row) {
            rows += model.index(row, 0).data().toString();
        }
        return rows;
    }

    static void ExpectMarked(const QWidget& window) {
        auto controls = window.findChildren<const QWidget*>();
        controls += &window;
        for (const QWidget* control : controls) {
            for (const QString& text : TextsOf(*control)) {
                ExpectMarkedText(text, *control);
            }
        }
    }
};

TEST_F(TranslationTest, TheFrameItsViewsAndWhatTheyOpen) {
    ExpectMarked(*Frame);
    EXPECT_EQ(Command("Wizard").shortcut(), QKeySequence(Qt::CTRL | Qt::Key_W)) << "in all languages";
    Frame->OpenFile(QString::fromStdString(SavedScanOf(Volume("basic.img"))));
    ExpectMarked(*Frame);
    EXPECT_TRUE(Pane(1).starts_with("«")) << Pane(1);
    for (const std::uint32_t command : {kCmdAbout, kCmdTips, kCmdFind}) {
        LookAtModal([&] { Run(command); });
    }
    Run(kCmdHelpContents);
    for (const std::uint32_t entry : {1U, 40U}) {
        LookAtModal([&] { WM_SHOW_PROPERTIES.Send(Frame.get(), entry); });
    }
    WM_SHOW_PREVIEW.Send(Frame.get(), 40U);
    const auto windows = QApplication::topLevelWidgets();
    for (const QWidget* window : windows) {
        ExpectMarked(*window);
    }
    Frame->OpenFile(kName);
    ASSERT_EQ(Answers.Boxes.size(), 1U);
    ExpectMarkedText(Answers.Boxes[0].Text + Answers.Boxes[0].Caption, *Frame);
}

TEST_F(TranslationTest, TheWizardAndItsDialogs) {
    Answers.When<CWizardSheet>([](CWizardSheet& sheet) {
        const auto tasks = sheet.ActivePage().findChildren<QToolButton*>();
        ExpectMarked(sheet);
        for (QToolButton* task : tasks) {
            task->click();
            ExpectMarked(sheet);
        }
        sheet.done(0);
    });
    Frame->RunWizard();
    EXPECT_TRUE(Answers.AllDone());
    ExpectMarked(CDiskScanMode(Frame.get()));
    ExpectMarked(CChooseSectorRange(Frame.get(), 1000));
}

TEST_F(TranslationTest, DialogsThatWorkBringsUp) {
    SaveWishes wishes;
    ExpectMarked(CSaveChoice(Frame.get(), wishes));
    ExpectMarked(CSaveData(Frame.get(), wishes, nullptr));
    ExpectMarked(CSaveListChoice(Frame.get(), 12, kName));
    ExpectMarked(CExcludedTypes(Frame.get(), {}));
    ExpectMarked(CRenameFile(Frame.get(), kName, kName, kName));
    ExpectMarked(CVarientCloneImageDialog());
    ExpectMarked(CVistaMsgDlg(Frame.get()));
    ExpectMarked(CDlgWait(Frame.get()));
    Host().ErrorBox(SystemErrorText(kErrorAccessDenied));
    ASSERT_EQ(Answers.Boxes.size(), 1U);
    ExpectMarkedText(Answers.Boxes[0].Text, *Frame);
}

} // namespace
} // namespace thntfs::test
