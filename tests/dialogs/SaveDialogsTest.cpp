// The dialogs of a save, by mouse and keys.

#include "dialogs/ExcludedTypes.h"
#include "dialogs/RenameFile.h"
#include "dialogs/SaveChoice.h"
#include "dialogs/SaveData.h"
#include "dialogs/SaveWishes.h"
#include "support/desktop/BoxAnswers.h"
#include "support/desktop/Widgets.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QListWidget>
#include <QTest>
#include <gtest/gtest.h>

namespace thntfs::test {
namespace {

class SaveDialogs : public testing::Test {
protected:
    template <typename Control>
    static Control& Get(const QWidget& dialog, const char* id) {
        return *dialog.findChild<Control*>(QLatin1String(id));
    }
    static void Click(const QWidget& dialog, const char* id) {
        auto& button = Get<QAbstractButton>(dialog, id);
        QTest::mouseClick(&button, Qt::LeftButton, {}, {8, button.height() / 2});
    }

    /// Types into a field and presses Enter. Gives the front of the box that this brings up.
    std::string Enter(QWidget& dialog, const char* id, const QString& text) {
        Answers.Boxes.clear();
        Get<QLineEdit>(dialog, id).setFocus();
        Get<QLineEdit>(dialog, id).clear();
        QTest::keyClicks(&Get<QLineEdit>(dialog, id), text);
        QTest::keyClick(&Get<QLineEdit>(dialog, id), Qt::Key_Return);
        return Answers.Boxes.empty() ? "" : Answers.Boxes.back().Text.left(28).toStdString();
    }

    template <typename Dialog, typename... Args>
    int Run(std::function<void(Dialog&)> act, Args&&... args) {
        Dialog dialog(nullptr, std::forward<Args>(args)...);
        Answers.When<Dialog>(std::move(act));
        return dialog.exec();
    }
    int RunPage(const std::function<void(CSaveData&)>& act) {
        return Run<CSaveData>(act, Wishes, [this](const QString& folder, bool compressed) {
            Asked.append(folder + (compressed ? QStringLiteral(" zip") : QString()));
            return Asked.size() != 1;
        });
    }

    BoxAnswers Answers;
    SaveWishes Wishes;
    QStringList Asked; ///< whether a folder will do; the first one won't
};

constexpr const char* kForbidden = "A file/ folder cannot contai";

TEST_F(SaveDialogs, WhatToSave) {
    const auto act = [](CSaveChoice& dialog) {
        EXPECT_TRUE(Get<QAbstractButton>(dialog, "1080").isChecked());
        Press(dialog, "Named streams beside their files");
        Click(dialog, "1078");
        EXPECT_FALSE(ButtonOf(dialog, "Named streams beside their files")->isEnabled());
        QTest::keyClick(&Get<QComboBox>(dialog, "1086"), Qt::Key_Down);
        QTest::keyClick(&dialog, Qt::Key_Return);
    };
    EXPECT_EQ(Run<CSaveChoice>(act, Wishes), QDialog::Accepted);
    EXPECT_TRUE(Wishes.AsStored && Wishes.Streams && Wishes.Reach == SaveReach::DeletedOnly);
    const auto cancel = [](CSaveChoice& dialog) {
        EXPECT_TRUE(Get<QAbstractButton>(dialog, "1078").isChecked());
        EXPECT_EQ(Get<QComboBox>(dialog, "1086").currentIndex(), 1);
        Click(dialog, "1080");
        QTest::keyClick(&dialog, Qt::Key_Escape);
    };
    EXPECT_EQ(Run<CSaveChoice>(cancel, Wishes), QDialog::Rejected);
    EXPECT_TRUE(Wishes.AsStored);
}

TEST_F(SaveDialogs, ExcludedTypes) {
    const auto listed = [this](CSaveData& page) {
        QStringList types;
        Answers.When<CExcludedTypes>([&](CExcludedTypes& dialog) {
            const auto& list = Get<QListWidget>(dialog, "1061");
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
        EXPECT_FALSE(Get<QWidget>(page, "1055").isEnabled());
        Click(page, "1052");
        Click(page, "1055");
        EXPECT_TRUE(Answers.Boxes.back().Text.startsWith(QLatin1String("Text box is empty")));
        EXPECT_EQ(Enter(page, "1057", QStringLiteral("doc")), ""); // adds, and doesn't close the page
        EXPECT_EQ(Enter(page, "1057", QStringLiteral("DOC")), "Text box is empty or entered");
        EXPECT_EQ(Enter(page, "1057", longest), "");
        EXPECT_EQ(Enter(page, "1057", longest + QLatin1Char('y')), "Please enter file extension ");
        for (const char* bad : {"a\\", "a/", ":", "*", "?", "\"", "<", ">", "|", "a b"}) {
            EXPECT_EQ(Enter(page, "1057", QLatin1String(bad)), kForbidden) << bad;
        }
        EXPECT_EQ(listed(page), QStringLiteral("doc,") + longest);
        Click(page, "1063");
        EXPECT_EQ(listed(page), QString());
        Enter(page, "1057", QStringLiteral("iso"));
        Enter(page, "1092", QStringLiteral("/x")); // stays
        QTest::keyClick(&page, Qt::Key_Return);
    };
    EXPECT_EQ(RunPage(act), QDialog::Accepted);
    EXPECT_TRUE(Wishes.IgnoresTypes);
    EXPECT_EQ(Wishes.Types, QStringList{QStringLiteral("iso")});
}

TEST_F(SaveDialogs, FolderCompressionAndPrefix) {
    const auto act = [this](CSaveData& page) {
        EXPECT_TRUE(Get<QLineEdit>(page, "1092").hasFocus());
        EXPECT_EQ(Enter(page, "1092", {}), "Please provide a location to");
        Answers.AnswerFile(QDir::tempPath());
        Click(page, "1093");
        Click(page, "1031");
        Click(page, "1131");
        EXPECT_EQ(Enter(page, "1132", {}), "Please enter the prefix.");
        EXPECT_EQ(Enter(page, "1132", QStringLiteral("old file")), kForbidden);
        EXPECT_TRUE(Asked.isEmpty());
        EXPECT_EQ(Enter(page, "1132", QStringLiteral("old-")), ""); // stays
        Enter(page, "1092", QStringLiteral(" ~/a/../b/ "));
    };
    EXPECT_EQ(RunPage(act), QDialog::Accepted);
    const QString folder = QDir::homePath() + QStringLiteral("/b");
    EXPECT_EQ(Asked,
              (QStringList{QDir::tempPath() + QStringLiteral(" zip"), folder + QStringLiteral(" zip")}));
    KeepSaveWishes(Wishes);
    Wishes = LoadSaveWishes();
    EXPECT_TRUE(Wishes.Compresses && Wishes.UsesPrefix && !Wishes.IgnoresTypes);
    EXPECT_EQ(Wishes.Folder + Wishes.Prefix, folder + QStringLiteral("old-"));
    EXPECT_EQ(RunPage([](CSaveData& page) { QTest::keyClick(&page, Qt::Key_Escape); }), QDialog::Rejected);
}

TEST_F(SaveDialogs, RenamingAFile) {
    const auto ask = [&](const std::function<void(CRenameFile&)>& act) {
        CRenameFile dialog(nullptr, QString(255, QLatin1Char('W')), QStringLiteral("it exists"),
                           QStringLiteral("new (2)"));
        Answers.When<CRenameFile>(act);
        dialog.exec();
        EXPECT_LT(dialog.width(), 800);
        return std::pair(dialog.Chosen(), dialog.NewName());
    };
    using Answer = CRenameFile::Answer;
    const auto typed = ask([this](CRenameFile& dialog) {
        EXPECT_TRUE(Get<QLabel>(dialog, "1132").text().contains(QLatin1String("it exists")));
        EXPECT_EQ(Get<QLineEdit>(dialog, "1094").selectedText(), QStringLiteral("new (2)"));
        EXPECT_EQ(Enter(dialog, "1094", QStringLiteral("a:b")), kForbidden);
        EXPECT_EQ(Enter(dialog, "1094", {}), "Please enter the new name.");
        Enter(dialog, "1094", QStringLiteral("my file"));
    });
    EXPECT_EQ(typed, std::pair(Answer::Rename, QStringLiteral("my file")));
    const auto press = [&](Qt::Key key) {
        return ask([&](CRenameFile& dialog) { QTest::keyClick(&dialog, key, Qt::AltModifier); }).first;
    };
    EXPECT_EQ(press(Qt::Key_E), Answer::RenameAll);
    EXPECT_EQ(press(Qt::Key_S), Answer::Skip);
    EXPECT_EQ(press(Qt::Key_A), Answer::SkipAll);
    EXPECT_EQ(ask([](CRenameFile& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }).first, Answer::Skip);
}

} // namespace
} // namespace thntfs::test
