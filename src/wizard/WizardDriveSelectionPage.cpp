#include "wizard/WizardDriveSelectionPage.h"

#include "partitions/OpenSource.h"
#include "shell/Boxes.h"
#include "wizard/DiskTree.h"
#include "wizard/PageTexts.h"
#include "wizard/ProcessingModes.h"
#include "wizard/SourceSteps.h"
#include "wizard/WizardSheet.h"

#include <QGridLayout>

namespace thntfs {

namespace {

bool LooksUsb(const DiskInfo& /*disk*/) { return false; }

QString WayToTheRight(const QString& path) {
    return QStringLiteral(
               "This program may not read the disk %1.\n\n"
               "Reading a disk needs a right that an ordinary user doesn't have. Close the program and "
               "start it with\n\n"
               "    sudo ./run desktop\n\n"
               "or let an administrator add you to the group \"disk\", then log in again.")
        .arg(path);
}

void TellOpeningFailed(const std::string& path, ErrorCode code) {
    const QString shown = QString::fromStdString(path);
    const QString reason = QString::fromStdString(OpenErrorText(code));
    ShowBox(code == kErrorAccessDenied ? WayToTheRight(shown)
                                       : QStringLiteral("The disk %1 can't be opened: %2").arg(shown, reason),
            QStringLiteral("Error"), BoxIcon::Stop);
}

} // namespace

CWizardDriveSelectionPage::CWizardDriveSelectionPage(CWizardSheet& sheet)
    : CWizardPage(sheet, "Step 1: Select Hard Drive\nStep 2: Select Appropriate Option",
                  "ntfsrecoverdata.htm")
    , tree_(new CDiskTree(this, sheet.Disks, LooksUsb))
    , modes_(new CProcessingModes(this, sheet, QStringLiteral("Processing Modes")))
    , info_(new CInfoListBox(this, kInfoTextColour, kInfoBulletSize))
    , chosenDisk_(kNoDisk) {
    LayOut();
    setFocusProxy(tree_);
    connect(tree_, &QTreeWidget::currentItemChanged, this, [this] { ShowDiskDetails(tree_->ChosenDisk()); });
}

void CWizardDriveSelectionPage::LayOut() {
    auto* layout = new QGridLayout(this);
    layout->addWidget(tree_, 0, 0);
    layout->addWidget(modes_, 1, 0);
    layout->addWidget(info_, 0, 1, 2, 1);
    layout->setColumnStretch(0, 1);
    layout->setRowStretch(0, 1);
}

void CWizardDriveSelectionPage::OnSetActive() {
    Sheet().ListPageOnly = 0;
    Sheet().SetWizardButtons(kButtonBack | kButtonNext);
    if (Sheet().PagesFresh != 0) {
        Clear();
        Sheet().PagesFresh = 0;
    }
}

void CWizardDriveSelectionPage::Clear() {
    modes_->Reset();
    tree_->SelectRoot();
    ShowDiskDetails(kNoDisk);
}

void CWizardDriveSelectionPage::ShowDiskDetails(std::uint8_t index) {
    const bool chosen = index != kNoDisk;
    chosenDisk_ = index;
    if (chosen) {
        info_->ShowRows(DiskRows(QStringLiteral(": "), Sheet().Disks.at(index)), kDiskHeaderHeight,
                        kInfoRowHeight);
    } else {
        info_->ShowRows(RowsOf(kDiskPageSteps), kInfoRowHeight, kInfoRowHeight);
    }
    modes_->EnableChoice(chosen);
    Sheet().SetWizardButtons(chosen ? kButtonBack | kButtonNext : kButtonBack);
}

int CWizardDriveSelectionPage::OnWizardNext() {
    const std::string path = "/dev/" + Sheet().Disks.at(chosenDisk_).Name;
    if (!CloseOldMedium()) {
        return kStay;
    }
    const ErrorCode code = OpenPhysicalDisk(path);
    if (code != kErrorNone) {
        TellOpeningFailed(path, code);
        return kStay;
    }
    return ListPartitions(kDiskSource, path, Sheet().ProcessingMode, window()) ? kPartitionListPage : kStay;
}

} // namespace thntfs
