#include "wizard/WizardCloneDiskPage.h"

#include "shell/ColorLabel.h"
#include "wizard/DiskTree.h"
#include "wizard/PageTexts.h"
#include "wizard/PrepareCopy.h"
#include "wizard/WizardState.h"

#include <QGridLayout>

namespace thntfs {

namespace {

bool LooksUsb(const DiskInfo& disk) { return disk.InterfaceType == "USB"; }

QLabel* TreeTitle(const QString& text, QWidget* tree) {
    auto* label = new QLabel(text, tree->parentWidget());
    label->setBuddy(tree);
    return label;
}

QLabel* NameLabel(QWidget* parent) {
    auto* label = new CColorLabel({}, parent);
    label->SetBold(true);
    return label;
}

} // namespace

CWizardCloneDiskPage::CWizardCloneDiskPage(WizardState& state, WizardPageOwner& owner)
    : CWizardPage(state, owner, tr("Select Source and Destination Disk(s)"), "ntfsclonewindow.htm")
    , source_{tr("Source Disk :"), tr("Source Disk # %1"), new CDiskTree(this, state.Disks, LooksUsb),
              NameLabel(this)}
    , target_{tr("Destination Disk :"), tr("Destination Disk # %1"),
              new CDiskTree(this, state.Disks, LooksUsb), NameLabel(this)}
    , info_(new CInfoListBox(this)) {
    LayOut();
    setFocusProxy(source_.Tree);
    connect(source_.Tree, &QTreeWidget::currentItemChanged, this, [this] { OnSourceChanged(); });
    connect(target_.Tree, &QTreeWidget::currentItemChanged, this, [this] { OnTargetChanged(); });
}

void CWizardCloneDiskPage::LayOut() {
    auto* layout = new QGridLayout(this);
    layout->addWidget(TreeTitle(tr("S&ource Disk(s) :"), source_.Tree), 0, 0);
    layout->addWidget(source_.Tree, 1, 0);
    layout->addWidget(source_.Name, 2, 0);
    layout->addWidget(TreeTitle(tr("Destination Disk(s)"), target_.Tree), 3, 0);
    layout->addWidget(target_.Tree, 4, 0);
    layout->addWidget(target_.Name, 5, 0);
    layout->addWidget(info_, 0, 1, 6, 1);
    layout->setColumnStretch(0, 1);
}

void CWizardCloneDiskPage::OnSetActive() {
    source_.Tree->SelectRoot();
    target_.Tree->SelectRoot();
    OnSourceChanged();
    OnTargetChanged();
}

void CWizardCloneDiskPage::OnDisksChanged() {
    source_.Tree->Refill();
    target_.Tree->Refill();
    if (isVisible()) {
        OnSourceChanged();
        OnTargetChanged();
    }
}

void CWizardCloneDiskPage::OnSourceChanged() {
    State().SourceDiskIndex = source_.Tree->ChosenDisk();
    ShowCloneDetails(State().SourceDiskIndex, source_);
    target_.Tree->setEnabled(State().SourceDiskIndex != kNoDisk);
    UpdateButtons();
}

void CWizardCloneDiskPage::OnTargetChanged() {
    State().TargetDiskIndex = target_.Tree->ChosenDisk();
    ShowCloneDetails(State().TargetDiskIndex, target_);
    UpdateButtons();
}

void CWizardCloneDiskPage::UpdateButtons() {
    OfferFinish(State().SourceDiskIndex != kNoDisk && State().TargetDiskIndex != kNoDisk);
}

void CWizardCloneDiskPage::ShowCloneDetails(std::uint8_t index, const Side& side) {
    const DiskInfo* disk = State().DiskAt(index);
    ShowCloneDisk(*info_, side.ListTitle, disk);
    const std::string name = disk != nullptr ? disk->Name : "";
    side.Name->setText(side.NameTitle.arg(QString::fromStdString(name)));
    side.Name->setEnabled(disk != nullptr);
}

bool CWizardCloneDiskPage::OnWizardFinish() {
    const DiskInfo& source = *State().DiskAt(State().SourceDiskIndex);
    const DiskInfo& target = *State().DiskAt(State().TargetDiskIndex);
    State().WizardLogEntry = {"Disk Cloning", source.Path + " to " + target.Path, "", kLogInProgress};
    State().Copy = PrepareClone(source.Path, target.Path);
    return State().Copy != nullptr;
}

} // namespace thntfs
