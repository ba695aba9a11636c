#pragma once

#include "engine/EngineState.h"
#include "shell/DesktopState.h"
#include "shell/Icons.h"
#include "shell/WindowMessages.h"
#include "support/BuildPaths.h"
#include "support/RunProgram.h"
#include "support/desktop/BoxAnswers.h"
#include "support/desktop/Widgets.h"
#include "wizard/InfoListBox.h"
#include "wizard/WizardSheet.h"

#include <QAbstractButton>
#include <QLabel>
#include <QTest>
#include <QTreeWidget>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace thntfs::test {

/// Three disks that no machine has: an IDE disk "sdx", a USB disk "sdy" and an NVMe disk at
/// /dev/no-such-disk.
inline std::vector<DiskInfo> MadeUpDisks() {
    const DiskInfo disk{"/dev/sdx", "sdx",       "Fixed hard disk media",
                        "IDE",      "976773168", "60801",
                        "255",      "465.76 GB", "WX11",
                        "01.01",    "Some Disk", "512"};
    std::vector<DiskInfo> disks(3, disk);
    disks[1].Path = "/dev/path of sdy";
    disks[1].Name = "sdy";
    disks[1].InterfaceType = "USB";
    disks[2].Path = "/dev/no-such-disk";
    disks[2].Name = "gone";
    disks[2].InterfaceType = "NVMe";
    return disks;
}

/// An unpacked image by its name.
inline QString VolumePath(const char* name) {
    return QString::fromStdString(VolumeFolder() + "/" + name + ".img");
}

/// A sheet over made-up disks and its user. The test itself stands for the main frame.
class WizardTest : public testing::Test, public MessageTarget {
protected:
    WizardTest() {
        SetMainWindow(this);
        ResetEngineState();
        Desktop.StructuresMissing = false;
        MakeSheet();
    }
    ~WizardTest() override {
        Sheet.reset();
        SetMainWindow(nullptr);
        ResetEngineState();
    }

    std::intptr_t OnMessage(std::uint32_t message, std::uintptr_t wParam,
                            std::uintptr_t /*lParam*/) override {
        if (message == WM_CLEAR_VIEWS) {
            Arrived.emplace_back("clear views");
        } else if (message == WM_LOG_EVENT) {
            const auto& entry = WM_LOG_EVENT.First(wParam);
            Arrived.push_back(std::to_string(entry.Status) + " " + entry.Name + " | " + entry.Description);
        }
        return message == WM_GIVE_UP_SCAN && KeepsOldScan ? 1 : 0;
    }

    /// Makes a new sheet.
    void MakeSheet(std::vector<DiskInfo> disks = MadeUpDisks()) {
        Disks = std::move(disks);
        Sheet = std::make_unique<CWizardSheet>(nullptr, 4, [this] { return Disks; });
    }

    /// A step at the sheet itself.
    void AtSheet(std::function<void()> act) {
        Answers.When<CWizardSheet>([act = std::move(act)](CWizardSheet&) { act(); });
    }
    /// Runs the sheet through its steps; all must have been done at its end.
    int Run() {
        const int result = Sheet->Run();
        EXPECT_TRUE(Answers.AllDone());
        return result;
    }
    /// The same with a last step, behind which the sheet is closed if it still stands.
    int RunWith(std::function<void()> act) {
        AtSheet([this, act = std::move(act)] {
            act();
            if (Sheet->isVisible()) {
                Sheet->done(0);
            }
        });
        return Run();
    }

    /// Caption and text of each box that came up.
    [[nodiscard]] Texts Boxes() const {
        Texts texts;
        for (const SeenBox& box : Answers.Boxes) {
            texts.push_back((box.Caption + QStringLiteral(": ") + box.Text).toStdString());
        }
        return texts;
    }

    // Within a step.
    void Press(const char* text) { test::Press(*Sheet, text); }
    /// What Back, Next and Finish offer: a name is enabled, one in brackets isn't, and one left out is
    /// hidden.
    [[nodiscard]] std::string Buttons() const {
        QStringList offered;
        for (const char* text : {"< Back", "Next >", "Finish"}) {
            if (const QAbstractButton* button = ButtonOf(*Sheet, text)) {
                offered += QString::asprintf(button->isEnabled() ? "%s" : "(%s)", text);
            }
        }
        return offered.join(QLatin1Char(' ')).toStdString();
    }
    [[nodiscard]] std::string Heading() const { return Sheet->ActivePage().Heading().toStdString(); }
    /// All texts of the active page's labels, and of its explaining list, where "* " stands for a bullet.
    [[nodiscard]] Texts Labels() const {
        Texts texts;
        for (const QLabel* label : Sheet->ActivePage().findChildren<QLabel*>()) {
            texts.push_back(label->text().toStdString());
        }
        return texts;
    }
    [[nodiscard]] Texts Info() const {
        const auto& list = OnPage<CInfoListBox>();
        Texts rows;
        for (int row = 0; row < list.count(); ++row) {
            const bool bullet = list.item(row)->data(Qt::UserRole).toBool();
            rows.push_back((bullet ? "* " : "") + list.item(row)->text().toStdString());
        }
        return rows;
    }
    /// Chooses a disk of a tree of the active page, -1 for the root.
    void ChooseDisk(int position, int tree = 0) {
        auto& shown = *Sheet->ActivePage().findChildren<QTreeWidget*>().at(tree);
        QTreeWidgetItem* root = shown.topLevelItem(0);
        QTreeWidgetItem* item = position < 0 ? root : root->child(position);
        QTest::mouseClick(shown.viewport(), Qt::LeftButton, {}, shown.visualItemRect(item).center());
    }
    template <typename Widget>
    Widget& OnPage() const {
        return *Sheet->ActivePage().findChild<Widget*>();
    }
    /// From the main page through the image page, with the file typed into the file dialog.
    void GoToImagePage(const QString& path) {
        Answers.AnswerFile(path);
        Press("Recover your data from disk image");
        Press("Next >");
        Press("Select Image File");
    }

    std::vector<DiskInfo> Disks; ///< what the sheet takes for this machine's
    Texts Arrived; ///< at the frame, in order: "clear views", and "STATUS first | second" of a log line
    bool KeepsOldScan = false; ///< what the frame says when it is to give up a scan
    BoxAnswers Answers;
    ScratchFolder Scratch;
    std::unique_ptr<CWizardSheet> Sheet;
};

} // namespace thntfs::test
