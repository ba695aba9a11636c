#include "wizard/WizardImageDiskPage.h"

#include "dialogs/FileDialogs.h"
#include "shell/TipText.h"
#include "wizard/DiskTree.h"
#include "wizard/ElidedLabel.h"
#include "wizard/ImageFileName.h"
#include "wizard/PageTexts.h"
#include "wizard/PrepareCopy.h"
#include "wizard/WizardState.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QPushButton>
#include <QSpinBox>

namespace thntfs {

namespace {

constexpr int kMostPasses = 3;

const QString kExtension = QStringLiteral(".th2");

bool AllButIdeLookUsb(const DiskInfo& disk) { return disk.InterfaceType != "IDE"; }

} // namespace

CWizardImageDiskPage::CWizardImageDiskPage(WizardState& state, WizardPageOwner& owner)
    : CWizardPage(state, owner, tr("Step 1: Select source drive\nStep 2: Select destination path"),
                  "ntfsdiskimaging2.htm")
    , tree_(new CDiskTree(this, state.Disks, AllButIdeLookUsb))
    , pick_(new QPushButton(tr("Select &destination path"), this))
    , info_(new CInfoListBox(this))
    , pathText_(new CElidedLabel(tr("File Path :"), this))
    , oldImage_(new QLabel(tr("This file is there already. If it is an unfinished image of this disk, "
                              "Finish goes on with it. It is never written over."),
                           this))
    , retry_(new QCheckBox(tr("Read bad sectors &again at the end, passes:"), this))
    , passes_(new QSpinBox(this)) {
    oldImage_->setWordWrap(true);
    passes_->setRange(1, kMostPasses);
    passes_->setValue(kMostPasses);
    passes_->setAccessibleName(tr("Passes over bad sectors"));
    passes_->setEnabled(false);
    LayOut();
    setFocusProxy(tree_);
    connect(tree_, &QTreeWidget::currentItemChanged, this, [this] { ShowImageDetails(tree_->ChosenDisk()); });
    connect(retry_, &QCheckBox::toggled, passes_, &QWidget::setEnabled);
    connect(pick_, &QPushButton::clicked, this, [this] { PickDestination(); });
}

void CWizardImageDiskPage::LayOut() {
    auto* layout = new QGridLayout(this);
    layout->addWidget(tree_, 0, 0);
    layout->addWidget(pick_, 1, 0, Qt::AlignLeft);
    layout->addWidget(info_, 0, 1, 2, 1);
    layout->addWidget(pathText_, 2, 0, 1, 2);
    layout->addWidget(oldImage_, 3, 0, 1, 2);
    auto* retries = new QHBoxLayout;
    retries->addWidget(retry_);
    retries->addWidget(passes_);
    retries->addStretch();
    layout->addLayout(retries, 4, 0, 1, 2);
    layout->setColumnStretch(0, 1);
    layout->setRowStretch(0, 1);
}

void CWizardImageDiskPage::OnSetActive() {
    State().ImageDestination.clear();
    pathText_->setText(tr("File Path :"));
    pathText_->setToolTip({});
    pathText_->setEnabled(false);
    oldImage_->hide();
    retry_->setChecked(false);
    tree_->SelectRoot();
    ShowImageDetails(kNoDisk);
}

void CWizardImageDiskPage::OnDisksChanged() {
    tree_->Refill();
    if (isVisible()) {
        ShowImageDetails(tree_->ChosenDisk());
    }
}

void CWizardImageDiskPage::ShowImageDetails(std::uint8_t index) {
    const DiskInfo* disk = State().DiskAt(index);
    State().SourceDiskIndex = index;
    ShowDisk(*info_, disk, kImagingPageSteps);
    pick_->setEnabled(disk != nullptr);
    UpdateButtons();
}

void CWizardImageDiskPage::UpdateButtons() {
    OfferFinish(State().SourceDiskIndex != kNoDisk && !State().ImageDestination.isEmpty());
}

void CWizardImageDiskPage::PickDestination() {
    const QString path =
        ChooseImageToMake(this, tr("Select destination path"), ImageFileName(QDate::currentDate()),
                          tr("Tarnholt Volume Salvage (NTFS) Image File (*.th2)"));
    if (path.isEmpty()) {
        return;
    }
    State().ImageDestination = path.endsWith(kExtension) ? path : path + kExtension;
    pathText_->setText(tr("Destination path :%1").arg(State().ImageDestination));
    pathText_->setToolTip(TipText(State().ImageDestination));
    pathText_->setEnabled(true);
    oldImage_->setVisible(QFileInfo::exists(State().ImageDestination));
    UpdateButtons();
    setFocus(); // Enter finishes, and doesn't ask for the path again
}

bool CWizardImageDiskPage::OnWizardFinish() {
    const std::string source = State().DiskAt(State().SourceDiskIndex)->Path;
    const std::string image = State().ImageDestination.toStdString();
    State().WizardLogEntry = {"Disk Imaging", source + " to " + image, "", kLogInProgress};
    State().Copy = PrepareImage(source, image, retry_->isChecked() ? unsigned(passes_->value()) : 0);
    return State().Copy != nullptr;
}

} // namespace thntfs
