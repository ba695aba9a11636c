#include "WizardFixture.h"

#include "engine/EngineState.h"
#include "shell/DesktopState.h"
#include "shell/Icons.h"
#include "shell/WindowMessages.h"
#include "support/BuildPaths.h"
#include "wizard/InfoListBox.h"

#include <QAbstractButton>
#include <QLabel>
#include <QTest>
#include <QTreeWidget>

namespace thntfs::test {

std::vector<DiskInfo> MadeUpDisks() {
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

QString VolumePath(const char* name) {
    return QString::fromStdString(VolumeFolder() + "/") + QLatin1String(name) + QStringLiteral(".img");
}

WizardTest::WizardTest() {
    SetMainWindow(this);
    ResetEngineState();
    Desktop.StructuresMissing = false;
    MakeSheet();
}

WizardTest::~WizardTest() {
    Sheet.reset();
    SetMainWindow(nullptr);
    ResetEngineState();
}

std::intptr_t WizardTest::OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t /*lParam*/) {
    if (message == WM_CLEAR_VIEWS) {
        Arrived.emplace_back("clear views");
    } else if (message == WM_LOG_EVENT) {
        const auto& entry = WM_LOG_EVENT.First(wParam);
        Arrived.push_back(std::to_string(entry.Status) + " " + entry.Name + " | " + entry.Description);
    }
    return message == WM_GIVE_UP_SCAN && KeepsOldScan ? 1 : 0;
}

void WizardTest::MakeSheet(std::vector<DiskInfo> disks) {
    Sheet = std::make_unique<CWizardSheet>(nullptr, 4, std::move(disks));
}

void WizardTest::AtSheet(std::function<void()> act) {
    Answers.When<CWizardSheet>([act = std::move(act)](CWizardSheet&) { act(); });
}

int WizardTest::Run() {
    const int result = Sheet->Run();
    EXPECT_TRUE(Answers.AllDone());
    return result;
}

int WizardTest::RunWith(std::function<void()> act) {
    AtSheet([this, act = std::move(act)] {
        act();
        if (Sheet->isVisible()) {
            Sheet->done(0);
        }
    });
    return Run();
}

Texts WizardTest::Boxes() const {
    Texts texts;
    for (const SeenBox& box : Answers.Boxes) {
        texts.push_back((box.Caption + QStringLiteral(": ") + box.Text).toStdString());
    }
    return texts;
}

std::string WizardTest::Buttons() const {
    std::string offered;
    for (const char* text : {"< Back", "Next >", "Finish"}) {
        if (const QAbstractButton* button = ButtonOf(*Sheet, text)) {
            const std::string name = button->isEnabled() ? text : "(" + std::string(text) + ")";
            offered += offered.empty() ? name : " " + name;
        }
    }
    return offered;
}

Texts WizardTest::Labels() const {
    Texts texts;
    for (const QLabel* label : Sheet->ActivePage().findChildren<QLabel*>()) {
        texts.push_back(label->text().toStdString());
    }
    return texts;
}

Texts WizardTest::Info() const {
    const auto& list = OnPage<CInfoListBox>();
    Texts rows;
    for (int row = 0; row < list.count(); ++row) {
        const bool bullet = list.item(row)->data(Qt::UserRole).toBool();
        rows.push_back((bullet ? "* " : "") + list.item(row)->text().toStdString());
    }
    return rows;
}

std::string WizardTest::InfoHeights() const {
    const auto& list = OnPage<CInfoListBox>();
    return std::to_string(list.item(0)->sizeHint().height()) + " " +
           std::to_string(list.item(1)->sizeHint().height());
}

std::string WizardTest::UsbDisks() const {
    const auto picture = [](const QIcon& icon) { return icon.pixmap(16).toImage(); };
    const auto* tree = Sheet->ActivePage().findChild<QTreeWidget*>();
    QStringList names;
    for (int row = 0; tree != nullptr && row < tree->topLevelItem(0)->childCount(); ++row) {
        const QTreeWidgetItem& disk = *tree->topLevelItem(0)->child(row);
        if (picture(disk.icon(0)) == picture(LoadIcon("disk-usb"))) {
            names.push_back(disk.text(0));
        }
    }
    return names.join(QLatin1Char(' ')).toStdString();
}

void WizardTest::ChooseDisk(int position, int tree) {
    auto& shown = *Sheet->ActivePage().findChildren<QTreeWidget*>().at(tree);
    QTreeWidgetItem* root = shown.topLevelItem(0);
    QTreeWidgetItem* item = position < 0 ? root : root->child(position);
    QTest::mouseClick(shown.viewport(), Qt::LeftButton, {}, shown.visualItemRect(item).center());
}

void WizardTest::GoToImagePage(const QString& path) {
    Answers.AnswerFile(path);
    Press("Recover your data from disk image");
    Press("Next >");
    Press("Select Image File");
}

} // namespace thntfs::test
