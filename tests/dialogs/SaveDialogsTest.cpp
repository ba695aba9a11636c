// The dialogs of a save, by mouse and keys.

#include "dialogs/ExcludedTypes.h"
#include "dialogs/RenameFile.h"
#include "dialogs/SaveChoice.h"
#include "dialogs/SaveData.h"
#include "dialogs/SaveWishes.h"
#include "support/desktop/BoxAnswers.h"
#include "support/desktop/Widgets.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QListWidget>
#include <QTest>
#include <gtest/gtest.h>

namespace thntfs::test {
namespace {

const QString kExistsText = QStringLiteral("Text box is empty or entered file type already exists");
const QString kForbiddenText =
    QStringLiteral("A file/ folder cannot contain following special characters:\n\\/ : * ? \" < > |<space>");

class SaveDialogs : public testing::Test {
protected:
    static QWidget& Control(const QWidget& dialog, const char* id) {
        return *dialog.findChild<QWidget*>(QLatin1String(id));
    }
    static QLineEdit& Edit(const QWidget& dialog, const char* id) {
        return dynamic_cast<QLineEdit&>(Control(dialog, id));
    }
    static void Click(const QWidget& dialog, const char* id) {
        auto& button = dynamic_cast<QAbstractButton&>(Control(dialog, id));
        QTest::mouseClick(&button, Qt::LeftButton, {}, {8, button.height() / 2});
    }
    static void Type(const QWidget& dialog, const char* id, const QString& text) {
        Edit(dialog, id).setFocus();
        Edit(dialog, id).selectAll();
        QTest::keyClicks(&Edit(dialog, id), text);
    }

    /// The text of the box that came up last; none came up since where it is empty.
    QString LastBox() {
        const QString text = Answers.Boxes.empty() ? QString() : Answers.Boxes.back().Text;
        Answers.Boxes.clear();
        return text;
    }

    template <typename Dialog, typename... Args>
    int Run(std::function<void(Dialog&)> act, Args&&... args) {
        Dialog dialog(nullptr, std::forward<Args>(args)...);
        Answers.When<Dialog>(std::move(act));
        return dialog.exec();
    }

    int RunPage(const std::function<void(CSaveData&)>& act) {
        return Run<CSaveData>(act, Wishes, [this](const QString& folder, bool compressed) {
            EXPECT_EQ(compressed, folder != QLatin1String("/x"));
            Asked.append(folder);
            return MaySave;
        });
    }

    BoxAnswers Answers;
    SaveWishes Wishes;
    QStringList Asked;
    bool MaySave = true;
};

TEST_F(SaveDialogs, WhatToSave) {
    const auto act = [](CSaveChoice& dialog) {
        EXPECT_TRUE(dynamic_cast<QAbstractButton&>(Control(dialog, "1080")).isChecked());
        auto& reach = dynamic_cast<QComboBox&>(Control(dialog, "1086"));
        EXPECT_EQ(reach.count(), 3);
        EXPECT_FALSE(reach.itemIcon(2).isNull());
        Click(dialog, "1083");
        RunEvents();
        const auto windows = QApplication::topLevelWidgets();
        const auto help = std::find_if(windows.begin(), windows.end(), [](const QWidget* window) {
            return window->isVisible() && window->objectName() == QLatin1String("Help");
        });
        ASSERT_NE(help, windows.end());
        EXPECT_EQ((*help)->windowTitle(), QStringLiteral("What to save - Help"));
        (*help)->close();
        Press(dialog, "Named streams beside their files");
        Click(dialog, "1078");
        EXPECT_FALSE(ButtonOf(dialog, "Named streams beside their files")->isEnabled());
        QTest::keyClick(&reach, Qt::Key_Down);
        QTest::keyClick(&dialog, Qt::Key_Return);
    };
    EXPECT_EQ(Run<CSaveChoice>(act, Wishes), QDialog::Accepted);
    EXPECT_TRUE(Wishes.AsStored && Wishes.Streams);
    EXPECT_EQ(Wishes.Reach, SaveReach::DeletedOnly);
    const auto cancel = [](CSaveChoice& dialog) {
        EXPECT_TRUE(dynamic_cast<QAbstractButton&>(Control(dialog, "1078")).isChecked());
        EXPECT_EQ(dynamic_cast<QComboBox&>(Control(dialog, "1086")).currentIndex(), 1);
        Click(dialog, "1080");
        QTest::keyClick(&dialog, Qt::Key_Escape);
    };
    EXPECT_EQ(Run<CSaveChoice>(cancel, Wishes), QDialog::Rejected);
    EXPECT_TRUE(Wishes.AsStored);
}

TEST_F(SaveDialogs, ExcludedTypes) {
    const auto add = [this](CSaveData& page, const QString& type) {
        Edit(page, "1057").setText(type);
        Click(page, "1055");
        return LastBox();
    };
    const auto listed = [this](CSaveData& page) {
        QStringList types;
        Answers.When<CExcludedTypes>([&](CExcludedTypes& dialog) {
            EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Excluded File Types"));
            const auto& list = dynamic_cast<QListWidget&>(Control(dialog, "1061"));
            for (int row = 0; row < list.count(); ++row) {
                types.append(list.item(row)->text());
            }
            Press(dialog, "Close");
        });
        Click(page, "1059");
        return types.join(QLatin1Char(','));
    };
    const QString longest(219, QLatin1Char('x'));
    const auto act = [&](CSaveData& page) {
        EXPECT_FALSE(Control(page, "1055").isEnabled());
        Click(page, "1052");
        EXPECT_EQ(add(page, {}), kExistsText);
        EXPECT_EQ(add(page, QStringLiteral("doc")), QString());
        EXPECT_EQ(add(page, QStringLiteral("DOC")), kExistsText);
        EXPECT_EQ(add(page, longest), QString());
        EXPECT_EQ(
            add(page, longest + QLatin1Char('y')),
            QStringLiteral("Please enter file extension length less than or equals to 219 characters."));
        for (const char* bad : {"a\\", "a/", ":", "*", "?", "\"", "<", ">", "|", "a b"}) {
            EXPECT_EQ(add(page, QLatin1String(bad)), kForbiddenText) << bad;
        }
        Type(page, "1057", QStringLiteral("tmp"));
        QTest::keyClick(&Edit(page, "1057"), Qt::Key_Return); // adds, and doesn't close the page
        EXPECT_EQ(listed(page).toStdString(), "doc," + longest.toStdString() + ",tmp");
        Click(page, "1063");
        EXPECT_EQ(listed(page), QString());
        add(page, QStringLiteral("iso"));
        Type(page, "1092", QStringLiteral("/x"));
        Press(page, "OK");
    };
    EXPECT_EQ(RunPage(act), QDialog::Accepted);
    EXPECT_TRUE(Wishes.IgnoresTypes);
    EXPECT_EQ(Wishes.Types, QStringList{QStringLiteral("iso")});
}

TEST_F(SaveDialogs, FolderCompressionAndPrefix) {
    const auto act = [this](CSaveData& page) {
        EXPECT_EQ(page.windowTitle(), QStringLiteral("Save data to local drive"));
        EXPECT_TRUE(Edit(page, "1092").hasFocus());
        QTest::keyClick(&page, Qt::Key_Return);
        EXPECT_EQ(LastBox(), QStringLiteral("Please provide a location to save data."));
        Answers.AnswerFile(QDir::tempPath());
        Click(page, "1093");
        EXPECT_EQ(Edit(page, "1092").text(), QDir::tempPath());
        Click(page, "1031");
        Click(page, "1131");
        QTest::keyClick(&page, Qt::Key_Return);
        EXPECT_EQ(LastBox(), QStringLiteral("Please enter the prefix."));
        Type(page, "1132", QStringLiteral("old file"));
        QTest::keyClick(&page, Qt::Key_Return);
        EXPECT_EQ(LastBox(), kForbiddenText);
        Type(page, "1132", QStringLiteral("old-"));
        EXPECT_TRUE(Asked.isEmpty());
        MaySave = false;
        Press(page, "OK"); // stays
        MaySave = true;
        Type(page, "1092", QStringLiteral(" ~/a/../b/ "));
        QTest::keyClick(&page, Qt::Key_Return);
    };
    EXPECT_EQ(RunPage(act), QDialog::Accepted);
    EXPECT_EQ(Asked, (QStringList{QDir::tempPath(), QDir::homePath() + QStringLiteral("/b")}));
    EXPECT_EQ(Wishes.Folder, Asked.back());
    EXPECT_TRUE(Wishes.Compresses && Wishes.UsesPrefix && !Wishes.IgnoresTypes);

    KeepSaveWishes(Wishes);
    Wishes = LoadSaveWishes();
    EXPECT_TRUE(Wishes.Compresses && Wishes.UsesPrefix);
    EXPECT_EQ(Wishes.Folder + Wishes.Prefix, Asked.back() + QStringLiteral("old-"));
    EXPECT_EQ(RunPage([](CSaveData& page) { QTest::keyClick(&page, Qt::Key_Escape); }), QDialog::Rejected);
}

TEST_F(SaveDialogs, RenamingAFile) {
    const QString name(255, QLatin1Char('W'));
    const auto ask = [&](const std::function<void(CRenameFile&)>& act) {
        CRenameFile dialog(nullptr, name, QStringLiteral("it exists"), QStringLiteral("new (2)"));
        Answers.When<CRenameFile>(act);
        dialog.exec();
        EXPECT_LT(dialog.width(), 800);
        return std::pair(dialog.Chosen(), dialog.NewName());
    };
    using Answer = CRenameFile::Answer;
    const auto typed = ask([this](CRenameFile& dialog) {
        EXPECT_TRUE(
            dynamic_cast<QLabel&>(Control(dialog, "1132")).text().contains(QLatin1String("it exists")));
        QTest::keyClicks(&Edit(dialog, "1094"), QStringLiteral("a:b")); // over the suggestion
        QTest::keyClick(&dialog, Qt::Key_Return);
        EXPECT_TRUE(LastBox().startsWith(QLatin1String("A file/ folder cannot contain")));
        Edit(dialog, "1094").clear();
        Click(dialog, "1142");
        EXPECT_EQ(LastBox(), QStringLiteral("Please enter the new name."));
        QTest::keyClicks(&Edit(dialog, "1094"), QStringLiteral("my file"));
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    EXPECT_EQ(typed, std::pair(Answer::Rename, QStringLiteral("my file")));
    const auto press = [&](Qt::Key key, Qt::KeyboardModifiers modifiers) {
        return ask([&](CRenameFile& dialog) { QTest::keyClick(&dialog, key, modifiers); }).first;
    };
    EXPECT_EQ(press(Qt::Key_E, Qt::AltModifier), Answer::RenameAll);
    EXPECT_EQ(press(Qt::Key_S, Qt::AltModifier), Answer::Skip);
    EXPECT_EQ(press(Qt::Key_A, Qt::AltModifier), Answer::SkipAll);
    EXPECT_EQ(press(Qt::Key_Escape, {}), Answer::Skip);
}

} // namespace
} // namespace thntfs::test
