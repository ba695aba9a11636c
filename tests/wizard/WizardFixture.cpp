#include "WizardFixture.h"

#include "engine/EngineState.h"
#include "support/BuildPaths.h"

#include <QAbstractButton>
#include <QTableWidget>
#include <QTest>
#include <QTreeWidget>

namespace thntfs::test {

std::intptr_t RecordingFrame::OnMessage(std::uint32_t message, std::uintptr_t wParam,
                                        std::uintptr_t /*lParam*/) {
    if (message == WM_CLEAR_VIEWS) {
        Arrived.emplace_back("clear views");
    } else if (message == WM_LOG_EVENT) {
        const auto& entry = *PointerIn<const ProcessLogEntry>(wParam);
        Arrived.push_back(std::to_string(entry.Status) + " " + entry.Name + " | " + entry.Description);
    }
    return 0;
}

std::vector<DiskInfo> MadeUpDisks() {
    DiskInfo first;
    first.Path = "/dev/sdx";
    first.Name = "sdx";
    first.MediaType = "Fixed hard disk media";
    first.InterfaceType = "IDE";
    first.TotalSectors = "976773168";
    first.TotalCylinders = "60801";
    first.TotalHeads = "255";
    first.Size = "465.76 GB";
    first.Serial = "WX11";
    first.Revision = "01.01";
    first.Model = "Some Disk";
    first.BytesPerSector = "512";
    DiskInfo second = first;
    second.Path = "/dev/sdy";
    second.Name = "sdy";
    second.InterfaceType = "USB";
    DiskInfo third = first;
    third.Path = "/dev/no-such-disk";
    third.Name = "no-such-disk";
    third.InterfaceType = "NVMe";
    return {first, second, third};
}

Texts BoxTexts(const BoxAnswers& answers) {
    Texts texts;
    for (const SeenBox& box : answers.Boxes) {
        texts.push_back(box.Caption.toStdString() + ": " + box.Text.toStdString());
    }
    return texts;
}

QString VolumePath(const char* name) {
    return QString::fromStdString(VolumeFolder() + "/") + QLatin1String(name) + QStringLiteral(".img");
}

WizardTest::WizardTest() {
    SetMainWindow(&Frame);
    ResetEngineState();
    Engine.StructuresMissing = 0;
    MakeSheet();
}

WizardTest::~WizardTest() {
    Sheet.reset();
    SetMainWindow(nullptr);
    ResetEngineState();
}

void WizardTest::MakeSheet(std::vector<DiskInfo> disks) {
    Sheet = std::make_unique<CWizardSheet>(nullptr, 4, std::move(disks));
}

void WizardTest::AtSheet(std::function<void()> act) {
    Steps.When<CWizardSheet>([act = std::move(act)](CWizardSheet&) { act(); });
}

int WizardTest::Run() {
    const int result = Sheet->Run();
    EXPECT_TRUE(Steps.AllDone());
    return result;
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

std::string WizardTest::Heading() const { return Sheet->ActivePage().Heading().toStdString(); }

void WizardTest::ChooseDisk(int position) {
    auto& tree = OnPage<QTreeWidget>();
    QTreeWidgetItem* root = tree.topLevelItem(0);
    QTreeWidgetItem* item = position < 0 ? root : root->child(position);
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, tree.visualItemRect(item).center());
}

void WizardTest::GoToImagePage(const QString& path) {
    Answers.AnswerFile(path);
    Press("Recover your data from disk image");
    Press("Next >");
    Press("Select Image File");
}

} // namespace thntfs::test
