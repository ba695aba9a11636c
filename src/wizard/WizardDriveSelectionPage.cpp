#include "wizard/WizardDriveSelectionPage.h"

#include "engine/AskForDisk.h"
#include "partitions/OpenSource.h"
#include "scaninfo/JobLog.h"
#include "shell/Boxes.h"
#include "shell/CoreTexts.h"
#include "wizard/DiskTree.h"
#include "wizard/PageTexts.h"
#include "wizard/ProcessingModes.h"
#include "wizard/SourceSteps.h"
#include "wizard/WizardState.h"

#include <QCoreApplication>
#include <QGridLayout>

namespace thntfs {

namespace {

bool NoneLooksUsb(const DiskInfo& /*disk*/) { return false; }

void TellOpeningFailed(const std::string& path, ErrorCode code) {
    const QString advice = ShownCoreText(RightsAdvice(code));
    QString text = QCoreApplication::translate("WizardDriveSelectionPage", "The disk %1 can't be opened: %2")
                       .arg(QString::fromStdString(path), ShownCoreText(OpenErrorText(code)));
    if (!advice.isEmpty()) {
        text += QStringLiteral("\n\n") + advice;
    }
    ShowBox(code == kErrorAccessDenied ? WayToTheRight(path) : text,
            QCoreApplication::translate("WizardDriveSelectionPage", "Error"), BoxIcon::Stop);
}

} // namespace

CWizardDriveSelectionPage::CWizardDriveSelectionPage(WizardState& state, WizardPageOwner& owner)
    : CWizardPage(state, owner, tr("Step 1: Select Hard Drive\nStep 2: Select Appropriate Option"),
                  "ntfsrecoverdata.htm")
    , tree_(new CDiskTree(this, state.Disks, NoneLooksUsb))
    , modes_(new CProcessingModes(this, state, tr("Processing Modes")))
    , info_(new CInfoListBox(this)) {
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
    State().ListPageOnly = false;
    if (State().PagesFresh) {
        Clear();
        State().PagesFresh = false;
    } else {
        ShowDiskDetails(tree_->ChosenDisk());
    }
}

void CWizardDriveSelectionPage::OnDisksChanged() {
    tree_->Refill();
    if (isVisible()) {
        ShowDiskDetails(tree_->ChosenDisk());
    }
}

void CWizardDriveSelectionPage::Clear() {
    modes_->Reset();
    tree_->SelectRoot();
    ShowDiskDetails(kNoDisk);
}

void CWizardDriveSelectionPage::ShowDiskDetails(std::uint8_t index) {
    const DiskInfo* disk = State().DiskAt(index);
    ShowDisk(*info_, disk, kDiskPageSteps);
    modes_->EnableChoice(disk != nullptr);
    OfferNext(disk != nullptr);
}

int CWizardDriveSelectionPage::OnWizardNext() {
    const DiskInfo* disk = State().DiskAt(tree_->ChosenDisk());
    if (disk == nullptr || !CloseOldMedium()) {
        return kStay;
    }
    const ErrorCode code = OpenPhysicalDisk(disk->Path);
    if (code != kErrorNone) {
        TellOpeningFailed(disk->Path, code);
        return kStay;
    }
    const ChosenSource source{disk->Path, tr("Use search for lost partition(s) option."),
                              [disk](bool searched) { LogDiskChosen(*disk, searched); }};
    return ListPartitions(source, State().ProcessingMode, window()) ? kPartitionListPage : kStay;
}

} // namespace thntfs
